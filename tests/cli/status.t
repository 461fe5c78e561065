Whether the distributed firewall is on, the thresholds of the host, and which flows are collected.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2

The firewall is on when its agent includes the whole host.

  $ lab tarnioctl getfwstatus
  Distributed firewall status: enabled
  $ quiet tarnioctl getfwstatus -h
  Distributed firewall status: enabled
  $ tarnlab log -s
  tables 8: size of the include table(agent "kelpco-sfw") = ok {size 47}
  tables 9: include table(agent "kelpco-sfw", room 47) = ok {bytes 47}
  tables 8: size of the include table(agent "kelpco-sfw") = ok {size 47}
  tables 9: include table(agent "kelpco-sfw", room 47) = ok {bytes 47}
  $ tarnlab --home off init --firewall-off
  Made a lab with 8 filters at off.
  $ tarnlab --home off run tarnioctl getfwstatus
  Distributed firewall status: disabled
  $ tarnlab --home off show | head -2
  lab off
    the distributed firewall is disabled
  $ tarnlab fault errno ENOENT --only 8 --count 1
  $ lab tarnioctl getfwstatus
  Distributed firewall status: disabled
  log| tarnioctl <83> tarnfw: TarnWGTIoctl:sendIoctl():N ioctl cmd 8 on device /dev/weirgatetbl failed: No such file or directory\n\n
  $ tarnlab fault errno EPERM --only 8 --count 1
  $ lab tarnioctl getfwstatus
  log| tarnioctl <83> tarnfw: TarnWGTIoctl:sendIoctl():N ioctl cmd 8 on device /dev/weirgatetbl failed: Operation not permitted\n\n
  [1]
  $ tarnlab fault errno ENOENT --only 9 --count 1
  $ lab tarnioctl getfwstatus
  log| tarnioctl <83> tarnfw: TarnWGTIoctl:sendIoctl():N ioctl cmd 9 on device /dev/weirgatetbl failed: No such file or directory\n\n
  [1]
  $ tarnlab fault absent tables
  $ lab tarnioctl getfwstatus
  Distributed firewall status: disabled
  log| tarnioctl <84> tarnfw: TarnWGTIoctl:WGT_Ioctl():N error 12: cannot open device /dev/weirgatetbl: 2\n
  $ tarnlab fault clear

The thresholds.

  $ run tarnioctl getthresholds -h
  Get the event thresholds for CPU, Memory and CPS.
  
  Usage: tarnioctl getthresholds <options>
      -h          : this help message
  $ run tarnioctl setthresholds -h
  Set the event thresholds for CPU, Memory and CPS.
  
  Usage: tarnioctl setthresholds <options>
      -c <number> : Percent number to raise CPU threshold cross event
      -p <number> : CPS Number to raise CPS threshold cross event
      -h          : this help message
  $ lab tarnioctl getthresholds
  CPU                             
  Configured threshold %           : 80
  Current usage %                  : 25
  CPS                             
  Configured threshold             : 5000
  $ quiet tarnioctl setthresholds -c 0
  $ quiet tarnioctl setthresholds -p 100000
  $ quiet tarnioctl getthresholds
  CPU                             
  Configured threshold %           : 0
  Current usage %                  : 25
  CPS                             
  Configured threshold             : 100000
  $ tarnlab log -s -n 3
  firewall 28: set thresholds(given 1, cpu 0, connections 0) = ok
  firewall 28: set thresholds(given 2, cpu 0, connections 100000) = ok
  firewall 29: thresholds() = ok {cpu 0, cpu used 25, connections 100000}
  $ tarnlab show | sed -n 2,3p
    threshold.cpu: 0
    threshold.connections: 100000
  $ run tarnioctl setthresholds
  err| ERROR: CPU or CPS threshold value not provided.
  [1]
  $ run tarnioctl setthresholds -c abc
  err| ERROR: No digits were found
  [1]
  $ run tarnioctl setthresholds -c 101
  err| ERROR: Invalid entry 101.
  [1]
  $ run tarnioctl setthresholds -p 100001
  err| ERROR: Invalid entry 100001. Try 0 to 100000
  [1]
  $ run tarnioctl setthresholds -p 99999999999999999999
  err| strtol: Numerical result out of range
  [1]

A request that fails is no failure of the command.

  $ tarnlab fault errno EINVAL --only 29 --count 1
  $ lab tarnioctl getthresholds
  CPU                             
  Configured threshold %           : 0
  Current usage %                  : 0
  CPS                             
  Configured threshold             : 0
  log| tarnioctl <83> tarnfw: TarnFWIoctl:sendIoctl():N ioctl cmd 29 on device /dev/brq-tarn failed: Invalid argument\n\n

The flows that a filter does not collect.

  $ run tarnioctl setfilterflags -Override -h
  Set flow collection flag setting for a filter.
  
  Usage: tarnioctl setfilterflags <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -p          : L2 Pass Flows
      -d          : L2 Drop Flows
      -D          : L3 Drop Flows
      -I          : L3 Inactive Flows
      -A          : L3 Active Flows
      -a          : All Flows
      -G          : Override global flags
      -h          : this help message
      empty option: turn on all flows
  $ run tarnioctl setfilterflags -f $filter
  err| ERROR: Command setfilterflags is dangerous and can cause unintended consequence!
  err| ERROR: Please supply first option -Override in order to override the safety guard and actually run the command.
  [1]
  $ brief run tarnioctl setfilterflags -Override -a
  (usage)
  err| ERROR: filter is missing.
  [1]
  $ quiet tarnioctl setfilterflags -Override -f $filter -pDA
  $ quiet tarnioctl getfilters -a kelpco-sfw | sed -n '/Flow Coll/,/override/p;/Filter Name *: nic-1003044-eth0/q'
  Flow Collection Flags   
     L2 Pass Flows         : Off   
     L2 Drop Flows         : On    
     L3 Drop Flows         : Off   
     L3 Inactive Flows     : On    
     L3 Active Flows       : Off   
     All Flows             : On    
     Global override       : Off   
  $ quiet tarnioctl setfilterflags -Override -f $filter
  $ quiet tarnioctl getfilters -a kelpco-inspect | grep Flow
  [1]
  $ tarnlab log -s | grep 'firewall 27'
  firewall 27: set flow collection of kelpco-sfw = ok (filter nic-1002672-eth0-kelpco-sfw.2, flags 0x15)
  firewall 27: set flow collection of kelpco-sfw = ok (filter nic-1002672-eth0-kelpco-sfw.2, flags 0x0)
  $ lab tarnioctl setfilterflags -Override -f nic-9-eth0-kelpco-sfw.9 -a
  log| tarnioctl <83> tarnfw: TarnFWIoctl:sendIoctl():N ioctl cmd 27 on device /dev/brq-tarn failed: No such file or directory\n\n
  $ tarnlab log -s -n 1
  firewall 27: set flow collection of kelpco-sfw = ENOENT (filter nic-9-eth0-kelpco-sfw.9, flags 0x20)

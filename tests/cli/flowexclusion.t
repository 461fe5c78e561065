Flow exclusion: which flows of the host, or of a filter, are not collected.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ storage=nic-1003044-eth1-kelpco-sfw.2
  $ vnic=502e1f3a-c21a-7011-4ae1-005056991077

  $ run tarnioctl setflowexclusion -Override -h
  Set flow exclusion setting of a filter.
  
  Usage: tarnioctl setflowexclusion <options>
      -g <on|off> : collecting flows
      -l <on|off> : collecting non-IP L2 flows
      -2 <on|off> : collecting L2 flows
      -d <on|off> : collecting flows of dropped packets
      -a <on|off> : aggregate source address
      -b <on|off> : aggregate dest address
      -s <on|off> : aggregate source port
      -t <on|off> : aggregate dest port
      -p <on|off> : aggregate protocol
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -F <definition> : one flow exclusion definition, repeatable:
                    smac|dmac|ethertype|sip|dip|protocol|sport|dport|svnic|dvnic
      -h          : this help message
  $ run tarnioctl getflowexclusion -h
  Get current flow exclusion setting of a filter.
  
  Usage: tarnioctl getflowexclusion <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -l          : print setting in long format
      -h          : this help message
  $ run tarnioctl setflowexclusion
  err| ERROR: Command setflowexclusion is dangerous and can cause unintended consequence!
  err| ERROR: Please supply first option -Override in order to override the safety guard and actually run the command.
  [1]
  $ brief run tarnioctl setflowexclusion -Override -x
  (usage)
  err| -Override: invalid option -- 'x'
  [1]
  $ brief run tarnioctl getflowexclusion -x
  (usage)
  err| getflowexclusion: invalid option -- 'x'
  [1]

What the host collects, and a filter with definitions of every kind.

  $ lab tarnioctl getflowexclusion
  Global flow collection      : on
  non-IP L2 flow collection   : off
  L2 flow collection          : on
  Drop packet flow collection : on
  Flow exclusion count        : 0
  $ lab tarnioctl getflowexclusion -f $storage
  Flow exclusion count        : 6
    0: !00:50:56:99:10:78/ff:ff:ff:ff:ff:ff|01:00:5e:00:00:00/ff:ff:ff:80:00:00|0x88cc,0x8906|||||||
    1: |||10.20.7.0/255.255.255.0|10.20.7.16-10.20.7.23|tcp,udp|1024-65535|2049||
    2: |||fe80::1-fe80::1f|!fd00:20:7::/ffff:ffff:ffff::|!icmp,ipv6-icmp,253||||
    3: ||||||||!502e1f3a-c21a-7011-4ae1-005056991077.001|50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77
    4: ||||||||50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77|!502e1f3a-c21a-7011-4ae1-005056991077.001
    5: ||!0x0800|||tcp||!3260-3261||
  $ quiet tarnioctl getflowexclusion -f $storage -l
  Flow exclusion count        : 6
  Source MAC Address                   Destination MAC Address              Ethertypes                   Source IP address                                                              Destination IP address                                                         IP Protocols                      Source Port  Dest Port    Source VNic/VM                                   Destination VNic/VM                              
  ------------------------------------ ------------------------------------ ---------------------------- ------------------------------------------------------------------------------ ------------------------------------------------------------------------------ --------------------------------- ------------ ------------ ------------------------------------------------ ------------------------------------------------ 
  !00:50:56:99:10:78/ff:ff:ff:ff:ff:ff 01:00:5e:00:00:00/ff:ff:ff:80:00:00| 0x88cc,0x8906                *                                                                              *                                                                              *                                 *            *            *                                                *                                                
  *                                    *                                    *                            10.20.7.0/255.255.255.0                                                        10.20.7.16-10.20.7.23                                                          tcp,udp                           1024-65535   2049         *                                                *                                                
  *                                    *                                    *                            fe80::1-fe80::1f                                                               !fd00:20:7::/ffff:ffff:ffff::                                                  !icmp,ipv6-icmp,253               *            *            *                                                *                                                
  *                                    *                                    *                            *                                                                              *                                                                              *                                 *            *            !502e1f3a-c21a-7011-4ae1-005056991077.001        50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77  
  *                                    *                                    *                            *                                                                              *                                                                              *                                 *            *            50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77  !502e1f3a-c21a-7011-4ae1-005056991077.001        
  *                                    *                                    !0x0800                      *                                                                              *                                                                              tcp                               *            !3260-3261   *                                                *                                                
  $ quiet tarnioctl getflowexclusion -f $filter
  Flow exclusion count        : 0
  $ tarnlab show $storage
  filter nic-1003044-eth1-kelpco-sfw.2
    agent kelpco-sfw, vnic 1, slow path 2, vif 8d0c7a10-55f4-4c1e-9b02-000070110001
    flows: 208 active, 85 inactive, 84 dropped, 12 L2 pass, 12 L2 drop, 1 of other kinds
    names.live: 1
    flow-exclusion.definitions: 6 definitions
      not source mac 00:50:56:99:10:78 mask ff:ff:ff:ff:ff:ff, destination mac 01:00:5e:00:00:00 mask ff:ff:ff:80:00:00, ethertypes 0x88cc 0x8906
      source 10.20.7.0 mask 255.255.255.0, source port 1024 to 65535, destination 10.20.7.16 to 10.20.7.23, destination port 2049, protocols 6 17
      source fe80::1 to fe80::1f, not destination fd00:20:7:: mask ffff:ffff:ffff::, not protocols 1 58 253
      not source vnic 502e1f3ac21a70114ae1005056991077 index 1, destination machine 502e1f3ac21a70114ae1005056991077
      source machine 502e1f3ac21a70114ae1005056991077, not destination vnic 502e1f3ac21a70114ae1005056991077 index 1
      not destination port 3260 to 3261, protocols 6, not ethertypes 0x0800

What is printed can be given again.

  $ quiet tarnioctl getflowexclusion -f $storage | sed -n 's/^ *[0-9]*: //p' > definitions
  $ while read -r line; do set -- "$@" -F "$line"; done < definitions
  $ lab tarnioctl setflowexclusion -Override -f $filter "$@"
  $ quiet tarnioctl getflowexclusion -f $filter | sed -n 's/^ *[0-9]*: //p' | diff definitions -
  $ tarnlab log -s -v -n 2 | head -1
  firewall 25: set flow exclusion(filter "nic-1002672-eth0-kelpco-sfw.2", flags 0x0, length 972) = ok
  $ tarnlab log -s -v -n 1
  firewall 26: flow exclusion(filter "nic-1002672-eth0-kelpco-sfw.2", room 165888) = ok {flags 0x0, length 972}
      not source mac 00:50:56:99:10:78 mask ff:ff:ff:ff:ff:ff, destination mac 01:00:5e:00:00:00 mask ff:ff:ff:80:00:00, ethertypes 0x88cc 0x8906
      source 10.20.7.0 mask 255.255.255.0, source port 1024 to 65535, destination 10.20.7.16 to 10.20.7.23, destination port 2049, protocols 6 17
      source fe80::1 to fe80::1f, not destination fd00:20:7:: mask ffff:ffff:ffff::, not protocols 1 58 253
      not source vnic 502e1f3ac21a70114ae1005056991077 index 1, destination machine 502e1f3ac21a70114ae1005056991077
      source machine 502e1f3ac21a70114ae1005056991077, not destination vnic 502e1f3ac21a70114ae1005056991077 index 1
      not destination port 3260 to 3261, protocols 6, not ethertypes 0x0800

The host: words are printed as the options are read, and what is set takes the place of all that was.

  $ lab tarnioctl setflowexclusion -Override -g off -l On -2 OFF -d off -a on -b off -s on -t on -p on -F '||0x88cc|||||||'
  turn off flow collection
  turn off all L2 flow collection
  turn off drop packets flow collection
  aggregate source address
  aggregate source port
  aggregate dest port
  aggregate protocol
  $ quiet tarnioctl getflowexclusion
  Global flow collection      : off
  non-IP L2 flow collection   : on
  L2 flow collection          : off
  Drop packet flow collection : off
  Flow exclusion count        : 1
    0: ||0x88cc|||||||
  $ tarnlab show | sed -n 2,4p
    flow-exclusion.flags: no flows, no L2 flows, no dropped packets, source addresses together, protocols together, source ports together, destination ports together
    flow-exclusion.definitions: 1 definition
      ethertypes 0x88cc
  $ tarnlab log -s -v -n 2 | head -2
  firewall 25: set flow exclusion(filter "", flags 0x8003fd0d, length 162) = ok
      ethertypes 0x88cc
  $ quiet tarnioctl setflowexclusion -Override
  $ quiet tarnioctl getflowexclusion
  Global flow collection      : on
  non-IP L2 flow collection   : on
  L2 flow collection          : on
  Drop packet flow collection : on
  Flow exclusion count        : 0
  $ quiet tarnioctl setflowexclusion -Override -f $filter -a on
  aggregate source address
  $ quiet tarnioctl getflowexclusion -f $filter
  Flow exclusion count        : 0
  $ tarnlab show $filter | tail -1
    flow-exclusion.flags: source addresses together

A mask comes out as an address, a single port as one.

  $ quiet tarnioctl setflowexclusion -Override -f $filter -F "!1:2:3:4:5:6|||10.1.2.3/8|||||$vnic|" -F '|||||6|22|||'
  $ quiet tarnioctl getflowexclusion -f $filter
  Flow exclusion count        : 2
    0: !01:02:03:04:05:06/ff:ff:ff:ff:ff:ff|||10.0.0.0/255.0.0.0|||||50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77|
    1: |||||tcp|22|||

What is refused is not sent.

  $ quiet tarnioctl setflowexclusion -Override -f $filter -F '|||||||||'
  err| ERROR: empty flow exclusion definition
  [1]
  $ quiet tarnioctl setflowexclusion -Override -f $filter -F '||||||||'
  err| ERROR: cannot find source vnic/vm
  [1]
  $ quiet tarnioctl setflowexclusion -Override -f $filter -F 'x'
  err| ERROR: cannot find source mac address
  [1]
  $ quiet tarnioctl setflowexclusion -Override -f $filter -F '!x|||||||||'
  err| ERROR: invalid source mac address x
  [1]
  $ quiet tarnioctl setflowexclusion -Override -f $filter -F '|||||6|22|!!||'
  err| ERROR: invalid dest port !
  [1]
  $ quiet tarnioctl setflowexclusion -Override -f $filter -F '||||||80|||'
  err| ERROR: source port is defined but protocol is not defined
  [1]
  $ quiet tarnioctl setflowexclusion -Override -f $filter -F '|||||!6||80||'
  err| ERROR: dest port is defined for negate protocol
  [1]
  $ quiet tarnioctl setflowexclusion -Override -f $filter -F '|||||6,1|80|||'
  err| ERROR: source port is defined for protocol 1
  [1]
  $ brief quiet tarnioctl setflowexclusion -Override -f $filter -g on
  (usage)
  err| ERROR: cannot combine global flags with filter
  [1]
  $ brief quiet tarnioctl setflowexclusion -Override -g maybe
  (usage)
  [1]
  $ quiet tarnioctl setflowexclusion -Override -f 0123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456789
  err| ERROR: invalid filter 0123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456789.
  [1]
  $ quiet tarnioctl getflowexclusion -f 0123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456789
  err| ERROR: invalid filter name 0123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456789
  [1]
  $ quiet tarnioctl getflowexclusion -f $filter
  Flow exclusion count        : 2
    0: !01:02:03:04:05:06/ff:ff:ff:ff:ff:ff|||10.0.0.0/255.0.0.0|||||50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77|
    1: |||||tcp|22|||

One more than there may be is left out.

  $ set --
  $ for i in $(seq 1025); do set -- "$@" -F "||$i|||||||"; done
  $ quiet tarnioctl setflowexclusion -Override -f $filter "$@"
  maximal number of flow exclusion reached
  $ quiet tarnioctl getflowexclusion -f $filter | sed -n '1,2p; $p'
  Flow exclusion count        : 1024
    0: ||0x0001|||||||
  1023: ||0x0400|||||||
  $ tarnlab show $filter | sed -n '/flow-exclusion/,$p' | tail -2
      ethertypes 0x0010
      and 1008 more

What nobody answers: the status is 0 all the same.

  $ lab tarnioctl setflowexclusion -Override -f nic-9-eth0-kelpco-sfw.9
  log| tarnioctl <83> tarnfw: TarnFWIoctl:sendIoctl():N ioctl cmd 25 on device /dev/brq-tarn failed: No such file or directory\n\n
  $ lab tarnioctl getflowexclusion -f nic-9-eth0-kelpco-sfw.9
  Flow exclusion count        : 0
  log| tarnioctl <83> tarnfw: TarnFWIoctl:sendIoctl():N ioctl cmd 26 on device /dev/brq-tarn failed: No such file or directory\n\n
  $ tarnlab fault absent
  $ lab tarnioctl setflowexclusion -Override -g off
  turn off flow collection
  log| tarnioctl <84> tarnfw: TarnFWIoctl:FW_Ioctl():N error 12: cannot open device /dev/brq-tarn: 2\n
  $ lab tarnioctl getflowexclusion
  Global flow collection      : on
  non-IP L2 flow collection   : on
  L2 flow collection          : on
  Drop packet flow collection : on
  Flow exclusion count        : 0
  log| tarnioctl <84> tarnfw: TarnFWIoctl:FW_Ioctl():N error 12: cannot open device /dev/brq-tarn: 2\n
  $ tarnlab fault clear

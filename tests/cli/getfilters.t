The filters of the host.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made

  $ run tarnioctl getfilters -h
  Get all available filters in system.
  
  Usage: tarnioctl getfilters <options>
      -a <string>     : agent name, default agent is kelpco-sfw
      -s              : print statistics
      -d              : get filter to slowpath distribution
      -c <slowpathID> : get slowpath to filter distribution
      -n              : get number of filters
      -h              : this help message

  $ lab tarnioctl getfilters
  
  Filter Name              : nic-1002672-eth0-kelpco-sfw.2
  VM UUID                  : 50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26
  VNIC Index               : 0
  VNIC UUID                : 502e1f3a-c21a-632a-4ae1-00505699b626.000
  VIF ID                   : 8d0c7a10-55f4-4c1e-9b02-0000632a0000
  LSP ID                   : c3b1f2e4-7a65-4d0f-8e11-0000632a0000
  Filter Rule Config       : none
  Filter Hash              : 18770
  
  Filter Name              : nic-1002672-eth0-kelpco-inspect.4
  VM UUID                  : 50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26
  VNIC Index               : 0
  VNIC UUID                : 502e1f3a-c21a-632a-4ae1-00505699b626.000
  VIF ID                   : 8d0c7a10-55f4-4c1e-9b02-0000632a0000
  LSP ID                   : c3b1f2e4-7a65-4d0f-8e11-0000632a0000
  Service Profile          : web-profile
  Filter Rule Config       : none
  Filter Hash              : 18772
  
  Filter Name              : nic-1002731-eth0-kelpco-sfw.2
  VM UUID                  : 50 2e 1f 3a c2 1a 63 2b-4a e1 00 50 56 99 b6 2d
  VNIC Index               : 0
  VNIC UUID                : 502e1f3a-c21a-632b-4ae1-00505699b62d.000
  VIF ID                   : 8d0c7a10-55f4-4c1e-9b02-0000632b0000
  LSP ID                   : c3b1f2e4-7a65-4d0f-8e11-0000632b0000
  Filter Rule Config       : none
  Filter Hash              : 20599
  
  Filter Name              : nic-1003044-eth0-kelpco-sfw.2
  VM UUID                  : 50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77
  VNIC Index               : 0
  VNIC UUID                : 502e1f3a-c21a-7011-4ae1-005056991077.000
  VIF ID                   : 8d0c7a10-55f4-4c1e-9b02-000070110000
  LSP ID                   : c3b1f2e4-7a65-4d0f-8e11-000070110000
  Filter Rule Config       : none
  Filter Hash              : 30302
  Flow Collection Flags   
     L2 Pass Flows         : On    
     L2 Drop Flows         : On    
     L3 Drop Flows         : On    
     L3 Inactive Flows     : Off   
     L3 Active Flows       : On    
     All Flows             : On    
     Global override       : Off   
  
  Filter Name              : nic-1003044-eth1-kelpco-sfw.2
  VM UUID                  : 50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77
  VNIC Index               : 1
  VNIC UUID                : 502e1f3a-c21a-7011-4ae1-005056991077.001
  VIF ID                   : 8d0c7a10-55f4-4c1e-9b02-000070110001
  LSP ID                   : c3b1f2e4-7a65-4d0f-8e11-000070110001
  Filter Rule Config       : none
  Filter Hash              : 30302
  Flow Collection Flags   
     L2 Pass Flows         : Off   
     L2 Drop Flows         : Off   
     L3 Drop Flows         : On    
     L3 Inactive Flows     : On    
     L3 Active Flows       : On    
     All Flows             : On    
     Global override       : On    
  
  Filter Name              : nic-1003120-eth0-kelpco-sfw.2
  VM UUID                  : 50 2e 1f 3a c2 1a 70 12-4a e1 00 50 56 99 10 7e
  VNIC Index               : 0
  VNIC UUID                : 502e1f3a-c21a-7012-4ae1-00505699107e.000
  VIF ID                   : 8d0c7a10-55f4-4c1e-9b02-000070120000
  LSP ID                   : c3b1f2e4-7a65-4d0f-8e11-000070120000
  Filter Rule Config       : none
  Filter Hash              : 32658
  
  Filter Name              : nic-998214-eth0-kelpco-sfw.2
  VM UUID                  : 50 2e 1f 3a c2 1a 04 51-4a e1 00 50 56 99 1e 37
  VNIC Index               : 0
  VNIC UUID                : 502e1f3a-c21a-0451-4ae1-005056991e37.000
  Filter Rule Config       : none
  Filter Hash              : 11644
  
  Filter Name              : nic-998214-eth0-kelpco-spoof.guard.1
  VM UUID                  : 50 2e 1f 3a c2 1a 04 51-4a e1 00 50 56 99 1e 37
  VNIC Index               : 0
  VNIC UUID                : 502e1f3a-c21a-0451-4ae1-005056991e37.000
  Filter Rule Config       : none
  Filter Hash              : 11643
  Flow Collection Flags   
     L2 Pass Flows         : On    
     L2 Drop Flows         : On    
     L3 Drop Flows         : On    
     L3 Inactive Flows     : On    
     L3 Active Flows       : On    
     All Flows             : Off   
     Global override       : Off   
  $ lab tarnioctl GetFilters -n
  Total number of kernel filters: 8

Statistics of an agent's filters.

  $ lab tarnioctl getfilters -s -a kelpco-inspect
  
  Filter Name              : nic-1002672-eth0-kelpco-inspect.4
  VM UUID                  : 50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26
  VNIC Index               : 0
  VNIC UUID                : 502e1f3a-c21a-632a-4ae1-00505699b626.000
  VIF ID                   : 8d0c7a10-55f4-4c1e-9b02-0000632a0000
  LSP ID                   : c3b1f2e4-7a65-4d0f-8e11-0000632a0000
  Service Profile          : web-profile
  Filter Rule Config       : none
  Filter Hash              : 18772
  Basic Stats: From Switch  To Switch
     Total rx from weirgate : 1415880 897660
     Total packets         : 1415790 897570
     Total time (us)       : 2123685 1196760
     Rate (us/pkt)         : 1 1
     Rate (pkt/s)          : 666666 750000
     Total punted to slowpath : 1620 1260
     Total copied to slowpath : 450 360
     Total hitting failurepolicy : 30 18
     Total back from Slowpath : 1530 1170
     Total Slow time (us)  : 73080 57600
     Slow Rate (us/pkt)    : 47 49
     Slow Rate (pkt/s)     : 20935 20312
  Reject Failure Stats
     Bad L2                : 0
     Bad Ethernet          : 12
     Non IP                : 180
     Short IP              : 0
     Bad IPv4              : 8
     Bad IPv6              : 0
     Bad TCP               : 22
     Bad ICMP              : 0
     Rst for TCP Rst       : 45
     Rate Limited          : 10
     Failed Alloc          : 0
     Failed Other          : 0
  CPS Stats
     Current               : 9
     Max (in window)       : 22
     Avg (in window)       : 11
     High Water Mark       : 45
     Active Conn           : 30
     High Water Mark Conn  : 90
  RBE Filter Stats
     RBE In Pkt            : 270
     RBE Out Pkt           : 180
     RBE In Drop           : 15
     RBE Out Drop          : 11

Slow paths.

  $ lab tarnioctl getfilters -d
  VM UUID                                            VNIC Index             Filter Name                      SlowPathID
  ------------------------------------------------------------------------------------------------------------------------
  50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26        0            nic-1002672-eth0-kelpco-sfw.2              1
  50 2e 1f 3a c2 1a 63 2b-4a e1 00 50 56 99 b6 2d        0            nic-1002731-eth0-kelpco-sfw.2              1
  50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77        0            nic-1003044-eth0-kelpco-sfw.2              2
  50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77        1            nic-1003044-eth1-kelpco-sfw.2              2
  50 2e 1f 3a c2 1a 04 51-4a e1 00 50 56 99 1e 37        0            nic-998214-eth0-kelpco-sfw.2               3
  $ lab tarnioctl getfilters -d -c 2
  VM UUID                                            VNIC Index             Filter Name                      SlowPathID
  ------------------------------------------------------------------------------------------------------------------------
  50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77        0            nic-1003044-eth0-kelpco-sfw.2              2
  50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77        1            nic-1003044-eth1-kelpco-sfw.2              2
  $ lab tarnioctl getfilters -c 9 -d
  VM UUID                                            VNIC Index             Filter Name                      SlowPathID
  ------------------------------------------------------------------------------------------------------------------------
  $ lab tarnioctl getfilters -c two | head -3
  Get all available filters in system.
  
  Usage: tarnioctl getfilters <options>
  $ lab tarnioctl getfilters -i | grep -c 'VIF ID'
  6

An agent without filters is an error. When the kernel hands out only others, that is none.

  $ lab tarnioctl getfilters -a nobody
  err| ERROR: there is no filter for agent nobody
  [1]
  $ lab tarnioctl getfilters -a ''

Names that are too long, options that are not there.

  $ lab tarnioctl getfilters -a "$(printf '%0100d' 0)"
  err| ERROR: invalid agent name 0000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000
  [1]
  $ brief lab tarnioctl getfilters -x
  (usage)
  err| getfilters: invalid option -- 'x'
  [1]
  $ brief lab tarnioctl getfilters -a
  (usage)
  err| getfilters: option requires an argument -- 'a'
  [1]

The old name of the device.

  $ TARN_CONTROL_DEVICE_PATH_OLD= lab tarnioctl getfilters -n
  Total number of kernel filters: 8

Requests that fail: the first looks like a host without filters, the second like filters without
names, since only the kernel's own status counts. The log says more.

  $ tarnlab fault errno EPERM --count 1 --only 20
  $ lab tarnioctl getfilters
  err| ERROR: there is no filter for agent 
  log| tarnioctl <83> tarnfw: TarnFWIoctl:sendIoctl():N ioctl cmd 20 on device /dev/brq-tarn failed: Operation not permitted\n\n
  [1]
  $ tarnlab fault errno ENOMEM --count 1 --only 21
  $ lab tarnioctl getfilters -a kelpco-inspect
  log| tarnioctl <83> tarnfw: TarnFWIoctl:sendIoctl():N ioctl cmd 21 on device /dev/brq-tarn failed: Cannot allocate memory\n\n

No device at all.

  $ tarnlab fault absent
  $ lab tarnioctl getfilters -n
  Total number of kernel filters: 0
  log| tarnioctl <84> tarnfw: TarnFWIoctl:FW_Ioctl():N error 12: cannot open device /dev/brq-tarn: 2\n

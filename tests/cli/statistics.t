Statistics of a filter, round trips of a flow, and what is known about one connection.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2

  $ run tarnioctl getfilterstat -h
  Get traffic statistics of a filter.
  
  Usage: tarnioctl getfilterstat <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -z          : reset the stats to zero
      -v<number>  : enable verbose log
      -m <string> : verbose log component name or id
      -h          : this help message
  $ run tarnioctl clearfilterstat -Override -h
  Clear statistics for a filter.
  
  Usage: tarnioctl clearfilterstat <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -h          : this help message
  $ run tarnioctl rtt -h
  retrieve RTT info for a flow.
  
  Usage: tarnioctl rtt <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -i <flowid> : flow id, hexadecimal, as getflows prints it
      -r          : reset RTT average
      -h          : this help message
  $ run tarnioctl getattrinfo -Override -h
  Set connection attribute setting for a filter.
  
  Usage: tarnioctl getattrinfo <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -m <number> : state id
      -S <IP Address> : source address
      -D <IP Address> : destination address
      -s <0-65535> : source port
      -d <0-65535> : destination port
      -p <TCP,UDP> : protocol, default is TCP
      -i <IN, OUT> : direction, default is OUT
      -v <number> : enable verbose log
      -h          : this help message
  $ run tarnioctl getstatedpiinfo -Override -h
  get state dpi info for a filter.
  
  Usage: tarnioctl getstatedpiinfo <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -s <stateid> : state id, hexadecimal
      -v<number>  : enable verbose log
      -h          : this help message
  $ run tarnioctl getfilterstat -v
  err| ERROR: filter is missing.
  [1]
  $ run tarnioctl getfilterstat -f $filter --zero
  Get traffic statistics of a filter.
  
  Usage: tarnioctl getfilterstat <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -z          : reset the stats to zero
      -v<number>  : enable verbose log
      -m <string> : verbose log component name or id
      -h          : this help message
  err| getfilterstat: option '--zero' requires an argument
  [1]
  $ run tarnioctl clearfilterstat -Override
  err| ERROR: filter is missing.
  [1]
  $ run tarnioctl clearfilterstat -f $filter
  err| ERROR: Command clearfilterstat is dangerous and can cause unintended consequence!
  err| ERROR: Please supply first option -Override in order to override the safety guard and actually run the command.
  [1]
  $ brief run tarnioctl rtt -i 1
  (usage)
  err| ERROR: filter is missing
  [1]
  $ brief run tarnioctl rtt -f $filter
  (usage)
  err| ERROR: flowid is missing
  [1]
  $ brief run tarnioctl getattrinfo -Override
  (usage)
  err| ERROR: filter is missing
  [1]
  $ brief run tarnioctl getstatedpiinfo -Override
  (usage)
  err| ERROR: filter is missing
  [1]

What was counted on the interface, by kind and by reason; kinds that did not occur are left out.

  $ lab tarnioctl getfilterstat -f $filter
  PACKETS                       IN                OUT
  -------                       --                ---
  IPv4 TCP                   19200              18960
  IPv4 UDP                   18720              18480
  IPv4 ICMP                  18240              18000
  IPv4 GRE                   17280                  0
  IPv4 ESP                   16800              16560
  IPv4 SCTP                  16320              16080
  IPv4 other                 15360              15120
  IPv6 TCP                   14880              14640
  IPv6 UDP                   14400              14160
  IPv6 ESP                   13440                  0
  IPv6 fragments             12960              12720
  IPv6 other                 12480              12240
  ARP replies                11520              11280
  LLDP                       11040              10800
  VLAN                       10560              10320
  short packet                9600                  0
  bad IPv4 header             9120               8880
  bad IPv6 header             8640               8400
  bad UDP header              7680               7440
  bad ICMP header             7200               6960
  bad checksum                6720               6480
  bad fragment                5760                  0
  fragment timeout            5280               5040
  state mismatch              4800               4560
  source limit                3840               3600
  sequence window             3360               3120
  no route                    2880               2640
  rule drop                   1920                  0
  rule reject                 1440               1200
  layer 2 rule drop            960                720
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  $ quiet tarnioctl getfilterstat -v2 -m cmd -f $filter --zero=1 | head -n 5
  verbose level : 2
  weirgate agent: kelpco-sfw
  PACKETS                       IN                OUT
  -------                       --                ---
  IPv4 TCP                   19200              18960
  $ quiet tarnioctl getfilterstat -f $filter
  PACKETS                       IN                OUT
  -------                       --                ---
  $ tarnlab log -s | tail -n 3 | cut -d : -f 4-
   GetKifStat() = ok
   SetKifStat() = ok
   GetKifStat() = ok
  $ quiet tarnioctl getfilterstat -f nic-9-eth0-kelpco-sfw.9
  err| ERROR: Failed to get filter stat
  [1]

All that was counted for a filter.

  $ counters() { quiet tarnioctl getfilters -s | grep -e 'Filter Name' -e 'Total packets' | grep -A 1 $1; }
  $ other=nic-1002731-eth0-kelpco-sfw.2
  $ counters $other
  Filter Name              : nic-1002731-eth0-kelpco-sfw.2
     Total packets         : 3114738 1974654
  $ lab tarnioctl clearfilterstat -Override -f $other
  $ counters $other
  Filter Name              : nic-1002731-eth0-kelpco-sfw.2
     Total packets         : 0 0
  $ quiet tarnioctl getfilterstat -f $other
  PACKETS                       IN                OUT
  -------                       --                ---
  $ tarnlab show $other | tail -n 1
    statistics were cleared
  $ quiet tarnioctl clearfilterstat -Override -v -f $filter
  verbose level : 1
  weirgate agent: kelpco-sfw
  DEBUG: Clear stats for filter nic-1002672-eth0-kelpco-sfw.2
  $ tarnlab log -s -n 1
  firewall 35: clear statistics(filter "nic-1002672-eth0-kelpco-sfw.2") = ok
  $ lab tarnioctl clearfilterstat -Override -f nic-9-eth0-kelpco-sfw.9
  log| tarnioctl <83> tarnfw: TarnFWIoctl:sendIoctl():N ioctl cmd 35 on device /dev/brq-tarn failed: No such file or directory\n\n

Round trips of a connection: the times of both directions add up to the one that getflows prints.

  $ flow=5c1e000100001001
  $ quiet tarnioctl getconnections -f $filter | grep -o "^$flow .*rtt [0-9]*"
  5c1e000100001001 Active tcp 0800 IN 4095 24 44 (est) 10.31.0.1:Unknown(49152) -> 10.20.1.40:https(443) 536 EST:EST  rtt 150000
  $ lab tarnioctl rtt -f $filter -i $flow
  VM to switch (OUT): seqno = 1460
                      ticks = 3504000
                      win_num_samples = 1
                      win_total_ticks = 144007200 (60003 us)
                      tot_win_avg_ticks = 144000000 (60000 us)
  switch to VM: (IN): seqno = 536
                      ticks = 1286400
                      win_num_samples = 1
                      win_total_ticks = 216007200 (90003 us)
                      tot_win_avg_ticks = 216000000 (90000 us)
  cyc_per_usec = 2400
  RTT = 150000 (outRTT = 60000, inRTT = 90000)
  win samples = 8, win_weight = 3, accum_weight = 5
  buf_entries = 17, len = 33
  $ tarnlab log -s -n 1
  firewall 42: round trips(filter "nic-1002672-eth0-kelpco-sfw.2", flow 0x5c1e000100001001, size 220, reset 0) = ok {version 1, round trip 150000, cycles 2400, out sequence 1460, out average 144000000, out samples 1, in sequence 536, in average 216000000, in samples 1}
  $ quiet tarnioctl rtt -f $filter -i 0x5c1e00010000100a | grep -v -e seqno -e ' ticks'
                      win_num_samples = 4
                      win_total_ticks = 576028800 (60003 us)
                      tot_win_avg_ticks = 144000000 (60000 us)
                      win_num_samples = 0
                      win_total_ticks = 0 (0 us)
                      tot_win_avg_ticks = 216007200 (90003 us)
  cyc_per_usec = 2400
  RTT = 150003 (outRTT = 60000, inRTT = 90003)
  win samples = 8, win_weight = 3, accum_weight = 5
  buf_entries = 20, len = 36
  $ quiet tarnioctl rtt --filter $filter --flowid=$flow --reset | grep RTT
  RTT = 150000 (outRTT = 60000, inRTT = 90000)
  $ quiet tarnioctl rtt -f $filter -i $flow
  VM to switch (OUT): seqno = 1460
                      ticks = 3504000
                      win_num_samples = 0
                      win_total_ticks = 0 (0 us)
                      tot_win_avg_ticks = 0 (0 us)
  switch to VM: (IN): seqno = 536
                      ticks = 1286400
                      win_num_samples = 0
                      win_total_ticks = 0 (0 us)
                      tot_win_avg_ticks = 0 (0 us)
  cyc_per_usec = 2400
  RTT = 0 (outRTT = 0, inRTT = 0)
  win samples = 8, win_weight = 3, accum_weight = 5
  buf_entries = 17, len = 33
  $ quiet tarnioctl rtt -f $filter -i 5c1e000100001013
  Unable to find flow, ver = 0
  [1]
  $ lab tarnioctl rtt -f nic-9-eth0-kelpco-sfw.9 -i $flow
  Unable to find flow, ver = 0
  log| tarnioctl <83> tarnfw: TarnFWIoctl:sendIoctl():N ioctl cmd 42 on device /dev/brq-tarn failed: No such file or directory\n\n
  [1]

Attributes of a connection, by its addresses or its id. What goes to standard error is there on success
too.

  $ attributes() { quiet tarnioctl getattrinfo -Override -f $filter "$@"; }
  $ attributes -S 10.20.1.40 -D 10.31.0.4 -s 49155 -d 443
  Number of attributes : 3
  Serialization size : 154
  err| ERROR: reading dst port (no-eol)
  $ quiet tarnioctl getattrinfo -Override -v0 -f $filter --srcip=10.20.1.40 --dstip=10.31.0.4 --sport=49155 --dport=443 --direction=OUT --proto=tcp
  DEBUG: SRC 10.20.1.40:49155  DST 10.31.0.4:443  Dir OUT Proto tcp
  Number of attributes : 3
  Serialization size : 154
  err| ERROR: reading dst port (no-eol)
  $ tarnlab log -s -n 1
  firewall 15: filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 0: GetConnAttrInfo(selector 2, connection 0a1401280000000000000000000000000a1f0004000000000000000000000000c00301bb04000006, id 0) = ok {attributes 3, bytes 154}
  $ attributes -m 1 -v1
  verbose level : 1
  weirgate agent: kelpco-sfw
  weirgate vm uuid: nic-1002672-eth0-kelpco-sfw.2
  Number of attributes : 0
  Serialization size : 12
  $ attributes -S 2001:db8:31::1 -D 2001:db8:14::28 -p udp -i IN
  Number of attributes : 0
  Serialization size : 12
  $ brief quiet tarnioctl getattrinfo -Override -f $filter -m 0
  (usage)
  err| ERROR: invalid state id
  [1]
  $ brief quiet tarnioctl getattrinfo -Override -f $filter -m x
  (usage)
  err| ERROR: Invalid state id
  [1]
  $ brief quiet tarnioctl getattrinfo -Override -f $filter -S 10.0.0.1
  (usage)
  err| ERROR: SRC or DST Addr is missing
  [1]
  $ brief quiet tarnioctl getattrinfo -Override -f $filter -S 10.0.0.1 -D ::1
  (usage)
  err| ERROR: Invalid SRC/DST Address
  [1]
  $ brief quiet tarnioctl getattrinfo -Override -f $filter -s 65536
  (usage)
  err| ERROR: Invalid Sport Specified
  [1]
  $ brief quiet tarnioctl getattrinfo -Override -f $filter -d 65536
  (usage)
  err| ERROR: reading dst portERROR: Invalid Dport Specified
  [1]
  $ brief quiet tarnioctl getattrinfo -Override -f $filter -p nonesuch
  (usage)
  err| ERROR: Invalid Protocol Name Specified
  $ brief quiet tarnioctl getattrinfo -Override -f $filter -p icmp
  (usage)
  err| ERROR: Invalid Protocol Specified
  $ brief quiet tarnioctl getattrinfo -Override -f $filter -i in
  (usage)
  err| ERROR: Invalid Dir Specified
  $ brief quiet tarnioctl getattrinfo -Override -f $filter -t 1
  (usage)
  [1]
  $ quiet tarnioctl getattrinfo -Override -f nic-9-eth0-kelpco-sfw.9 -m 1
  [1]

How far inspection of a connection has come.

  $ state() { quiet tarnioctl getstatedpiinfo -Override -f $filter "$@"; }
  $ lab tarnioctl getstatedpiinfo -Override -f $filter -s 1001
  oaks: stateid: 76561193665298432
  oaks: stateid: 110000000000000
  state id : 110000000000000
  DPI State : NONE
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  $ for id in 1002 1003 1004 1005; do state -s $id | tail -n 1; done
  DPI State : PUNT
  DPI State : UNKNOWN
  DPI State : UNKNOWN
  DPI State : UNKNOWN
  $ state -s $flow -v
  oaks: stateid: 76561193682083420
  oaks: stateid: 110000001001e5c
  verbose level : 1
  weirgate agent: kelpco-sfw
  weirgate vm uuid: nic-1002672-eth0-kelpco-sfw.2
  state id : 110000001001e5c
  DPI State : NONE
  $ tarnlab log -s -n 1
  firewall 15: filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 0: GetNConnDPIInfoByID(entries 1) = ok {entries 1}
  $ state -s 1
  oaks: stateid: 72057594037927936
  oaks: stateid: 100000000000000
  state id : 100000000000000
  failed to find state
  $ state
  state id : 0
  failed to find state
  $ brief quiet tarnioctl getstatedpiinfo -Override -f $filter -s 1g
  (usage)
  err| ERROR: Invalid state id 1g
  [1]
  $ brief quiet tarnioctl getstatedpiinfo -Override -f $filter --stateid=1
  (usage)
  [1]
  $ brief quiet tarnioctl getstatedpiinfo -Override -f $filter --byteorder
  (usage)
  [1]
  $ quiet tarnioctl getstatedpiinfo -Override -f nic-9-eth0-kelpco-sfw.9 -s 1001
  oaks: stateid: 76561193665298432
  oaks: stateid: 110000000000000
  state id : 0
  failed to find state

Protection against floods.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ open=nic-998214-eth0-kelpco-sfw.2
  $ half=nic-998214-eth0-kelpco-spoof.guard.1

  $ run tarnioctl getfloodstat -h
  Get flood protection status.
  
  Usage: tarnioctl getfloodstat <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -s          : print syncache rows
      -z          : zero flood and syncache counters
      -h          : this help message
  $ run tarnioctl setfloodconfig -h
  Configure flood protection parameters.
  
  Usage: tarnioctl setfloodconfig <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -u <number> : UDP active flow limit (0 == no limit)
      -i <number> : ICMP active flow limit (0 == no limit)
      -t <number> : TCP half-open flow limit (0 == no limit)
      -o <number> : OTHER active flow limit (0 == no limit)
      -s <0|1>    : SYN cache
      -b <hashsize> : number of hash buckets (power of 2)
      -r <0|1>    : RST spoofing
      -z          : zero counters
      -h          : this help message
  $ run tarnioctl getfloodstat -s
  err| ERROR: filter is missing.
  [1]
  $ run tarnioctl setfloodconfig -z
  err| ERROR: filter is missing.
  [1]
  $ brief run tarnioctl getfloodstat -v
  (usage)
  err| getfloodstat: invalid option -- 'v'
  [1]
  $ brief run tarnioctl setfloodconfig -u
  (usage)
  err| setfloodconfig: option requires an argument -- 'u'
  [1]

With limits, without them, and with some.

  $ quiet tarnioctl getfloodstat -f $filter
  UDP:
      Flood Protection        : enabled
      Active UDP Flows        = 1680
      Active UDP Flow Limit   = 10000
      UDP Flows Denied        = 720
  ICMP:
      Flood Protection        : enabled
      Active ICMP Flows       = 480
      Active ICMP Flow Limit  = 2000
      ICMP Flows Denied       = 960
  OTHER:
      Flood Protection        : enabled
      Active OTHER Flows      = 240
      Active OTHER Flow Limit = 3000
      OTHER Flows Denied      = 1440
  TCP Half-open:
      Flood Protection        : enabled
      Active TCP Flows        = 1200
      Active TCP Flow Limit   = 4000
      TCP Flows Denied        = 3120
      TCP Syncache            : enabled, 16 x 8
                              : inuse = 36, purged = 684, notfound = 766
      RST Spoofing            : enabled, 2160 sent
  
  $ quiet tarnioctl getfloodstat -f $open -s
  UDP:
      Flood Protection        : disabled
      Active UDP Flows        = 84
  ICMP:
      Flood Protection        : disabled
      Active ICMP Flows       = 24
  OTHER:
      Flood Protection        : disabled
      Active OTHER Flows      = 12
  TCP Half-open:
      Flood Protection        : disabled
      Active TCP Flows        = 60
      TCP Syncache            : disabled
  
  $ quiet tarnioctl getfloodstat -f $half
  UDP:
      Flood Protection        : enabled
      Active UDP Flows        = 84
      Active UDP Flow Limit   = 10000
      UDP Flows Denied        = 36
  ICMP:
      Flood Protection        : enabled
      Active ICMP Flows       = 24
      Active ICMP Flow Limit  = 2000
      ICMP Flows Denied       = 48
  OTHER:
      Flood Protection        : disabled
      Active OTHER Flows      = 12
  TCP Half-open:
      Flood Protection        : enabled
      Active TCP Flows        = 60
      Active TCP Flow Limit   = 4000
      TCP Flows Denied        = 156
      TCP Syncache            : enabled, 16 x 8
                              : inuse = 36, purged = 30, notfound = 34
      RST Spoofing            : disabled
  
  $ quiet tarnioctl getfloodstat -f $filter -s | sed -n '/^Syncache/,$p'
  Syncache:
      0: inuse = 6, purged = 240, notfound = 160
      1: inuse = 3, purged = 120, notfound = 120
      2: inuse = 0, purged = 80, notfound = 96
      4: inuse = 3, purged = 48, notfound = 68
      5: inuse = 0, purged = 40, notfound = 60
      6: inuse = 6, purged = 34, notfound = 53
      8: inuse = 0, purged = 26, notfound = 43
      9: inuse = 6, purged = 24, notfound = 40
      10: inuse = 3, purged = 21, notfound = 36
      12: inuse = 6, purged = 18, notfound = 32
      13: inuse = 3, purged = 17, notfound = 30
      14: inuse = 0, purged = 16, notfound = 28
  

Counters are set to zero after they were read.

  $ quiet tarnioctl getfloodstat -f $filter -z | grep -e Denied -e purged -e sent
      UDP Flows Denied        = 720
      ICMP Flows Denied       = 960
      OTHER Flows Denied      = 1440
      TCP Flows Denied        = 3120
                              : inuse = 36, purged = 684, notfound = 766
      RST Spoofing            : enabled, 2160 sent
  $ quiet tarnioctl getfloodstat -f $filter -s | grep -e Denied -e purged -e sent -e Active
      Active UDP Flows        = 1680
      Active UDP Flow Limit   = 10000
      UDP Flows Denied        = 0
      Active ICMP Flows       = 480
      Active ICMP Flow Limit  = 2000
      ICMP Flows Denied       = 0
      Active OTHER Flows      = 240
      Active OTHER Flow Limit = 3000
      OTHER Flows Denied      = 0
      Active TCP Flows        = 1200
      Active TCP Flow Limit   = 4000
      TCP Flows Denied        = 0
                              : inuse = 36, purged = 0, notfound = 0
      RST Spoofing            : enabled, 0 sent
      0: inuse = 6, purged = 0, notfound = 0
      1: inuse = 3, purged = 0, notfound = 0
      4: inuse = 3, purged = 0, notfound = 0
      6: inuse = 6, purged = 0, notfound = 0
      9: inuse = 6, purged = 0, notfound = 0
      10: inuse = 3, purged = 0, notfound = 0
      12: inuse = 6, purged = 0, notfound = 0
      13: inuse = 3, purged = 0, notfound = 0
  $ quiet tarnioctl getfloodstat -f $half | grep -c 'Denied        = 0'
  0
  [1]
  $ quiet tarnioctl setfloodconfig -f $half -z
  $ quiet tarnioctl getfloodstat -f $half | grep -c 'Denied        = 0'
  2

What is set is read; what is not given stays.

  $ quiet tarnioctl setfloodconfig -f $open -u 50 -t 7 -s 1 -b 4 -r 1
  $ quiet tarnioctl getfloodstat -f $open -s
  UDP:
      Flood Protection        : enabled
      Active UDP Flows        = 50
      Active UDP Flow Limit   = 50
      UDP Flows Denied        = 36
  ICMP:
      Flood Protection        : disabled
      Active ICMP Flows       = 24
  OTHER:
      Flood Protection        : disabled
      Active OTHER Flows      = 12
  TCP Half-open:
      Flood Protection        : enabled
      Active TCP Flows        = 7
      Active TCP Flow Limit   = 7
      TCP Flows Denied        = 156
      TCP Syncache            : enabled, 4 x 8
                              : inuse = 9, purged = 22, notfound = 18
      RST Spoofing            : enabled, 108 sent
  Syncache:
      0: inuse = 3, purged = 12, notfound = 8
      1: inuse = 6, purged = 6, notfound = 6
      2: inuse = 0, purged = 4, notfound = 4
  
  $ quiet tarnioctl setfloodconfig -f $open -s 0 -u 0 -i 9 -o 8
  $ quiet tarnioctl getfloodstat -f $open
  UDP:
      Flood Protection        : disabled
      Active UDP Flows        = 84
  ICMP:
      Flood Protection        : enabled
      Active ICMP Flows       = 9
      Active ICMP Flow Limit  = 9
      ICMP Flows Denied       = 48
  OTHER:
      Flood Protection        : enabled
      Active OTHER Flows      = 8
      Active OTHER Flow Limit = 8
      OTHER Flows Denied      = 72
  TCP Half-open:
      Flood Protection        : enabled
      Active TCP Flows        = 7
      Active TCP Flow Limit   = 7
      TCP Flows Denied        = 156
      TCP Syncache            : disabled
  
  $ tarnlab show $open
  filter nic-998214-eth0-kelpco-sfw.2
    agent kelpco-sfw, vnic 0, slow path 3
    flows: 219 active, 97 inactive, 96 dropped, 16 L2 pass, 15 L2 drop, 1 of other kinds
    flood.udp: 0
    flood.icmp: 9
    flood.tcp: 7
    flood.other: 8
    flood.syncache: off
    flood.buckets: 4
    kif.fast-path: off
    spoofguard.addresses: ip 10.20.9.14, ip fd00:20:9::14, addrset backup-addresses
  $ tarnlab log -s | sed -n 's/.*message 0: SetFloodCfg/SetFloodCfg/p'
  SetFloodCfg(udp 4294967295, icmp 4294967295, tcp 4294967295, other 4294967295, syncache 4294967295, buckets 4294967295, rst spoofing 4294967295, zero 1) = ok
  SetFloodCfg(udp 50, icmp 4294967295, tcp 7, other 4294967295, syncache 1, buckets 4, rst spoofing 1, zero 0) = ok
  SetFloodCfg(udp 0, icmp 9, tcp 4294967295, other 8, syncache 0, buckets 4294967295, rst spoofing 4294967295, zero 0) = ok

What is refused.

  $ lab tarnioctl setfloodconfig -f $filter -b 3
  err| ERROR: Failed to set flood config: invalid argument
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <84> tarnfw: TarnFWCmd:execute():N failed to execute command SetFloodCfg: invalid argument\n\n
  [1]
  $ quiet tarnioctl setfloodconfig -f $filter -s 2
  err| ERROR: Failed to set flood config: invalid argument
  [1]
  $ quiet tarnioctl setfloodconfig -f $filter -u -2
  err| ERROR: Failed to set flood config: invalid argument
  [1]
  $ tarnlab log -s -n 1
  firewall 15: filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 0: SetFloodCfg(udp 4294967294, icmp 4294967295, tcp 4294967295, other 4294967295, syncache 4294967295, buckets 4294967295, rst spoofing 4294967295, zero 0) = status 3 (negative limit of udp)
  $ quiet tarnioctl getfloodstat -f nic-9-eth0-kelpco-sfw.9
  err| ERROR: Failed to get flood status: switch port not found
  [1]
  $ tarnlab fault status out-of-memory
  $ quiet tarnioctl getfloodstat -f $filter
  err| ERROR: Failed to get flood status: out of memory
  [1]

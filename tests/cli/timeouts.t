Timeouts of a filter's connections.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2

  $ run tarnioctl gettimeout -h
  Get connection timeout setting for a filter.
  
  Usage: tarnioctl gettimeout <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -t <string> : timeout name, all timeouts without it
      -v<number>  : enable verbose log
      -h          : this help message
  $ run tarnioctl settimeout -Override -h
  Set connection timeout setting for a filter.
  
  Usage: tarnioctl settimeout <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -t <string> : timeout setting, name=value
      -v<number>  : enable verbose log
      -h          : this help message
  $ brief run tarnioctl gettimeout
  (usage)
  err| ERROR: filter is missing
  [1]
  $ brief run tarnioctl settimeout -Override -t dfw.interval=5
  (usage)
  err| ERROR: filter is missing
  [1]
  $ brief run tarnioctl gettimeout -f $filter -m cmd
  (usage)
  err| gettimeout: invalid option -- 'm'
  [1]
  $ run tarnioctl settimeout -f $filter -t dfw.interval=5
  err| ERROR: Command settimeout is dangerous and can cause unintended consequence!
  err| ERROR: Please supply first option -Override in order to override the safety guard and actually run the command.
  [1]

All of them, and those that are named.

  $ quiet tarnioctl gettimeout -f $filter
  Connection Timeouts:
     dfw.tcp.first_packet  : 120
     dfw.tcp.opening       : 30
     dfw.tcp.established   : 43200
     dfw.tcp.closing       : 125
     dfw.tcp.fin_wait      : 45
     dfw.tcp.closed        : 20
     dfw.udp.first_packet  : 60
     dfw.udp.single        : 35
     dfw.udp.multiple      : 65
     dfw.icmp.first_packet : 15
     dfw.icmp.error_reply  : 10
     dfw.other.first_packet: 62
     dfw.other.single      : 32
     dfw.other.multiple    : 67
     dfw.ip.frag           : 31
     dfw.interval          : 11
     dfw.adaptive_start    : 60000
     dfw.adaptive_end      : 120000
     dfw.src_node          : 5
     dfw.ts_diff           : 33
     dfw.invalid_state     : 40
     dfw.invalid_l7        : 50
  $ quiet tarnioctl gettimeout -f $filter -t dfw.udp.single --timeout=DFW.IP.Frag
  Connection Timeouts:
     dfw.udp.single        : 35
     dfw.ip.frag           : 31

What is set is read, and the filter next to it keeps its own.

  $ quiet tarnioctl settimeout -Override -f $filter -t dfw.udp.single=36 -t 'dfw.ip.frag 0' -t "dfw.interval	4294967295"
  $ quiet tarnioctl gettimeout -f $filter -t dfw.udp.single -t dfw.ip.frag -t dfw.interval
  Connection Timeouts:
     dfw.udp.single        : 36
     dfw.ip.frag           : 0
     dfw.interval          : 4294967295
  $ quiet tarnioctl gettimeout -f nic-1002731-eth0-kelpco-sfw.2 -t dfw.udp.single
  Connection Timeouts:
     dfw.udp.single        : 35
  $ quiet tarnioctl settimeout -Override -v2 -f $filter -t dfw.interval=11
  verbose level : 2
  weirgate agent: kelpco-sfw
  DEBUG: Timeout setting was changed for filter nic-1002672-eth0-kelpco-sfw.2.
  $ quiet tarnioctl settimeout -Override -f $filter
  $ quiet tarnioctl gettimeout --verbose -f $filter -t dfw.interval
  verbose level : 1
  weirgate agent: kelpco-sfw
  Connection Timeouts:
     dfw.interval          : 11
  $ tarnlab show $filter
  filter nic-1002672-eth0-kelpco-sfw.2
    agent kelpco-sfw, vnic 0, slow path 1, vif 8d0c7a10-55f4-4c1e-9b02-0000632a0000
    flows: 244 active, 97 inactive, 96 dropped, 16 L2 pass, 16 L2 drop, 1 of other kinds
    dfw.udp.single: 36
    dfw.ip.frag: 0
  $ tarnlab log -s -v | sed -n '/SetTimeout/,$p' | sed 's/.*message 0: //' | head -5
  SetTimeout(marks 00000000000000010000000000000101000000000000) = ok
      dfw.udp.single 36
      dfw.ip.frag 0
      dfw.interval 4294967295
  GetTimeout(marks 00000000000000010000000000000101000000000000) = ok

What is refused.

  $ quiet tarnioctl gettimeout -f $filter -t dfw.none
  err| ERROR: invalid timeout name: dfw.none
  [1]
  $ quiet tarnioctl settimeout -Override -f $filter -t dfw.none=1
  err| ERROR: invalid timeout name dfw.none
  [1]
  $ quiet tarnioctl settimeout -Override -f $filter -t '= ='
  err| ERROR: cannot find timeout name in = =
  [1]
  $ quiet tarnioctl settimeout -Override -f $filter -t dfw.interval=
  err| ERROR: cannot find timeout value in dfw.interval=
  [1]
  $ quiet tarnioctl settimeout -Override -f $filter -t dfw.interval=-1
  err| ERROR: invalid timeout value: -1
  [1]
  $ quiet tarnioctl settimeout -Override -f $filter -t dfw.interval=soon
  err| ERROR: invalid timeout value: soon
  [1]
  $ tarnlab fault status out-of-memory
  $ lab tarnioctl gettimeout -f $filter
  err| ERROR: Failed to get timeout for filter nic-1002672-eth0-kelpco-sfw.2
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <84> tarnfw: TarnFWCmd:execute():N failed to execute command GetTimeout: out of memory\n\n
  [1]
  $ lab tarnioctl settimeout -Override -f $filter -t dfw.interval=1
  err| ERROR: Failed to change timeout setting for filter nic-1002672-eth0-kelpco-sfw.2.
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <84> tarnfw: TarnFWCmd:execute():N failed to execute command SetTimeout: out of memory\n\n
  [1]

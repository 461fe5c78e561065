The addresses that a machine may send from.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ guarded=nic-998214-eth0-kelpco-spoof.guard.1
  $ open=nic-998214-eth0-kelpco-sfw.2

  $ run tarnioctl getspoofguard -h
  Get spoofguard setting of a filter.
  
  Usage: tarnioctl getspoofguard <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -m <string> : verbose log component name or id
      -s          : print statistics
      -h          : this help message
  $ brief run tarnioctl getspoofguard
  (usage)
  err| ERROR: filter is missing.
  $ brief run tarnioctl getspoofguard -x
  (usage)
  err| getspoofguard: invalid option -- 'x'
  [1]

A guard that works, with the addresses of its set; one that is off; a filter without one.

  $ quiet tarnioctl getspoofguard -f $guarded
  Spoofguard Enabled.
  IPv4 Address : 10.20.9.14
  IPv6 Address : fd00:20:9::14
  IPSet        : backup-addresses {
  ip 10.20.9.15,
  ip 10.20.9.32/28,
  }
  MAC Address  : 00:50:56:99:1e:37
  $ quiet tarnioctl getspoofguard -f $open
  Spoofguard Disabled.
  IPv4 Address : 10.20.9.14
  IPv6 Address : fd00:20:9::14
  IPSet        : backup-addresses
  MAC Address  : 00:50:56:99:1e:37
  $ quiet tarnioctl getspoofguard -f $filter
  Spoofguard Disabled.
  MAC Address  : 00:50:56:99:b6:26
  $ tarnlab log -s -v -n 1
  firewall 15: filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 0: CheckSpoofGuard(addresses 1) = ok {mac 00:50:56:99:b6:26, enabled 0, addresses 0}
  $ tarnlab log -s -v | sed -n 's/.*message 0: //; 1,4p'
  CheckSpoofGuard(addresses 1) = ok {mac 00:50:56:99:1e:37, enabled 1, addresses 3}
      ip 10.20.9.14
      ip fd00:20:9::14
      addrset backup-addresses

What it has seen. The first two counters are printed the other way round.

  $ quiet tarnioctl getspoofguard -f $guarded -s
  l2 drop count     : 36
  l3 drop count     : 60
  invalid arp count : 12
  unknown arp count : 24
  bad MAC arp count : 84
  bad IP arp count  : 132
  good arp count    : 1212
  $ quiet tarnioctl getspoofguard -f $filter --stat
  l2 drop count     : 0
  l3 drop count     : 0
  invalid arp count : 0
  unknown arp count : 0
  bad MAC arp count : 0
  bad IP arp count  : 0
  good arp count    : 0
  $ quiet tarnioctl getspoofguard -f $guarded --verbose=2 -s -m cmd
  verbose level : 2
  weirgate agent: kelpco-spoof.guard
  l2 drop count     : 36
  l3 drop count     : 60
  invalid arp count : 12
  unknown arp count : 24
  bad MAC arp count : 84
  bad IP arp count  : 132
  good arp count    : 1212
  $ tarnlab log -s -n 1
  firewall 15: filter nic-998214-eth0-kelpco-spoof.guard.1 of kelpco-spoof.guard: message 0: GetSpoofGuardStat() = ok {l3 drop 60, l2 drop 36, invalid arp 12, unknown arp 24, bad MAC arp 84, bad IP arp 132, good arp 1212}

A set that cannot be read is reported and left out.

  $ tarnlab fault status no-addrset --only GetAddrSetTypeAndSize --count 1
  $ lab tarnioctl getspoofguard -f $guarded
  Spoofguard Enabled.
  IPv4 Address : 10.20.9.14
  IPv6 Address : fd00:20:9::14
  MAC Address  : 00:50:56:99:1e:37
  err| ERROR: failed to get size of addrset backup-addresses: no addrset
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <84> tarnfw: TarnFWCmd:execute():N failed to execute command GetAddrSetTypeAndSize: no addrset\n\n
  $ tarnlab fault status no-addrset --only GetAddressOfAddrSet
  $ quiet tarnioctl getspoofguard -f $guarded
  Spoofguard Enabled.
  IPv4 Address : 10.20.9.14
  IPv6 Address : fd00:20:9::14
  MAC Address  : 00:50:56:99:1e:37
  err| ERROR: failed to get address of addrset backup-addresses: no addrset
  $ tarnlab fault clear

What is refused.

  $ tarnlab fault status out-of-memory
  $ lab tarnioctl getspoofguard -f $guarded
  err| ERROR: unable to get Spoofguard information: out of memory.
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <84> tarnfw: TarnFWCmd:execute():N failed to execute command CheckSpoofGuard: out of memory\n\n
  [1]
  $ lab tarnioctl getspoofguard -f $guarded -s
  err| ERROR: Failed to get Spoofguard stat
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <84> tarnfw: TarnFWCmd:execute():N failed to execute command GetSpoofGuardStat: out of memory\n\n
  [1]
  $ tarnlab fault clear
  $ quiet tarnioctl getspoofguard -f nic-9-eth0-kelpco-sfw.9
  err| ERROR: unable to get Spoofguard information: switch port not found.
  [1]
  $ quiet tarnioctl getspoofguard -f $guarded -m nonesuch
  err| ERROR: bad component id nonesuch
  [1]

Statements of the configuration language reach the same guard and the counters of the interface.

  $ cli() { quiet tarnioctl tarnfwcli -Override -f $filter -c "$1"; }
  $ cli 'create spoofguard with ip { 10.0.0.1, 10.0.0.2 } and mac 00:11:22:33:44:55;'
  $ quiet tarnioctl getspoofguard -f $filter
  Spoofguard Enabled.
  IPv4 Address : 10.0.0.1
  IPv4 Address : 10.0.0.2
  MAC Address  : 00:11:22:33:44:55
  $ cli 'describe spoofguard;'
  enabled : ip 10.0.0.1, ip 10.0.0.2
  MAC = 00:11:22:33:44:55
  $ cli 'describe stat of spoofguard;'
  l2 drop count     : 720
  l3 drop count     : 1200
  invalid arp count : 240
  unknown arp count : 480
  bad MAC arp count : 1680
  bad IP arp count  : 2640
  good arp count    : 24240
  $ cli 'delete spoofguard with mac 00:11:22:33:44:66;'
  err| ERROR: Failed to eval config `delete spoofguard with mac 00:11:22:33:44:66;': no address
  [1]
  $ cli 'delete spoofguard with mac 00:11:22:33:44:55;'
  $ cli 'describe spoofguard;'
  disabled : MAC = 00:50:56:99:b6:26
  $ cli 'describe stat of kif;' > statement
  $ quiet tarnioctl getfilterstat -f $filter | cmp - statement && head -n 3 statement
  PACKETS                       IN                OUT
  -------                       --                ---
  IPv4 TCP                   19200              18960
  $ cli 'clear stat of kif; describe stat of kif;'
  PACKETS                       IN                OUT
  -------                       --                ---

Long options of the commands on the features and the settings of a filter.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ guarded=nic-998214-eth0-kelpco-spoof.guard.1

Each has --help, which is the text of -h.

  $ for command in getspoofguard gettimeout getkifflags getsharedaddrset getexportversion \
  >     setexportversion setdnsconfigprofile getdnsconfigprofile setcopymode; do
  >   run tarnioctl $command -h > short
  >   run tarnioctl $command --help | diff short - && sed -n 3p short
  > done
  Usage: tarnioctl getspoofguard <options>
  Usage: tarnioctl gettimeout <options>
  Usage: tarnioctl getkifflags <options>
  Usage: tarnioctl getsharedaddrset <options>
  Usage: tarnioctl getexportversion <options>
  Usage: tarnioctl setexportversion <options>
  Usage: tarnioctl setdnsconfigprofile <options>
  Usage: tarnioctl getdnsconfigprofile <options>
  Usage: tarnioctl setcopymode <options>
  $ for command in settimeout setkifflags setsharedaddrset seticmperrpktdrop; do
  >   run tarnioctl $command -Override -h > short
  >   run tarnioctl $command -Override --help | diff short - && sed -n 3p short
  > done
  Usage: tarnioctl settimeout <options>
  Usage: tarnioctl setkifflags <options>
  Usage: tarnioctl setsharedaddrset <options>
  Usage: tarnioctl seticmperrpktdrop <options>

The filter and the level. A level without "=" is one more.

  $ quiet tarnioctl getspoofguard --filter $guarded --verbose=2 --verbose
  verbose level : 3
  weirgate agent: kelpco-spoof.guard
  Spoofguard Enabled.
  IPv4 Address : 10.20.9.14
  IPv6 Address : fd00:20:9::14
  IPSet        : backup-addresses {
  ip 10.20.9.15,
  ip 10.20.9.32/28,
  }
  MAC Address  : 00:50:56:99:1e:37
  $ quiet tarnioctl gettimeout --filter=$filter --verbose --timeout=dfw.ip.frag --timeout dfw.tcp.opening
  verbose level : 1
  weirgate agent: kelpco-sfw
  Connection Timeouts:
     dfw.tcp.opening       : 30
     dfw.ip.frag           : 31
  $ quiet tarnioctl settimeout -Override --filter $filter --verbose --timeout=dfw.ip.frag=33
  verbose level : 1
  weirgate agent: kelpco-sfw
  DEBUG: Timeout setting was changed for filter nic-1002672-eth0-kelpco-sfw.2.
  $ quiet tarnioctl settimeout -Override --filter $filter --timeout 'dfw.ts_diff 32'
  $ quiet tarnioctl gettimeout --filter=$filter --timeout=dfw.ip.frag --timeout dfw.ts_diff
  Connection Timeouts:
     dfw.ip.frag           : 33
     dfw.ts_diff           : 32
  $ quiet tarnioctl getkifflags --filter=$filter --verbose
  verbose level : 1
  weirgate agent: kelpco-sfw
  verbose level : 1
  kif flags: (0x25)
      fast_path                                1
      tcp_strict                               0
      export_flows                             1
      log_invalid                              0
      reassemble                               1
      drop_ip_options                          0
  $ quiet tarnioctl setkifflags -Override --filter=$filter -n tcp_strict --enable 1 --verbose=3
  verbose level : 3
  weirgate agent: kelpco-sfw
  verbose level : 3
  $ quiet tarnioctl setkifflags -Override --filter=$filter -n tcp_strict --enable=0
  $ quiet tarnioctl getsharedaddrset --filter=$filter --verbose=1
  verbose level : 1
  weirgate agent: kelpco-sfw
  shared addrset: disabled
  $ quiet tarnioctl setsharedaddrset -Override --filter $filter --verbose --shared 1
  verbose level : 1
  weirgate agent: kelpco-sfw
  DEBUG: Shared addrset was set to enable for filter nic-1002672-eth0-kelpco-sfw.2.
  $ quiet tarnioctl setsharedaddrset -Override --filter $filter --shared=2 | tail -1
  err| ERROR: bad shared option 2
  $ quiet tarnioctl seticmperrpktdrop -Override --filter $filter --verbose --enable 1
  verbose level : 1
  weirgate agent: kelpco-sfw
  DEBUG: ICMP error drop enable was set to enable for filter nic-1002672-eth0-kelpco-sfw.2.
  $ quiet tarnioctl seticmperrpktdrop -Override --filter $filter --enable=2 | tail -1
  err| ERROR: bad enable option 2
  $ quiet tarnioctl getexportversion --filter $filter --verbose=1
  verbose level : 1
  weirgate agent: kelpco-sfw
  Current export version: 1000
  $ quiet tarnioctl setexportversion --filter $filter --verbose --export 1200
  verbose level : 1
  weirgate agent: kelpco-sfw
  export version : 1200
  $ quiet tarnioctl setexportversion --filter $filter --export=1201
  $ quiet tarnioctl getexportversion --filter=$filter
  Current export version: 1201

Two words of the profile take a value after "=" only, and none is a bad one.

  $ quiet tarnioctl setdnsconfigprofile --filter $filter --verbose --ttl=60 --address=10.0.0.1
  verbose level : 1
  weirgate agent: kelpco-sfw
  $ quiet tarnioctl getdnsconfigprofile --filter $filter --verbose --ttl=AUTO --address
  verbose level : 1
  weirgate agent: kelpco-sfw
  Time To Live Value : 60 secs
  $ quiet tarnioctl setdnsconfigprofile --filter $filter --ttl 60
  invalid ttl value 
  [1]
  $ quiet tarnioctl getdnsconfigprofile --filter $filter
  Time To Live Value : 60 secs

The two of the copies for layer 7 may have one, which is not looked at.

  $ quiet tarnioctl setcopymode --filter $filter --verbose --enable
  verbose level : 1
  weirgate agent: kelpco-sfw
  $ tarnlab log -s -n 1
  firewall 15: filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 0: ConfigL7CopyMode(enable 1) = ok
  $ quiet tarnioctl setcopymode --filter $filter --enable --disable=1
  $ tarnlab log -s -n 1
  firewall 15: filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 0: ConfigL7CopyMode(enable 0) = ok

Statistics of a spoof guard.

  $ quiet tarnioctl getspoofguard --filter $guarded --stat | head -2
  l2 drop count     : 36
  l3 drop count     : 60

A word may be cut where no other one begins so. Other commands have none.

  $ quiet tarnioctl getspoofguard --fil=$guarded --st | head -1
  l2 drop count     : 36
  $ for command in setfailpolicy getfailpolicy setverbose getfloodstat setfloodconfig kiffastpath \
  >     getthresholds setthresholds getdiscoveredips setipdiscovery cleardiscoveredips \
  >     getfqdnentries getsidcache getmeminfo setexportversionall; do
  >   run tarnioctl $command --help | tail -1
  > done
  err| setfailpolicy: invalid option -- '-'
  err| getfailpolicy: invalid option -- '-'
  err| setverbose: invalid option -- '-'
  err| getfloodstat: invalid option -- '-'
  err| setfloodconfig: invalid option -- '-'
  err| kiffastpath: invalid option -- '-'
  err| getthresholds: invalid option -- '-'
  err| setthresholds: invalid option -- '-'
  err| getdiscoveredips: invalid option -- '-'
  err| setipdiscovery: invalid option -- '-'
  err| cleardiscoveredips: invalid option -- '-'
  err| getfqdnentries: invalid option -- '-'
  err| getsidcache: invalid option -- '-'
  err| getmeminfo: invalid option -- '-'
  err| setexportversionall: invalid option -- '-'
  $ for command in setfilterflags setaddrsetcfg; do
  >   run tarnioctl $command -Override --help | tail -1
  > done
  err| -Override: invalid option -- '-'
  err| -Override: invalid option -- '-'

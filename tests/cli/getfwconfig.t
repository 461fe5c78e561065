All that a filter holds.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2

  $ run tarnioctl getfwconfig -h
  Get rules, addrsets and containers of a filter.
  
  Usage: tarnioctl getfwconfig <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -m <string> : verbose log component name or id
      -i          : print summary info only
      -h          : this help message
  $ brief run tarnioctl getfwconfig -f$filter
  (usage)
  err| getfwconfig: invalid option -- 'n'
  [1]
  $ run tarnioctl getfwconfig
  Get rules of rulesets of a filter.
  
  Usage: tarnioctl getfwconfig <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -m <string> : verbose log component name or id
      -r <string> : ruleset to get rules
      -s          : print statistics
      -d          : print DLB info
      -h          : this help message
  err| ERROR: filter is missing.
  [1]
  $ lab tarnioctl getfwconfig -f $filter
  No rules.
  No address sets.
  No containers.
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n

The main job: a configuration is written, loaded and read back.

  $ tarnlab run tarnioctl tarnfwcli -Override -f $filter -l "$TESTDIR/../../examples/three-tier.conf"
  $ quiet tarnioctl getfwconfig -f $filter
  ruleset three-tier {
    # generation number: 1
    # realization time : ????-??-??T??:??:?? (glob)
    rule 1002 at 1 in protocol tcp from any to ip 192.0.2.10 port 443 dnat addrset web port 8443-8444 poolopt round-robin 30 tag 'publish';
    rule 1001 at 1 in protocol tcp from any to addrset web port {80, 443} accept with log tag 'web-in';
    rule 1003 at 2 inout protocol tcp strict from addrset web to addrset app port 8080-8099 accept;
    rule 1004 at 3 inout protocol tcp strict from addrset app to addrset db port 5432 accept;
    rule 1005 at 4 inout protocol any from addrset web to addrset db reject with {log,copy};
    rule 1007 at 5 in protocol icmp icmptype 8 from addrset admins to any accept;
    rule 1008 at 6 in protocol tcp from addrset admins to any port 22 accept with log tag 'admin';
    rule 1009 at 7 out protocol udp from any to addrset dst1009 port {53, 123} accept;
    rule 1999 at 8 inout protocol any from any to any drop with log tag 'default';
    rule 1006 at 1 out protocol any from addrset app to not ip 10.0.0.0/8 snat ip 192.0.2.20;
  }
  
  addrset admins {
  ip 10.99.0.0/26,
  ip 2001:db8:99::/64,
  }
  addrset app {
  ip 10.20.2.0/28,
  ip 10.20.2.32/28,
  }
  addrset db {
  ip 10.20.3.5,
  ip 10.20.3.6,
  }
  addrset dst1009 {
  ip 10.99.0.2/31,
  }
  addrset web {
  ip 10.20.1.10/31,
  ip 10.20.1.12/30,
  ip 10.20.1.16/30,
  ip 10.20.1.40,
  }
  No containers.
  $ quiet tarnioctl getfwconfig -f $filter -i
  ruleset three-tier {
  rule count       : 10
  generation number: 1
  realization time : ????-??-??T??:??:?? (glob)
  }
  addrset admins {
  address count    : 2
  generation number: 1
  realization time : ????-??-??T??:??:?? (glob)
  }
  addrset app {
  address count    : 2
  generation number: 1
  realization time : ????-??-??T??:??:?? (glob)
  }
  addrset db {
  address count    : 2
  generation number: 1
  realization time : ????-??-??T??:??:?? (glob)
  }
  addrset dst1009 {
  address count    : 1
  generation number: 1
  realization time : ????-??-??T??:??:?? (glob)
  }
  addrset web {
  address count    : 4
  generation number: 1
  realization time : ????-??-??T??:??:?? (glob)
  }
  No containers.
  $ quiet tarnioctl getfwconfig -v -m cache -f $filter -i | head -4
  verbose level : 1
  weirgate agent: kelpco-sfw
  ruleset three-tier {
  rule count       : 10

The first that fails ends it.

  $ tarnlab fault status 7 --only getrulesetcount --count 1
  $ quiet tarnioctl getfwconfig -f $filter
  err| ERROR: failed to get total rulesets: not supported
  [1]
  $ tarnlab fault status 7 --only getaddrsetcount --count 1
  $ quiet tarnioctl getfwconfig -f $filter -i
  ruleset three-tier {
  rule count       : 10
  generation number: 1
  realization time : ????-??-??T??:??:?? (glob)
  }
  err| ERROR: failed to get addrset count: not supported
  [1]

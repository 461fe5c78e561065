The rules of a filter.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ other=nic-1002731-eth0-kelpco-sfw.2
  $ load() { tarnlab run tarnioctl tarnfwcli -Override -f "$@"; }

  $ run tarnioctl getrules -h
  Get rules of rulesets of a filter.
  
  Usage: tarnioctl getrules <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -m <string> : verbose log component name or id
      -r <string> : ruleset to get rules
      -s          : print statistics
      -d          : print DLB info
      -h          : this help message
  $ run tarnioctl getrule -f
  Get rules of rulesets of a filter.
  
  Usage: tarnioctl getrule <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -m <string> : verbose log component name or id
      -r <string> : ruleset to get rules
      -s          : print statistics
      -d          : print DLB info
      -h          : this help message
  err| getrule: option requires an argument -- 'f'
  [1]
  $ brief run tarnioctl getrules -s
  (usage)
  err| ERROR: filter is missing.
  [1]
  $ run tarnioctl getrules -f $filter -s -i
  err| ERROR: only one of -s, -d, and -i can be specified.
  [1]
  $ run tarnioctl getrules -f $filter -r 0123456789012345678901234567890123456789012345678901234567890123
  err| ERROR: invalid ruleset name 0123456789012345678901234567890123456789012345678901234567890123
  [1]

A filter without rule sets, and one without a root.

  $ lab tarnioctl getrules -f $filter
  No rules.
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  $ load $other -c 'create ruleset "lonely" with rule 1 inout protocol any from any to any accept;'
  $ quiet tarnioctl getrules -f $other
  No root rule set.
  $ quiet tarnioctl getrules -f nic-1-eth0-kelpco-sfw.9
  err| ERROR: failed to get total rulesets: switch port not found
  [1]

The rules of each set: dnat, then filter rules, then snat.

  $ cat > web.conf << 'END'
  > create ruleset "web" with {
  >   rule 11 in protocol tcp from any to ip 10.0.0.1 port 443 accept with log tag 'in';
  >   rule 12 out protocol any from any to any snat ip 192.0.2.1;
  >   rule 13 in protocol tcp from any to ip 192.0.2.1 port 80 dnat ip 10.0.0.1 port 8080;
  >   rule 14 inout protocol any from any to any drop;
  > };
  > create ruleset "web_L2" with rule 21 inout ethertype 0x0806 from any to any accept;
  > set root ruleset "web";
  > END
  $ load $filter -l web.conf
  $ quiet tarnioctl getrules -f $filter
  ruleset web {
    # generation number: 1
    # realization time : ????-??-??T??:??:?? (glob)
    rule 13 at 1 in protocol tcp from any to ip 192.0.2.1 port 80 dnat ip 10.0.0.1 port 8080;
    rule 11 at 1 in protocol tcp from any to ip 10.0.0.1 port 443 accept with log tag 'in';
    rule 14 at 2 inout protocol any from any to any drop;
    rule 12 at 1 out protocol any from any to any snat ip 192.0.2.1;
  }
  
  ruleset web_L2 {
    # generation number: 1
    # realization time : ????-??-??T??:??:?? (glob)
    rule 21 at 1 inout ethertype 0x0806 from any to any accept;
  }
  
  $ quiet tarnioctl getrule -f $filter -r WEB_l2
  ruleset web_L2 {
    # generation number: 1
    # realization time : ????-??-??T??:??:?? (glob)
    rule 21 at 1 inout ethertype 0x0806 from any to any accept;
  }
  
  $ quiet tarnioctl getrules -f $filter -r we
  $ quiet tarnioctl getrules -f $filter -r web_L2 -p
  ruleset web_L2 {
    # generation number: 1
    # realization time : ????-??-??T??:??:?? (glob)
    Rule : 21
  Position : 1
  Direction : inout
  Ethertype : 0x0806
  Conn_Spec :
  Source : any
  Destination : any
  Action : accept
  
  
  }
  
  $ quiet tarnioctl getrules -f 8d0c7a10-55f4-4c1e-9b02-0000632a0000 -r web_L2 -v2 -m cache
  verbose level : 2
  weirgate agent: kelpco-sfw
  ruleset web_L2 {
    # generation number: 1
    # realization time : ????-??-??T??:??:?? (glob)
    rule 21 at 1 inout ethertype 0x0806 from any to any accept;
  }
  

Statistics: snat, then filter rules, then dnat, and no frame.

  $ quiet tarnioctl getrules -f $filter -s
  rule    12: 520 evals, 156 hits, 65 sessions, in 403 out 351 pkts, in 257920 out 143910 bytes
  rule    11: 480 evals, 144 hits, 60 sessions, in 372 out 324 pkts, in 238080 out 132840 bytes
  rule    14: 600 evals, 180 hits, 75 sessions, in 465 out 405 pkts, in 297600 out 166050 bytes
  rule    13: 560 evals, 168 hits, 70 sessions, in 434 out 378 pkts, in 277760 out 154980 bytes
  rule    21: 880 evals, 264 hits, 110 sessions, in 682 out 594 pkts, in 436480 out 243540 bytes

Summary.

  $ quiet tarnioctl getrules -f $filter -i
  ruleset web {
  rule count       : 4
  generation number: 1
  realization time : ????-??-??T??:??:?? (glob)
  }
  ruleset web_L2 {
  rule count       : 1
  generation number: 1
  realization time : ????-??-??T??:??:?? (glob)
  }

Load balancing.

  $ quiet tarnioctl getrules -f $filter -d
  ruleset web {
    <no DLB rules in active ruleset>
  }
  
  ruleset web_L2 {
    <no DLB rules in active ruleset>
  }
  
  $ load $filter -c 'create ruleset "lb" with rule 31 in protocol tcp from any to 192.0.2.1 port 80 lb lbtype l4 lboptions "rr";'
  $ quiet tarnioctl getrules -f $filter -r lb
  ruleset lb {
    # generation number: 1
    # realization time : ????-??-??T??:??:?? (glob)
    rule 31 at 1 in protocol tcp from any to ip 192.0.2.1 port 80 lb  lbtype L4 lboptions rr;
  }
  
  $ quiet tarnioctl getrules -f $filter -d -r lb
  ruleset lb {
    rule 31 at 1 in protocol tcp from any to ip 192.0.2.1 port 80 lb  lbtype L4 lboptions rr;
        num flows = 96, persist timeout = 23m, timeout remaining = 23:00s, persist addr = ip 203.0.113.32
  }
  

What fails.

  $ tarnlab fault status 28 --only getrulesetcount --count 1
  $ quiet tarnioctl getrules -f $filter
  err| ERROR: failed to get total rulesets: no ruleset
  [1]
  $ tarnlab fault status 28 --only getrootruleset --count 1
  $ quiet tarnioctl getrules -f $filter
  err| ERROR: failed to get root ruleset: no ruleset (no-eol)
  [1]
  $ tarnlab fault status 28 --only getrulesetlist --count 1
  $ quiet tarnioctl getrules -f $filter
  err| ERROR: failed to get #0 ruleset: no ruleset
  [1]
  $ tarnlab fault status 28 --only getrulecountofruleset --count 1
  $ quiet tarnioctl getrules -f $filter -r web_L2
  ruleset web_L2 {
    # generation number: 1
    # realization time : ????-??-??T??:??:?? (glob)
  }
  
  err| ERROR: failed to get 2 rule count for ruleset web_L2: no ruleset
  $ tarnlab fault status 27 --only getruleofruleset --count 1
  $ quiet tarnioctl getrules -f $filter -r web_L2
  ruleset web_L2 {
    # generation number: 1
    # realization time : ????-??-??T??:??:?? (glob)
  }
  
  err| ERROR: failed to get 0 rule in ruleset web_L2: no rule
  $ tarnlab fault status 7 --only getstatofruleset --count 1
  $ quiet tarnioctl getrules -f $filter -r web_L2 -s
  err| ERROR: failed to get 0 rule stat: not supported
  $ tarnlab fault status 7 --only getrulesetinfo --count 1
  $ quiet tarnioctl getrules -f $filter -r web_L2 -i
  ruleset web_L2 {
  }
  err| ERROR: failed to get info of ruleset web_L2: not supported

A rule set that is being purged is no error.

  $ tarnlab fault status 26 --only getruleofruleset --count 3
  $ quiet tarnioctl getrules -f $filter -r web_L2 -v -m cache
  verbose level : 1
  weirgate agent: kelpco-sfw
  ruleset web_L2 {
    # generation number: 1
    # realization time : ????-??-??T??:??:?? (glob)
  DEBUG: ruleset web_L2 is being purged
  }
  

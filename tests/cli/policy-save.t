What a filter holds, as configuration text that makes it again.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2 other=nic-1002731-eth0-kelpco-sfw.2
  $ tarnpolicy save --help | head -1
  Usage: tarnpolicy save -f FILTER [-o FILE] [--verify] [--partial]

A filter that holds nothing.

  $ quiet tarnpolicy save -f $filter
  # A policy as tarnpolicy saved it. A filter that holds nothing gets it by:
  #     tarnioctl tarnfwcli -Override -f FILTER -l FILE

Sets, profiles, rule sets after those that they jump to, jumps, the root; names that are keywords, forms
that the displays lose.

  $ cat > policy.conf <<'EOF'
  > create addrset "web servers" with { 10.0.0.7, 10.0.0.1-4, 2001:db8::/32 };
  > create addrset "mac" with { 00:11:22:33:44:55, 00:11:22:33:44:66/ff:ff:ff:ff:ff:00 };
  > create addrset "range" 10.9.0.1-10.9.0.9;
  > create attrprofile "apps" with { [ TLS_VERSION : TLS_V12, TLS_V13 ], [ APP_ID : APP_HTTP ],
  >     [ FQDN : "www.example.com" uuid 502e1f3a-c21a-632a-4ae1-00505699b626 ] };
  > create ruleset "a" with {
  >     rule 10 at 2 in protocol tcp with { strict, dscp 10 } from "web servers" port { 80, 443 }
  >         to not 10.0.0.0/8 attrprofile "apps" accept with { copy, log } as ftp tag "it's";
  >     rule 20 at 1 in protocol any from any to any jumpto "port";
  >     rule 30 out protocol any from any to any snat ip 192.0.2.1;
  >     rule 40 in protocol udp from any to any port 53 dnat addrset "mac" poolopt round-robin 60;
  > };
  > create ruleset "port" with rule 1 inout ethertype 2054 from 00:11:22:33:44:55-00:11:22:33:44:66
  >     to any macrewrite 00:01:02:03:04:05;
  > set jumpto of ruleset "port" as "a";
  > set root ruleset "a" and "port";
  > EOF
  $ tarnlab run tarnioctl tarnfwcli -Override -f $filter -l policy.conf
  $ quiet tarnpolicy save -f $filter | tail -n +3
  
  create attrprofile "apps" with {
      [ APP_ID : "APP_HTTP" ],
      [ TLS_VERSION : "TLS_V12", "TLS_V13" ],
      [ FQDN : "www.example.com" uuid 502e1f3a-c21a-632a-4ae1-00505699b626 ]
  };
  
  create addrset "mac" with {
      00:11:22:33:44:55,
      00:11:22:33:44:66/ff:ff:ff:ff:ff:00
  };
  
  create addrset "range" with 10.9.0.1-10.9.0.9;
  
  create addrset "web servers" with {
      10.0.0.1,
      10.0.0.4,
      10.0.0.7,
      10.0.0.2/31,
      2001:db8::/32
  };
  
  create ruleset "port" with {
      rule 1 inout ethertype 2054 from 00:11:22:33:44:55-00:11:22:33:44:66 to any macrewrite 00:01:02:03:04:05;
  };
  
  create ruleset "a" with {
      rule 40 in protocol udp from any to any port 53 dnat addrset "mac" poolopt round-robin 60;
      rule 20 at 1 in protocol any from any to any jumpto "port";
      rule 10 at 2 in protocol tcp with { strict, dscp 10 } from addrset "web servers" port { 80, 443 } to not 10.0.0.0/8 attrprofile "apps" accept with { log, copy } as ftp tag "it's";
      rule 30 out protocol any from any to any snat ip 192.0.2.1;
  };
  
  set jumpto of ruleset "port" as "a";
  
  set root ruleset "a" and "port";

Into a file, verified; what was there is kept. A filter that holds nothing becomes the same by it.

  $ echo earlier > saved.conf
  $ quiet tarnpolicy save -f $filter --verify -o saved.conf
  err| tarnpolicy save: verified: 5 rules in 2 rule sets, 12 members in 4 sets
  $ cat saved.conf.old
  earlier
  $ tarnlab run tarnioctl tarnfwcli -Override -f $other -l saved.conf
  $ tarnlab run tarnpolicy save -f $other | cmp - saved.conf
  $ tarnlab run tarnpolicy diff filter:$filter filter:$other
  $ tarnpolicy check saved.conf > checked

What the language can't say: nothing is written to a file then, unless that is wanted.

  $ tarnlab run tarnioctl tarnfwcli -Override -f $filter -c 'delete all from addrset "apps";'
  $ quiet tarnpolicy save -f $filter > partial.conf
  [3]
  $ cat partial.conf | sed -n 2,4p
  #     tarnioctl tarnfwcli -Override -f FILTER -l FILE
  
  # missing: container "apps": the language has no attribute profile without values
  $ tail -1 partial.conf
  err| tarnpolicy save: missing: container "apps": the language has no attribute profile without values
  $ cp saved.conf before.conf
  $ quiet tarnpolicy save -f $filter -o saved.conf
  err| tarnpolicy save: missing: container "apps": the language has no attribute profile without values
  err| tarnpolicy save: saved.conf is not written; --partial writes it
  [3]
  $ cmp saved.conf before.conf
  $ quiet tarnpolicy save -f $filter -o saved.conf --partial --verify
  err| tarnpolicy save: missing: container "apps": the language has no attribute profile without values
  err| tarnpolicy save: verified: 5 rules in 2 rule sets, 8 members in 3 sets

What goes wrong.

  $ quiet tarnpolicy save -f $filter -o no/such/file --partial
  err| tarnpolicy save: missing: container "apps": the language has no attribute profile without values
  err| tarnpolicy save: can't write no/such/file
  [2]
  $ quiet tarnpolicy save -f nic-9-eth0-kelpco-sfw.9
  err| tarnpolicy save: filter nic-9-eth0-kelpco-sfw.9: counting its address sets failed: switch port not found
  [2]
  $ run tarnpolicy save
  err| tarnpolicy save: the filter is missing (-f)
  err| Its usage is shown by: tarnpolicy save --help
  [2]
  $ run tarnpolicy save -f $filter saved.conf
  err| tarnpolicy save: unexpected saved.conf
  err| Its usage is shown by: tarnpolicy save --help
  [2]
  $ (tarnlab run tarnpolicy save -f $other > /dev/full) 2>&1
  tarnpolicy: failed to write output: No space left on device
  [2]
  $ tarnlab fault absent
  $ quiet tarnpolicy save -f $filter
  err| tarnpolicy save: the firewall of this host can't be reached: cannot load file
  [2]

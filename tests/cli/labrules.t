The lab's own text of what it stores, beside the program's.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ cli() { tarnlab run tarnioctl tarnfwcli -Override -f $filter "$@"; }

  $ cat > forms.conf << 'END'
  > create addrset "clients" with { 10.0.0.0/8, 10.1.2.3, 2001:db8::/32, 2001:db8::7 };
  > create addrset "one" 10.0.0.1-10.0.0.9;
  > create addrset "hosts" with { 00:50:56:01:02:03, 00:50:56:00:00:00/ff:ff:ff:00:00:00 };
  > create ruleset "forms" with {
  >   rule 1 inout protocol any from any to any accept;
  >   rule 2 at 7 in inet protocol tcp strict from 10.0.0.0/8 port 1024-65535
  >     to not 10.1.2.3 port { 80-90, 443 } drop with log;
  >   rule 3 at 5 out not protocol udp from addrset "clients" to any reject with { log, copy, noflow } tag 'three';
  >   rule 4 inout protocol icmp typecode 3:1 from any to any punt;
  >   rule 5 inout inet6 protocol 47 from 2001:db8::1 to 2001:db8::/32 divert;
  >   rule 6 inout ethertype 2054 from mac 00:50:56:01:02:03 to addrset "hosts" accept;
  >   rule 7 inout protocol tcp from any to any port 21 accept with log as ftp;
  >   rule 8 inout protocol any from any to any jumpto "other";
  >   rule 9 inout protocol tcp with { flag SYN, sloppy } from any to any clear with rtt;
  >   rule 10 inout protocol any from any to any encrypt keypolicy "5a43ddda-c21a-632a-4ae1-00505699723f";
  >   rule 11 inout protocol any from any to any pbr keypolicy "ffffffff-ffff-ffff-ffff-ffffffffffff";
  >   rule 12 in protocol udp from any to any not port 69 copy with lbrule;
  >   rule 13 inout protocol any from any to any macrewrite 00:0a:56:01:02:03;
  >   rule 14 in protocol udp from any to any port 69 accept;
  >   rule 15 in protocol tcp from 10.0.0.1-10.0.0.2 to any accept;
  >   rule 16 inout protocol icmp icmptype 8 from any to any accept as dcerpc;
  >   rule 17 inout protocol tcp stateless from any to any accept;
  >   rule 20 out protocol any from any to any snat ip 192.0.2.1;
  >   rule 21 out protocol any from any to any snat addrset "clients";
  >   rule 30 in protocol tcp from any to any port 80 dnat ip 192.0.2.1 port 8080;
  >   rule 31 in protocol tcp from any to any port 80 dnat addrset "clients" port 8080-8090 poolopt random;
  >   rule 32 in protocol tcp from any to any port 80 dnat addrset "clients" poolopt round-robin 30;
  >   rule 33 in protocol tcp from any to any port 80 lb lbtype l4;
  >   rule 34 in protocol tcp from any to any port 80 lb lbtype l7 lbidletimeout 60 lbclosetimeout 5 lboptions "a=b";
  > };
  > END
  $ cli -l forms.conf
  $ tarnlab show $filter
  filter nic-1002672-eth0-kelpco-sfw.2
    agent kelpco-sfw, vnic 0, slow path 1, vif 8d0c7a10-55f4-4c1e-9b02-0000632a0000
    flows: 244 active, 97 inactive, 96 dropped, 16 L2 pass, 16 L2 drop, 1 of other kinds
    ruleset forms: 17 rules, 2 snat, 5 dnat, generation 1
    addrset clients: 4 addresses, generation 1
    addrset hosts: 2 addresses, generation 1
    addrset one: 1 addresses, generation 1
    addrset src15: 2 addresses, generation 1

  $ tarnlab show --rules $filter forms > stored
  $ cat stored
  ruleset forms {
    rule 1 at 0 inout protocol any from any to any accept;
    rule 4 at 0 inout protocol icmp typecode 3:1 from any to any punt;
    rule 5 at 0 inout inet6 protocol gre from ip 2001:db8::1 to ip 2001:db8::/32 divert;
    rule 6 at 0 inout ethertype 0x0806 from mac 00:50:56:01:02:03 to addrset hosts accept;
    rule 7 at 0 inout protocol tcp from any to any port 21 accept with log as ftp;
    rule 8 at 0 inout protocol any from any to any jumpto other;
    rule 9 at 0 inout protocol tcp with {sloppy, flag 0x0002} from any to any clear with rtt;
    rule 10 at 0 inout protocol any from any to any encrypt keypolicy 5a43ddda-c21a-632a-4ae1-00505699723f;
    rule 11 at 0 inout protocol any from any to any pbr pass-through;
    rule 12 at 0 in protocol udp from any to any not port 69 copy with lbrule;
    rule 13 at 0 inout protocol any from any to any macrewrite 0:a:56:1:2:3;
    rule 14 at 0 in protocol udp from any to any port 69 accept as tftp;
    rule 15 at 0 in protocol tcp from addrset src15 to any accept;
    rule 16 at 0 inout protocol icmp icmptype 8 from any to any accept as dcerpc;
    rule 17 at 0 inout protocol tcp stateless from any to any accept;
    rule 3 at 5 out not protocol udp from addrset clients to any reject with {log,copy,noflow} tag 'three';
    rule 2 at 7 in inet protocol tcp strict from ip 10.0.0.0/8 port 1024-65535 to not ip 10.1.2.3 port {80-90, 443} drop with log;
    rule 20 at 0 out protocol any from any to any snat ip 192.0.2.1;
    rule 21 at 0 out protocol any from any to any snat addrset clients;
    rule 30 at 0 in protocol tcp from any to any port 80 dnat ip 192.0.2.1 port 8080;
    rule 31 at 0 in protocol tcp from any to any port 80 dnat addrset clients port 8080-8090 poolopt random;
    rule 32 at 0 in protocol tcp from any to any port 80 dnat addrset clients poolopt round-robin 30;
    rule 33 at 0 in protocol tcp from any to any port 80 lb  lbtype L4 lboptions ;
    rule 34 at 0 in protocol tcp from any to any port 80 lb  lbtype L7 lbidletimeout 60 lbclosetimeout 5 lboptions a=b;
  }
  $ for kind in "" snat dnat; do
  >   cli -c "describe $kind rule of ruleset \"forms\";"
  > done | grep -v '^#' | sed 's/^/  /' > read
  $ diff <(sed '1d; $d' stored) read

  $ tarnlab show --addrsets $filter clients | sed '1d; $d; s/^  //; s/,$//' > stored
  $ cat stored
  ip 10.0.0.0/8
  ip 10.1.2.3
  ip 2001:db8::/32
  ip 2001:db8::7
  $ cli -c 'describe address of addrset "clients";' | grep -v '^#' | diff stored -
  $ tarnlab show --addrsets $filter hosts
  addrset hosts {
    mac 00:50:56:01:02:03,
    mac 00:50:56:00:00:00/ff:ff:ff:00:00:00,
  }
  $ tarnlab show --addrsets $filter one
  addrset one {
    ip 10.0.0.1-10.0.0.9,
  }

What the log has of a message.

  $ cli -c 'create ruleset "small" with rule 1 inout protocol any from any to any accept; describe size of addrset "one";'
  addrset type : 1
  addrset elements count : 1
  addrset serialize size : 144
  $ tarnlab log -s -v -n 2
  firewall 15: filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 0: CreateRuleSet(name "small", sequence 0, rules 1, flags 3) = ok
      rule 1 at 0 inout protocol any from any to any accept;
  firewall 15: filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 1: GetAddrSetTypeAndSize(name "one") = ok {entries 1, type 1, bytes 144}

Address sets made of ranges are created ahead of the statement that needs them.

  $ cli -c 'create ruleset "ranges" with { rule 7 in protocol tcp from 10.0.0.1-5 to 10.1.0.0-3 drop; };'
  $ cli -c 'create ruleset "target" with rule 8 in protocol tcp from any to any dnat ip 10.0.0.1-5 port 80;'
  $ tarnlab log -s -v -n 5 | sed 's/^firewall.*: message/message/'
  message 0: CreateAddrSet(name "src7", sequence 0, entries 3, type 1, bytes 432, flags 3) = ok
      ip 10.0.0.1
      ip 10.0.0.2/31
      ip 10.0.0.4/31
  message 1: CreateAddrSet(name "dst7", sequence 0, entries 1, type 1, bytes 144, flags 3) = ok
      ip 10.1.0.0/30
  message 2: CreateRuleSet(name "ranges", sequence 0, rules 1, flags 3) = ok
      rule 7 at 0 in protocol tcp from addrset src7 to addrset dst7 drop;
  message 0: CreateAddrSet(name "target8", sequence 0, entries 3, type 1, bytes 432, flags 3) = ok
      ip 10.0.0.1
      ip 10.0.0.2/31
      ip 10.0.0.4/31
  message 1: CreateRuleSet(name "target", sequence 0, rules 1, flags 3) = ok
      rule 8 at 0 in protocol tcp from any to any dnat addrset target8 port 80;

What getrules prints can be loaded again, and prints the same.

  $ cat > again.conf << 'END'
  > create ruleset "again" with {
  >   rule 1 inout protocol any from any to any accept;
  >   rule 2 at 7 in inet protocol tcp strict from 10.0.0.0/8 port 1024-65535
  >     to not 10.1.2.3 port { 80-90, 443 } drop with log;
  >   rule 3 at 5 out not protocol udp from addrset "clients" to any reject with { log, copy, noflow } tag 'three';
  >   rule 7 in protocol tcp from 10.0.0.1-5 to any port 21 accept with log as ftp;
  > };
  > set root ruleset "again" and "";
  > END
  $ cli -l again.conf
  $ shown() { tarnlab run tarnioctl getrules -f $filter -r again | grep '^  rule'; }
  $ shown > first
  $ cat first
    rule 1 at 1 inout protocol any from any to any accept;
    rule 7 at 2 in protocol tcp from addrset src7 to any port 21 accept with log as ftp;
    rule 3 at 3 out not protocol udp from addrset clients to any reject with {log,copy,noflow} tag 'three';
    rule 2 at 4 in inet protocol tcp strict from ip 10.0.0.0/8 port 1024-65535 to not ip 10.1.2.3 port {80-90, 443} drop with log;
  $ { echo 'create ruleset "again" with {'; cat first; echo '};'; } > again.conf
  $ cli -l again.conf
  $ shown | diff first -

TCP options and Ethernet ranges are in the kernel, and no reader takes them for what they are.

  $ cli -c 'create ruleset "again" with { rule 1 in protocol tcp option "abcdefg" from any to any drop; rule 2 in protocol tcp option "abcdefgh" from any to any drop; };'
  $ shown
    rule 1 at 1 in protocol tcp from any to any drop;
    rule 2 at 2 in protocol tcp port 24930 from any to any drop;
  $ cli -c 'create ruleset "again" with { rule 1 in ethertype any from 00:11:22:33:44:55-00:11:22:33:44:66 to any drop; rule 2 in protocol any from any to any drop; };'
  $ shown
  ERROR:   rule conversion failed invalid network address
  [1]

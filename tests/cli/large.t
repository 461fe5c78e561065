Large loads: 100,000 rules and 500,000 addresses, each in one message.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ load() { lab tarnioctl tarnfwcli -Override -f $filter -l "$1" | grep -v Initializ; return ${PIPESTATUS[0]}; }
  $ describe() { quiet tarnioctl tarnfwcli -Override -f $filter -c "$1"; }

  $ "$TESTDIR/../../examples/generate-large" 100000 1 > rules.conf
  $ "$TESTDIR/../../examples/generate-large" 1 500000 | sed '/^};/q' > addresses.conf
  $ wc -l rules.conf addresses.conf
    100007 rules.conf
    500003 addresses.conf
    600010 total
  $ load rules.conf
  log| tarnioctl <85> Filter nic-1002672-eth0-kelpco-sfw.2 was configured with `rules.conf'.\n
  $ load addresses.conf
  log| tarnioctl <85> Filter nic-1002672-eth0-kelpco-sfw.2 was configured with `addresses.conf'.\n

  $ tarnlab show $filter
  filter nic-1002672-eth0-kelpco-sfw.2
    agent kelpco-sfw, vnic 0, slow path 1, vif 8d0c7a10-55f4-4c1e-9b02-0000632a0000
    flows: 244 active, 97 inactive, 96 dropped, 16 L2 pass, 16 L2 drop, 1 of other kinds
    root: 1 rules, 0 snat, 0 dnat, generation 1
    ruleset large: 100000 rules, 0 snat, 0 dnat, generation 1
    addrset clients: 500000 addresses, generation 2
  $ tarnlab log -s | cut -d : -f 4-
   CreateAddrSet(name "clients", sequence 0, entries 1, type 1, bytes 144, flags 3) = ok
   CreateRuleSet(name "large", sequence 0, rules 100000, flags 3) = ok
   CreateRuleSet(name "", sequence 0, rules 1, flags 3) = ok
   CreateAddrSet(name "clients", sequence 0, entries 500000, type 1, bytes 72000000, flags 3) = ok

A mistake in the last line is reported with that line, and nothing of the file is sent: not the
statement in its first line, not the one that the mistake is in.

  $ state() {
  >   tarnlab show $filter
  >   tarnlab log | cksum
  >   (cd "$TARNLAB_HOME" && find . -type f ! -name lock ! -name log -exec cksum {} + | sort)
  > }
  $ state > before
  $ grep -cE 'filters/0/(rulesets|addrsets)/' before
  3
  $ destroy='destroy all ruleset; destroy all addrset;'
  $ { echo "$destroy"; sed -n '/^create ruleset/,/^  rule 100000 /p' rules.conf
  >   echo '  rule 100001 inout protocol tcp from any to any port 70000 accept; };'; } > bad-rules.conf
  $ { echo "$destroy"; sed '1d; $d' addresses.conf; echo '  10.7.161.300 };'; } > bad-addresses.conf
  $ { echo "$destroy"; sed -n '/^create ruleset/,/^  rule 99998 /p' rules.conf; } > cut-off.conf
  $ wc -l bad-rules.conf bad-addresses.conf cut-off.conf
    100003 bad-rules.conf
    500003 bad-addresses.conf
    100000 cut-off.conf
    700006 total
  $ load bad-rules.conf
  err| ERROR: Could not load config `bad-rules.conf': invalid tcp/udp port
  log| tarnioctl <83> tarnfw: tarnfw_parser:yyerror():N [bad-rules.conf:100003] TCP/UDP port number (70000) is invalid\n
  [1]
  $ state | diff before -
  $ load bad-addresses.conf
  err| ERROR: Could not load config `bad-addresses.conf': invalid network address
  log| tarnioctl <83> tarnfw: tarnfw_parser:yyerror():N [bad-addresses.conf:500003] 10.7.161.300\n
  [1]
  $ state | diff before -
  $ load cut-off.conf
  err| ERROR: Could not load config `cut-off.conf': parsing error
  log| tarnioctl <83> tarnfw: tarnfw_parser:yyerror():N [cut-off.conf:100001] syntax error, unexpected end of file, expecting keyword rule or }\n
  [1]
  $ state | diff before -
  $ quiet tarnioctl tarnfwcli -Override -f $filter -l - < bad-rules.conf
  err| ERROR: Could not load config `-': invalid tcp/udp port
  [1]
  $ state | diff before -

What was loaded is read back, to the last rule and the last address.

  $ describe 'describe rule count of ruleset "large"; describe size of addrset "clients";'
  rule count : 100000
  addrset type : 1
  addrset elements count : 500000
  addrset serialize size : 72000000
  $ describe 'describe rule of ruleset "large" from 99999; describe address of addrset "clients" from 499999;'
  # generation number: 1
  # realization time : ????-??-??T??:??:?? (glob)
  rule 100000 at 0 inout protocol tcp from ip 172.1.134.160 to ip 10.134.160.0/24 port 34466 accept;
  # generation number: 2
  # realization time : ????-??-??T??:??:?? (glob)
  ip 10.7.161.31
  $ quiet tarnioctl getrules -f $filter > printed
  $ head -n 4 printed
  ruleset large {
    # generation number: 1
    # realization time : ????-??-??T??:??:?? (glob)
    rule 1 at 1 inout protocol tcp from ip 172.0.0.1 to ip 10.0.1.0/24 port 2 accept;
  $ sed -n -E 's/^  rule ([0-9]+) (inout protocol tcp) from (.*) to (.*) (port .*)/  rule \1 at \1 \2 from ip \3 to ip \4 \5/p' rules.conf > rules
  $ wc -l < rules
  100000
  $ grep '^  rule ' printed | cmp - rules
  $ quiet tarnioctl getaddrsets -f $filter > printed
  $ sed -e 's/^create addrset "clients" with {/addrset clients {/' -e 's/^  10/ip 10/' -e 's/^};/}/' -e 1d addresses.conf | cmp - printed

In what two policies differ.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ tarnpolicy diff --help | head -1
  Usage: tarnpolicy diff [--stat | --json] A B
  $ cat > old.conf <<'EOF'
  > create addrset "web" with { 10.0.0.1, 10.0.0.2 };
  > create ruleset "main" with {
  >     rule 10 in protocol tcp from any to "web" port 80 accept;
  >     rule 20 in protocol tcp from any to "web" port 443 accept;
  >     rule 30 in protocol any from any to any drop;
  > };
  > set root ruleset "main";
  > EOF
  $ cat > new.conf <<'EOF'
  > create addrset "web" with { 10.0.0.2, 10.0.0.3 };
  > create ruleset "main" with {
  >     rule 30 in protocol any from any to any drop;
  >     rule 10 in protocol tcp from any to "web" port { 80, 8080 } accept with log;
  >     rule 20 in protocol tcp from any to "web" port 443 accept;
  >     rule 40 in protocol udp from any to any port 53 accept;
  > };
  > create ruleset "main_L2" with rule 1 inout ethertype any from any to any accept;
  > set root ruleset "main";
  > EOF

Two files; the same policy written in another way is no difference.

  $ run tarnpolicy diff old.conf new.conf
  addrset "web":
    - 10.0.0.1
    + 10.0.0.3
  ruleset "main":
    ~ rule 30: moved, now first
    ~ rule 10
        destination ports: port 80 -> port { 80, 8080 }
        flags: none -> with log
    + rule 40 in protocol udp from any to any port 53 accept
  ruleset "main_L2" added:
    + rule 1 inout ethertype any from any to any accept
  [1]
  $ run tarnpolicy diff --stat old.conf new.conf
  addrset "web": 1 member added, 1 member removed
  ruleset "main": 1 rule added, 1 rule changed, 1 rule moved
  ruleset "main_L2": added, 1 rule added
  in all: 1 set with 2 members, 2 rule sets with 4 rules
  [1]
  $ sed 's/10.0.0.1, 10.0.0.2/10.0.0.1-2/; s/rule 10 in/rule 10 at 0 in/' old.conf | run tarnpolicy diff old.conf -

For other programs.

  $ tarnpolicy diff --json old.conf new.conf > diff.json
  [1]
  $ python3 - <<'EOF'
  > import json
  > d = json.load(open('diff.json'))
  > print(d['equal'], d['sets'][0]['added'], [(r['id'], r['change'], r['place']) for r in d['ruleSets'][0]['rules']])
  > print(d['ruleSets'][0]['rules'][1]['parts'][1], d['root']['layer3'])
  > EOF
  False ['10.0.0.3'] [(30, 'moved', 'first'), (10, 'changed', ''), (40, 'added', 'after rule 20')]
  {'part': 'flags', 'before': '', 'after': 'with log'} {'before': 'main', 'after': 'main'}

What a filter holds.

  $ tarnlab run tarnioctl tarnfwcli -Override -f $filter -l old.conf
  $ quiet tarnpolicy diff filter:$filter old.conf
  $ quiet tarnpolicy diff --stat filter:$filter new.conf | tail -1
  in all: 1 set with 2 members, 2 rule sets with 4 rules
  $ quiet tarnpolicy diff filter:$filter filter:nic-1002731-eth0-kelpco-sfw.2 | head -1
  addrset "web" removed:

What goes wrong.

  $ echo 'create addrset;' > bad.conf
  $ run tarnpolicy diff old.conf bad.conf
  err| tarnpolicy diff: [bad.conf:1] syntax error, unexpected ;, expecting double-quoted string
  [2]
  $ run tarnpolicy diff old.conf no.conf
  err| tarnpolicy diff: can't open no.conf: No such file or directory
  [2]
  $ run tarnpolicy diff old.conf
  err| tarnpolicy diff: there must be two policies to compare
  err| Its usage is shown by: tarnpolicy diff --help
  [2]
  $ quiet tarnpolicy diff old.conf filter:nic-9-eth0-kelpco-sfw.9
  err| tarnpolicy diff: filter nic-9-eth0-kelpco-sfw.9: counting its address sets failed: switch port not found
  [2]
  $ run tarnpolicy diff old.conf - <<< 'enable tcp strict;' | tail -1
  err| -: 1 statement is no part of a policy, the first is `enable tcp strict'

A filter is changed to what a text says, or keeps what it holds.

  $ . "$TESTDIR/setup"
  $ tarnlab init > /dev/null
  $ web=nic-1002672-eth0-kelpco-sfw.2
  $ export TARNPOLICY_RUNTIME="$PWD/run"
  $ run tarnpolicy apply --help | head -2
  Usage: tarnpolicy apply -f FILTER... [OPTION]... FILE
         tarnpolicy apply --agent NAME [OPTION]... FILE
  $ run tarnpolicy confirm --help | head -1
  Usage: tarnpolicy confirm [-f FILTER]

  $ cat > one.conf << 'END'
  > create addrset "web" { 10.0.0.1, 10.0.0.2 };
  > create ruleset "web" with {
  >     rule 10 in protocol tcp from any to "web" port 80 accept;
  >     rule 20 inout protocol any from any to any drop;
  > };
  > set root ruleset "web" and "";
  > END
  $ cat > two.conf << 'END'
  > create addrset "web" { 10.0.0.1, 10.0.0.2 };
  > create addrset "db" 10.0.1.1;
  > create ruleset "base" with rule 30 inout protocol any from any to any drop;
  > create ruleset "web" with {
  >     rule 10 in protocol tcp from any to "web" port 443 accept;
  >     rule 11 out protocol tcp from "web" to "db" port 5432 accept;
  >     rule 20 inout protocol any from any to any jumpto "base";
  > };
  > set root ruleset "web" and "";
  > END
  $ printf '' > empty.conf

Called wrongly, and what can't be read.

  $ run tarnpolicy apply one.conf
  err| tarnpolicy apply: either filters (-f) or an agent (--agent) must be given
  err| Its usage is shown by: tarnpolicy apply --help
  [2]
  $ run tarnpolicy apply -f a --agent b one.conf 2>&1 | head -1
  err| tarnpolicy apply: either filters (-f) or an agent (--agent) must be given
  $ run tarnpolicy apply -f a 2>&1 | head -1
  err| tarnpolicy apply: the file is missing
  $ run tarnpolicy apply -f a --confirm 0 one.conf 2>&1 | head -1
  err| tarnpolicy apply: the seconds must be a number from 1 to 86400
  $ run tarnpolicy apply -f a one.conf two.conf 2>&1 | head -1
  err| tarnpolicy apply: unexpected two.conf
  $ run tarnpolicy apply -f a none.conf
  err| tarnpolicy apply: can't open none.conf: No such file or directory
  [2]
  $ echo 'create ruleset;' > bad.conf
  $ quiet tarnpolicy apply -f $web bad.conf
  err| tarnpolicy apply: [bad.conf:1] syntax error, unexpected ;, expecting double-quoted string
  [2]
  $ quiet tarnpolicy apply --agent nobody one.conf
  err| tarnpolicy apply: there is no filter of agent nobody
  [2]
  $ run tarnpolicy confirm now 2>&1 | head -1
  err| tarnpolicy confirm: unexpected now

What a text says beside its policy is not lost without a word.

  $ (cat one.conf; echo 'enable tcp strict;') > strict.conf
  $ quiet tarnpolicy apply -f $web strict.conf
  err| tarnpolicy apply: strict.conf: `enable tcp strict' is no part of a policy and would not be carried out; load it by tarnioctl tarnfwcli, or pass it over with --partial
  [2]
  $ echo 'create ruleset a; set root ruleset b;' > root.conf
  $ quiet tarnpolicy apply -f $web root.conf
  err| tarnpolicy apply: root.conf: the root is "b", which nothing makes
  [2]

The statements, and that nothing is done by showing them.

  $ quiet tarnpolicy apply -f $web empty.conf
  nic-1002672-eth0-kelpco-sfw.2: nothing to do
  $ quiet tarnpolicy apply -f $web --dry-run one.conf
  # nic-1002672-eth0-kelpco-sfw.2: 3 statements
  create addrset "web" with {
      10.0.0.1,
      10.0.0.2
  };
  create ruleset "web" with {
      rule 10 in protocol tcp from any to addrset "web" port 80 accept;
      rule 20 inout protocol any from any to any drop;
  };
  set root ruleset "web" and "";
  $ quiet tarnpolicy save -f $web | tail -n +3
  $ quiet tarnpolicy apply -f $web one.conf
  nic-1002672-eth0-kelpco-sfw.2: done, 3 statements
  $ quiet tarnpolicy apply -f $web one.conf
  nic-1002672-eth0-kelpco-sfw.2: nothing to do
  $ quiet tarnpolicy apply -n -f $web two.conf
  # nic-1002672-eth0-kelpco-sfw.2: 3 statements
  create addrset "db" with 10.0.1.1;
  create ruleset "base" with {
      rule 30 inout protocol any from any to any drop;
  };
  create ruleset "web" with {
      rule 10 in protocol tcp from any to addrset "web" port 443 accept;
      rule 11 out protocol tcp from addrset "web" to addrset "db" port 5432 accept;
      rule 20 inout protocol any from any to any jumpto "base";
  };

The change, and what it sends.

  $ quiet tarnpolicy apply -f $web two.conf
  nic-1002672-eth0-kelpco-sfw.2: done, 3 statements
  $ tarnlab log -s | grep -E 'Create|Destroy|SetRuleSetJump' | tail -n 4 | cut -d : -f 4- | cut -d '(' -f 1
   CreateRuleSet
   CreateAddrSet
   CreateRuleSet
   CreateRuleSet
  $ quiet tarnpolicy diff two.conf filter:$web
  $ ls run

A filter that holds the policy is asked once, with all questions in one message.

  $ tarnlab log -s | wc -l > before
  $ quiet tarnpolicy apply -f $web two.conf
  nic-1002672-eth0-kelpco-sfw.2: nothing to do
  $ tarnlab log -s | tail -n +$(($(cat before) + 1)) > asked
  $ wc -l < asked
  1
  $ grep -oE '[A-Z][A-Za-z]+[(]' asked | tr -d '(' | sort | uniq -c | sed 's/^ *//'
  1 GetAddrSetCount
  4 GetAddrSetInfo
  1 GetAddrSetList
  2 GetAddrSetTypeAndSize
  2 GetAddressOfAddrSet
  1 GetRootRuleSet
  6 GetRuleCountOfRuleSet
  2 GetRuleOfRuleSet
  1 GetRuleSetCount
  4 GetRuleSetInfo
  2 GetRuleSetJump
  1 GetRuleSetList

Several filters; those that fail are listed at the end.

  $ quiet tarnpolicy apply -f $web -f nic-1-eth0-kelpco-sfw.2 one.conf
  nic-1002672-eth0-kelpco-sfw.2: done, 3 statements
  err| tarnpolicy apply: 1 of 2 filters failed:
  err|   FILTER                   HOLDS          WHY
  err|   nic-1-eth0-kelpco-sfw.2  what it held   counting its address sets failed: switch port not found
  [1]
  $ quiet tarnpolicy apply --agent kelpco-sfw --partial two.conf
  nic-1002672-eth0-kelpco-sfw.2: done, 3 statements
  nic-1002731-eth0-kelpco-sfw.2: done, 5 statements
  nic-1003044-eth0-kelpco-sfw.2: done, 5 statements
  nic-1003044-eth1-kelpco-sfw.2: done, 5 statements
  nic-1003120-eth0-kelpco-sfw.2: done, 5 statements
  nic-998214-eth0-kelpco-sfw.2: done, 5 statements
  $ quiet tarnpolicy apply --agent kelpco-sfw two.conf < /dev/null
  nic-1002672-eth0-kelpco-sfw.2: nothing to do
  nic-1002731-eth0-kelpco-sfw.2: nothing to do
  nic-1003044-eth0-kelpco-sfw.2: nothing to do
  nic-1003044-eth1-kelpco-sfw.2: nothing to do
  nic-1003120-eth0-kelpco-sfw.2: nothing to do
  nic-998214-eth0-kelpco-sfw.2: nothing to do

What the kernel refuses.

  $ quiet tarnpolicy apply -f $web two.conf
  nic-1002672-eth0-kelpco-sfw.2: nothing to do
  $ tarnlab fault status kernel-out-of-memory --only CreateRuleSet --count 1
  $ quiet tarnpolicy apply -f $web one.conf
  err| tarnpolicy apply: 1 of 1 filters failed:
  err|   FILTER                         HOLDS          WHY
  err|   nic-1002672-eth0-kelpco-sfw.2  earlier state  `create ruleset "web" with 2 rules' failed: kernel out of memory
  [1]
  $ quiet tarnpolicy diff two.conf filter:$web
  $ tarnlab fault errno EIO --count 2
  $ quiet tarnpolicy apply -f $web one.conf
  err| tarnpolicy apply: 1 of 1 filters failed:
  err|   FILTER                         HOLDS          WHY
  err|   nic-1002672-eth0-kelpco-sfw.2  what it held   counting its address sets failed: ioctl failed
  [1]
  $ tarnlab fault clear
  $ tarnlab fault absent
  $ quiet tarnpolicy apply -f $web one.conf
  err| tarnpolicy apply: the firewall of this host can't be reached: cannot load file
  [2]
  $ tarnlab fault clear

What it refuses for good: a mixture, and the way back.

  $ cat > jump.conf << 'END'
  > create ruleset "a"; create ruleset "b"; set jumpto of ruleset "a" as "b"; set root ruleset "a" and "";
  > END
  $ echo 'create ruleset "a"; create ruleset "b"; set root ruleset "b" and "";' > plain.conf
  $ quiet tarnpolicy apply -f $web jump.conf
  nic-1002672-eth0-kelpco-sfw.2: done, 7 statements
  $ tarnlab fault status kernel-out-of-memory --only CreateRuleSet
  $ tarnlab fault status kernel-out-of-memory --only SetRuleSetJump
  $ tarnlab run tarnpolicy apply -f $web -f nic-1003044-eth0-kelpco-sfw.2 plain.conf 2> err
  [3]
  $ sed -E "s#$PWD#PWD#g; s/[.][A-Za-z0-9]{6}[.]conf/.XXXXXX.conf/g" err
  tarnpolicy apply: filter nic-1002672-eth0-kelpco-sfw.2 holds a mixture: 1 of 2 statements were carried out: `set root ruleset "b" and ""' failed: kernel out of memory
  Putting the earlier state back failed too: `set jumpto of ruleset "a" as "b"' failed: kernel out of memory
  The earlier state is in PWD/run/nic-1002672-eth0-kelpco-sfw.2.XXXXXX.conf. This puts it back:
      tarnpolicy apply -f 'nic-1002672-eth0-kelpco-sfw.2' 'PWD/run/nic-1002672-eth0-kelpco-sfw.2.XXXXXX.conf'
  Statement by statement, after those that were answered, these are still to be done:
  set jumpto of ruleset "a" as "b";
  tarnpolicy apply: 2 of 2 filters failed:
    FILTER                         HOLDS          WHY
    nic-1002672-eth0-kelpco-sfw.2  a mixture      `set root ruleset "b" and ""' failed: kernel out of memory
    nic-1003044-eth0-kelpco-sfw.2  what it held   not begun
  $ tarnlab fault clear
  $ tarnlab run tarnpolicy apply -f $web run/$web.*.conf | sed -E "s#$PWD#PWD#; s/[.][A-Za-z0-9]{6}[.]conf/.XXXXXX.conf/g"
  nic-1002672-eth0-kelpco-sfw.2: done, 1 statement
  nic-1002672-eth0-kelpco-sfw.2: removed PWD/run/nic-1002672-eth0-kelpco-sfw.2.XXXXXX.conf, which an earlier call left
  $ ls run
  $ quiet tarnpolicy diff jump.conf filter:$web

A file that a call left is there until the filter holds a whole policy again, whichever.

  $ touch run/$web.abc123.conf run/other.abc123.conf
  $ quiet tarnpolicy apply --dry-run -f $web jump.conf
  # nic-1002672-eth0-kelpco-sfw.2: nothing to do
  $ ls run
  nic-1002672-eth0-kelpco-sfw.2.abc123.conf
  other.abc123.conf
  $ tarnlab run tarnpolicy apply -f $web jump.conf | sed "s#$PWD#PWD#"
  nic-1002672-eth0-kelpco-sfw.2: nothing to do
  nic-1002672-eth0-kelpco-sfw.2: removed PWD/run/nic-1002672-eth0-kelpco-sfw.2.abc123.conf, which an earlier call left
  $ rm run/other.abc123.conf

A root of which one layer's rule set goes.

  $ echo 'create ruleset "a"; create ruleset "a_L2"; set root ruleset "a";' > layers.conf
  $ echo 'create ruleset "a"; set root ruleset "a";' > layer.conf
  $ quiet tarnpolicy apply -f $web layers.conf
  nic-1002672-eth0-kelpco-sfw.2: done, 4 statements
  $ quiet tarnpolicy apply -f $web layer.conf
  nic-1002672-eth0-kelpco-sfw.2: done, 3 statements
  $ quiet tarnpolicy diff layer.conf filter:$web

Undone unless confirmed.

  $ quiet tarnpolicy apply -f $web two.conf
  nic-1002672-eth0-kelpco-sfw.2: done, 6 statements
  $ quiet tarnpolicy apply --confirm 1 -f $web one.conf < /dev/null
  nic-1002672-eth0-kelpco-sfw.2: done, 3 statements
  err| tarnpolicy apply: undone in 1 second unless confirmed by "tarnpolicy confirm" elsewhere
  err| tarnpolicy apply: 1 of 1 filters failed:
  err|   FILTER                         HOLDS          WHY
  err|   nic-1002672-eth0-kelpco-sfw.2  earlier state  not confirmed in time
  [1]
  $ quiet tarnpolicy diff two.conf filter:$web
  $ run tarnpolicy confirm
  err| tarnpolicy confirm: nothing waits to be confirmed
  [1]
  $ tarnlab run tarnpolicy apply --confirm 60 -f $web one.conf < /dev/null > out 2> err &
  $ for i in $(seq 600); do tarnpolicy confirm > said 2> /dev/null && break; sleep 0.1; done; cat said
  Confirmed; these filters keep what they hold now:
  nic-1002672-eth0-kelpco-sfw.2
  $ wait; cat out err
  nic-1002672-eth0-kelpco-sfw.2: done, 3 statements
  confirmed
  tarnpolicy apply: undone in 60 seconds unless confirmed by "tarnpolicy confirm" elsewhere
  $ quiet tarnpolicy diff one.conf filter:$web
  $ tarnlab run tarnpolicy apply --confirm 60 -f $web two.conf < /dev/null > out 2> err &
  $ for i in $(seq 600); do grep -q confirmed err && break; sleep 0.1; done; kill -HUP $!; wait $!
  [1]
  $ cat out err
  nic-1002672-eth0-kelpco-sfw.2: done, 3 statements
  tarnpolicy apply: undone in 60 seconds unless confirmed by "tarnpolicy confirm" elsewhere
  tarnpolicy apply: 1 of 1 filters failed:
    FILTER                         HOLDS          WHY
    nic-1002672-eth0-kelpco-sfw.2  earlier state  not confirmed, SIGHUP
  $ quiet tarnpolicy diff one.conf filter:$web

What somebody at a terminal sees of tarnpolicy, and types.

  $ . "$TESTDIR/setup"
  $ terminal() { "$TESTDIR/on-terminal" "$@"; }
  $ tarnlab init > /dev/null
  $ web=nic-1002672-eth0-kelpco-sfw.2 other=nic-1002731-eth0-kelpco-sfw.2
  $ export TARNPOLICY_RUNTIME="$PWD/run" TERM=xterm
  $ unset NO_COLOR

Colours are for terminals that have them, unless NO_COLOR is set to something.

  $ printf '+ describe timeout;\ndescribe;\n' > mistakes.conf
  $ terminal -- tarnpolicy check mistakes.conf
  \x1b[1mmistakes.conf:1:1: \x1b[0m\x1b[1;35mwarning:\x1b[0m `+` belongs to nothing and is skipped [stray-character] (esc)
      + describe timeout;
      \x1b[1;32m^\x1b[0m (esc)
  \x1b[1mmistakes.conf:2:9: \x1b[0m\x1b[1;31merror:\x1b[0m unexpected `;` [syntax] (esc)
      describe;
              \x1b[1;32m^\x1b[0m (esc)
      expected: `address`, `shared`, `rule`, `root`, `size`, `info`, `stat`, `jumpto`, `snat`, `dnat`, `list`, `connection`, ...
  1 error, 1 warning
  [1]
  $ terminal -- tarnpolicy check mistakes.conf > coloured
  [1]
  $ NO_COLOR= terminal -- tarnpolicy check mistakes.conf | cmp - coloured
  $ tarnpolicy check mistakes.conf > plain
  [1]
  $ NO_COLOR=1 terminal -- tarnpolicy check mistakes.conf | cmp - plain
  $ TERM=dumb terminal -- tarnpolicy check mistakes.conf | cmp - plain
  $ terminal -- sh -c 'tarnpolicy check mistakes.conf | cat' | cmp - plain
  $ grep -c "$(printf '\033')" plain
  0
  [1]

Long work has a line that says how far it has come, on a terminal only, and nothing stays of it.

  $ for i in 1 2 3 4 5 6 7 8; do echo "create ruleset r$i;"; done > long.conf
  $ tarnlab fault delay 150
  $ terminal -- tarnlab run tarnpolicy apply -f $web long.conf | sed 's/: [1-8] of 8/: N of 8/g' | tr '\r' '\n' | uniq
  
  \x1b[Knic-1002672-eth0-kelpco-sfw.2: N of 8 statements (esc)
  \x1b[Knic-1002672-eth0-kelpco-sfw.2: done, 8 statements (esc)
  $ terminal -- sh -c "tarnlab run tarnpolicy apply -f $other long.conf 2> err"
  nic-1002731-eth0-kelpco-sfw.2: done, 8 statements
  $ cat err
  $ tarnlab fault clear

What is done for a time is kept by Enter, or by y or yes.

  $ cat > one.conf << 'END'
  > create ruleset "a" with rule 1 in protocol any from any to any accept;
  > set root ruleset "a" and "";
  > END
  $ cat > two.conf << 'END'
  > create ruleset "a" with rule 2 in protocol any from any to any drop;
  > set root ruleset "a" and "";
  > END
  $ quiet tarnpolicy apply -f $web one.conf | tail -1
  nic-1002672-eth0-kelpco-sfw.2: done, 10 statements
  $ asked='elsewhere\r\n'
  $ holds() { tarnlab run tarnpolicy diff $1 filter:$web > /dev/null && echo it holds $1; }
  $ apply="tarnlab run tarnpolicy apply --confirm 60 -f $web"
  $ terminal see="$asked" type='\n' -- $apply two.conf
  nic-1002672-eth0-kelpco-sfw.2: done, 1 statement
  tarnpolicy apply: undone in 60 seconds unless confirmed: by Enter here, or by "tarnpolicy confirm" elsewhere
  
  confirmed
  $ holds two.conf
  it holds two.conf
  $ terminal see="$asked" type='y\n' -- $apply one.conf
  nic-1002672-eth0-kelpco-sfw.2: done, 1 statement
  tarnpolicy apply: undone in 60 seconds unless confirmed: by Enter here, or by "tarnpolicy confirm" elsewhere
  y
  confirmed
  $ holds one.conf
  it holds one.conf
  $ terminal see="$asked" type='yes\n' -- $apply two.conf | tail -1
  confirmed
  $ quiet tarnpolicy apply -f $web one.conf
  nic-1002672-eth0-kelpco-sfw.2: done, 1 statement

By another line it is undone, and what was typed before it was asked for counts for nothing.

  $ terminal see="$asked" type='n\n' -- $apply two.conf
  nic-1002672-eth0-kelpco-sfw.2: done, 1 statement
  tarnpolicy apply: undone in 60 seconds unless confirmed: by Enter here, or by "tarnpolicy confirm" elsewhere
  n
  tarnpolicy apply: 1 of 1 filters failed:
    FILTER                         HOLDS          WHY
    nic-1002672-eth0-kelpco-sfw.2  earlier state  not confirmed
  [1]
  $ holds one.conf
  it holds one.conf
  $ terminal see="$asked" type='yet\n' -- $apply two.conf | tail -1
    nic-1002672-eth0-kelpco-sfw.2  earlier state  not confirmed
  $ terminal early='\n' -- tarnlab run tarnpolicy apply --confirm 1 -f $web two.conf
  
  nic-1002672-eth0-kelpco-sfw.2: done, 1 statement
  tarnpolicy apply: undone in 1 second unless confirmed: by Enter here, or by "tarnpolicy confirm" elsewhere
  tarnpolicy apply: 1 of 1 filters failed:
    FILTER                         HOLDS          WHY
    nic-1002672-eth0-kelpco-sfw.2  earlier state  not confirmed in time
  [1]
  $ holds one.conf
  it holds one.conf

It is undone by the key for an interrupt, by a signal, and when the terminal is lost.

  $ terminal see="$asked" type='\x03' -- $apply two.conf
  nic-1002672-eth0-kelpco-sfw.2: done, 1 statement
  tarnpolicy apply: undone in 60 seconds unless confirmed: by Enter here, or by "tarnpolicy confirm" elsewhere
  ^Ctarnpolicy apply: 1 of 1 filters failed:
    FILTER                         HOLDS          WHY
    nic-1002672-eth0-kelpco-sfw.2  earlier state  not confirmed, SIGINT
  [1]
  $ holds one.conf
  it holds one.conf
  $ terminal see="$asked" kill=TERM -- $apply two.conf
  nic-1002672-eth0-kelpco-sfw.2: done, 1 statement
  tarnpolicy apply: undone in 60 seconds unless confirmed: by Enter here, or by "tarnpolicy confirm" elsewhere
  tarnpolicy apply: 1 of 1 filters failed:
    FILTER                         HOLDS          WHY
    nic-1002672-eth0-kelpco-sfw.2  earlier state  not confirmed, SIGTERM
  [1]
  $ holds one.conf
  it holds one.conf
  $ terminal see="$asked" hangup -- $apply two.conf
  nic-1002672-eth0-kelpco-sfw.2: done, 1 statement
  tarnpolicy apply: undone in 60 seconds unless confirmed: by Enter here, or by "tarnpolicy confirm" elsewhere
  [1]
  $ holds one.conf
  it holds one.conf

The end of the input is no answer; it can be confirmed from elsewhere then.

  $ terminal see="$asked" type='\x04' run='tarnpolicy confirm > said' -- $apply two.conf
  nic-1002672-eth0-kelpco-sfw.2: done, 1 statement
  tarnpolicy apply: undone in 60 seconds unless confirmed: by Enter here, or by "tarnpolicy confirm" elsewhere
  confirmed

In the background, and where the text comes from the terminal, nobody is asked for Enter.

  $ terminal -- bash -c "set -m; tarnlab run tarnpolicy apply --confirm 1 -f $web one.conf & wait" | head -2
  nic-1002672-eth0-kelpco-sfw.2: done, 1 statement
  tarnpolicy apply: undone in 1 second unless confirmed by "tarnpolicy confirm" elsewhere
  $ terminal early='create ruleset "a";\n\x04' -- tarnlab run tarnpolicy apply --confirm 1 -f $web -
  create ruleset "a";
  nic-1002672-eth0-kelpco-sfw.2: done, 2 statements
  tarnpolicy apply: undone in 1 second unless confirmed by "tarnpolicy confirm" elsewhere
  tarnpolicy apply: 1 of 1 filters failed:
    FILTER                         HOLDS          WHY
    nic-1002672-eth0-kelpco-sfw.2  earlier state  not confirmed in time
  [1]

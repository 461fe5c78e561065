Values of options and operands that are empty, far too long, or hold what a terminal would obey.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ export TARNPOLICY_RUNTIME="$PWD/run"
  $ web=nic-1002672-eth0-kelpco-sfw.2
  $ long=$(printf '%100000s' | tr ' ' x) hostile=$(printf 'a\033[31mb\nc')
  $ echo 'create addrset "web" 10.0.0.1;' > web.conf
  $ policy() { tarnlab run tarnpolicy "$@" 2>&1; }

Nothing stands for a name.

  $ for words in "check -f '' web.conf" "save -f ''" "diff filter: web.conf" "apply -f '' web.conf" \
  >     "apply --agent '' web.conf" "confirm -f ''" "save -f $web -o ''" "check --format '' web.conf"; do
  >   eval "policy $words" | head -1
  > done
  tarnpolicy check: the filter's name is empty
  tarnpolicy save: the filter's name is empty
  tarnpolicy diff: the filter's name is empty
  tarnpolicy apply: the filter's name is empty
  tarnpolicy apply: the agent's name is empty
  tarnpolicy confirm: the filter's name is empty
  tarnpolicy save: the name of the output file is empty
  tarnpolicy check: no format : it is human, json or sarif

A name is refused before it is used; messages show a part of any word.

  $ for words in "check -f $long web.conf" "save -f $long" "diff filter:$long web.conf" \
  >     "apply -f $web -f $long web.conf" "apply --agent $long web.conf" "confirm -f $long"; do
  >   policy $words | head -1
  > done
  tarnpolicy check: the filter's name is too long
  tarnpolicy save: the filter's name is too long
  tarnpolicy diff: the filter's name is too long
  tarnpolicy apply: the filter's name is too long
  tarnpolicy apply: the agent's name is too long
  tarnpolicy confirm: the filter's name is too long
  $ for words in $long "check --$long" "save now$long" "check --format $long web.conf" \
  >     "apply -f $web --confirm $long web.conf" "apply -f $web web.conf $long" \
  >     "check $long" "diff $long web.conf" "apply -f $web $long" "save -f $web -o $long"; do
  >   policy $words | head -1 | sed 's/x\{60,\}/LONG/g'
  > done
  tarnpolicy: no subcommand LONG...LONG
  tarnpolicy check: no option --LONG...LONG
  tarnpolicy save: unexpected nowLONG...LONG
  tarnpolicy check: no format LONG...LONG: it is human, json or sarif
  tarnpolicy apply: the seconds must be a number from 1 to 86400
  tarnpolicy apply: unexpected LONG...LONG
  tarnpolicy check: cannot open LONG...LONG: File name too long
  tarnpolicy diff: can't open LONG...LONG: File name too long
  tarnpolicy apply: can't open LONG...LONG: File name too long
  tarnpolicy save: can't write LONG...LONG
  $ for words in $long "check $long" "save -f $web -o $long"; do policy $words | wc -L; done
  215
  4521
  4532

Of what a terminal would obey no message has any.

  $ touch "$hostile"
  $ for words in '"$hostile"' 'check "--$hostile"' 'save "$hostile"' 'check --format "$hostile" web.conf' \
  >     'check -f "$hostile" web.conf' 'save -f "$hostile"' 'save -f $web -o "no/$hostile"' \
  >     'diff filter:"$hostile" web.conf' 'diff "no/$hostile" web.conf' \
  >     'apply --agent "$hostile" web.conf' 'apply -f "$hostile" web.conf | tail -1' \
  >     'apply -f $web "no/$hostile"' 'apply -f $web web.conf "$hostile"'; do
  >   eval "policy $words" | head -1 | cat -v
  > done
  tarnpolicy: no subcommand a?[31mb?c
  tarnpolicy check: no option --a?[31mb?c
  tarnpolicy save: unexpected a?[31mb?c
  tarnpolicy check: no format a?[31mb?c: it is human, json or sarif
  tarnpolicy check: filter a?[31mb?c: counting its address sets failed: switch port not found
  tarnpolicy save: filter a?[31mb?c: counting its address sets failed: switch port not found
  tarnpolicy save: can't write no/a?[31mb?c
  tarnpolicy diff: filter a?[31mb?c: counting its address sets failed: switch port not found
  tarnpolicy diff: can't open no/a?[31mb?c: No such file or directory
  tarnpolicy apply: there is no filter of agent a?[31mb?c
    a\x1b[31mb\x0ac  what it held   counting its address sets failed: switch port not found
  tarnpolicy apply: can't open no/a?[31mb?c: No such file or directory
  tarnpolicy apply: unexpected a?[31mb?c
  $ echo 'enable tcp strict;' > "$hostile"
  $ policy diff "$hostile" /dev/null | cat -v
  a?[31mb?c: 1 statement is no part of a policy, the first is `enable tcp strict'
  $ policy apply -f $web "$hostile" | cat -v
  tarnpolicy apply: a?[31mb?c: `enable tcp strict' is no part of a policy and would not be carried out; load it by tarnioctl tarnfwcli, or pass it over with --partial
  $ policy apply -f $web --partial "$hostile" | cat -v
  tarnpolicy apply: a?[31mb?c: passed over: 1 statement, the first is `enable tcp strict'
  nic-1002672-eth0-kelpco-sfw.2: nothing to do
  $ echo 'creat;' > "$hostile"
  $ policy check "$hostile" | head -1 | cat -v
  a?[31mb?c:1:1: error: unexpected `creat` [syntax]
  $ policy diff "$hostile" web.conf | cat -v
  tarnpolicy diff: [a?[31mb?c:1] syntax error, unexpected double-quoted string, expecting end of file
  $ TARNPOLICY_RUNTIME="$hostile" policy apply -f $web web.conf | tail -1 | cat -v
    nic-1002672-eth0-kelpco-sfw.2  what it held   a?[31mb?c is not a folder of this user's alone (mode 0700)

The longest time and name of all are taken.

  $ policy apply -f $web --dry-run --confirm 86400 web.conf
  # nic-1002672-eth0-kelpco-sfw.2: 1 statement
  create addrset "web" with 10.0.0.1;
  $ policy apply -f $web --dry-run --confirm 86401 web.conf | head -1
  tarnpolicy apply: the seconds must be a number from 1 to 86400

  $ policy apply -f $(printf '%99s' | tr ' ' n) web.conf | sed 's/n\{20,\}/NAME/' | tail -1
    NAME  what it held   counting its address sets failed: switch port not found
  $ policy save -f $(printf '%99s' | tr ' ' n) | sed 's/n\{20,\}/NAME/'
  tarnpolicy save: filter NAME: counting its address sets failed: switch port not found

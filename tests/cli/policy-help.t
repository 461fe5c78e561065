How tarnpolicy is called.

  $ . "$TESTDIR/setup"

  $ run tarnpolicy --help | head -3
  Usage: tarnpolicy SUBCOMMAND ...
         tarnpolicy [SUBCOMMAND] --help
         tarnpolicy [SUBCOMMAND] --version
  $ tarnpolicy -h > short; tarnpolicy --help | cmp - short
  $ run tarnpolicy --version
  tarnpolicy [0-9.]+ (re)

Each subcommand has both, and the options that its help names.

  $ subcommands=$(tarnpolicy --help | sed -n 's/^  \([a-z]*\) .*/\1/p'); echo $subcommands
  check save diff apply confirm
  $ tarnpolicy --version > version
  $ for subcommand in $subcommands; do
  >   tarnpolicy $subcommand --version | cmp - version
  >   tarnpolicy $subcommand -h > short; tarnpolicy $subcommand --help | cmp - short
  >   echo $subcommand: $(grep -oE '^ +(-., )?--[a-z-]+( [A-Z]+)?' short)
  >   for option in $(grep -oE '^ +(-., )?--[a-z-]+' short | tr -d ,); do
  >     tarnpolicy $subcommand $option < /dev/null 2>&1 | grep 'no option'
  >   done
  > done; true
  check: --format FORM --strict -f, --filter FILTER -h, --help
  save: -f, --filter FILTER -o, --output FILE --verify --partial -h, --help
  diff: --stat --json -h, --help
  apply: -f, --filter FILTER -a, --agent NAME -n, --dry-run -c, --confirm SECONDS --partial -h, --help
  confirm: -f, --filter FILTER -h, --help

README's lines about policies, in a lab.

  $ tarnlab init > /dev/null
  $ export FILTER=nic-1002672-eth0-kelpco-sfw.2 TARNPOLICY_RUNTIME="$PWD/run"
  $ echo 'create ruleset "web" with rule 1 in protocol any from any to any accept; set root ruleset "web" and "";' > web.conf
  $ sed -n '/^```/,/^```/s/^\(tarnpolicy .*[^ ]\)   .*/\1/p' "$TESTDIR/../../README.md" > lines; cat lines
  tarnpolicy check web.conf
  tarnpolicy diff filter:$FILTER web.conf
  tarnpolicy apply --dry-run -f $FILTER web.conf
  tarnpolicy apply --confirm 60 -f $FILTER web.conf
  tarnpolicy confirm
  tarnpolicy save -f $FILTER -o saved.conf
  $ line() { tarnlab run bash -c "$(sed -n $1p lines)"; }
  $ line 1
  $ line 2
  ruleset "web" added:
    + rule 1 in protocol any from any to any accept
  root:
    ~ layer 3: none -> "web"
  [1]
  $ line 3
  # nic-1002672-eth0-kelpco-sfw.2: 2 statements
  create ruleset "web" with {
      rule 1 in protocol any from any to any accept;
  };
  set root ruleset "web" and "";
  $ line 4 > applied 2>&1 < /dev/null &
  $ for i in $(seq 600); do line 5 2> /dev/null && break; sleep 0.1; done; wait; cat applied
  Confirmed; these filters keep what they hold now:
  nic-1002672-eth0-kelpco-sfw.2
  nic-1002672-eth0-kelpco-sfw.2: done, 2 statements
  tarnpolicy apply: undone in 60 seconds unless confirmed by "tarnpolicy confirm" elsewhere
  confirmed
  $ line 6; tarnlab run tarnpolicy diff saved.conf web.conf

Called wrongly.

  $ tarnpolicy > out 2>&1
  [2]
  $ head -2 out
  tarnpolicy: a subcommand is missing
  Usage: tarnpolicy SUBCOMMAND ...
  $ run tarnpolicy frobnicate 2>&1 | head -1
  err| tarnpolicy: no subcommand frobnicate

Output that is lost.

  $ (tarnpolicy --help > /dev/full) 2>&1
  tarnpolicy: failed to write output: No space left on device
  [2]

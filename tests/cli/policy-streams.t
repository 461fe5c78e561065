Standard streams of tarnpolicy that the caller has closed, and outputs that take nothing.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ export TARNPOLICY_RUNTIME="$PWD/run"
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ policy() { tarnlab run tarnpolicy "$@"; }
  $ echo 'create attrprofile "apps" with { [ TLS_VERSION : TLS_V12 ] };' > policy.conf
  $ echo 'create addrset "web" 10.0.0.1' > mistake.conf

What is printed gets neither to the control device nor into a file that is opened after it.

  $ policy save -f $filter >&-
  tarnpolicy: failed to write output: Bad file descriptor
  [2]
  $ (tarnpolicy --version >&-) 2>&1
  tarnpolicy: failed to write output: Bad file descriptor
  [2]
  $ policy save -f $filter <&- >&-
  tarnpolicy: failed to write output: Bad file descriptor
  [2]
  $ policy save -f $filter -o expected --verify
  tarnpolicy save: verified: 0 rules in 0 rule sets, 0 members in 0 sets
  $ policy save -f $filter -o saved --verify <&- >&- 2>&-
  $ cmp saved expected
  $ tarnlab log | grep -c write
  0
  [1]

Each subcommand says that its output was lost.

  $ lost() { policy "$@" > /dev/full; echo $?; }
  $ for words in "check mistake.conf" "check --format json policy.conf" "check --format sarif policy.conf" \
  >     "diff policy.conf filter:$filter" "diff --json policy.conf filter:$filter" \
  >     "apply -f $filter -n policy.conf" "check --help"; do
  >   lost $words 2>&1
  > done
  tarnpolicy: failed to write output: No space left on device
  2
  tarnpolicy: failed to write output: No space left on device
  2
  tarnpolicy: failed to write output: No space left on device
  2
  tarnpolicy: failed to write output: No space left on device
  2
  tarnpolicy: failed to write output: No space left on device
  2
  tarnpolicy: failed to write output: No space left on device
  2
  tarnpolicy: failed to write output: No space left on device
  2

What is done is done, and what is said on standard error as well.

  $ lost apply -f $filter policy.conf
  tarnpolicy: failed to write output: No space left on device
  2
  $ policy diff policy.conf filter:$filter
  $ lost check policy.conf
  0
  $ lost apply -f nonesuch policy.conf
  tarnpolicy apply: 1 of 1 filters failed:
    FILTER    HOLDS          WHY
    nonesuch  what it held   counting its address sets failed: switch port not found
  1
  $ policy apply -f $filter policy.conf 2> /dev/full
  nic-1002672-eth0-kelpco-sfw.2: nothing to do
  $ policy apply -f nonesuch policy.conf 2> /dev/full
  [1]

Devices and pipes are written as they are; there is nothing in them to be kept.

  $ policy save -f $filter -o /dev/full
  tarnpolicy save: can't write /dev/full
  [2]
  $ policy save -f $filter -o expected
  $ mkfifo pipe
  $ (timeout 60 cmp pipe expected && echo as expected) & policy save -f $filter -o pipe; wait
  as expected
  $ ls -d pipe* /dev/full*
  /dev/full
  pipe
  $ policy save -f $filter -o .
  tarnpolicy save: can't write .
  [2]

A folder for earlier states that is none.

  $ for folder in policy.conf no/such $(printf '%5000s' | tr ' ' x); do
  >   TARNPOLICY_RUNTIME=$folder policy apply -f $filter policy.conf 2>&1 | sed 's/x\{2000,\}[.]\{3\}x\{2000,\}/LONG/' | grep eth0
  > done
    nic-1002672-eth0-kelpco-sfw.2  what it held   policy.conf is not a folder of this user's alone (mode 0700)
    nic-1002672-eth0-kelpco-sfw.2  what it held   can't make no/such: No such file or directory
    nic-1002672-eth0-kelpco-sfw.2  what it held   can't make LONG: File name too long

A mixture stays one.

  $ cat > other.conf << 'END'
  > create addrset "web" 10.0.0.1;
  > create ruleset "new" with rule 1 in protocol any from "web" to any accept;
  > set root ruleset "new" and "";
  > END
  $ for passed in $(seq 40); do
  >   policy apply -f $filter policy.conf > made || break
  >   tarnlab fault errno EIO --count 1000 --after $passed
  >   lost apply -f $filter other.conf 2> said | grep -x 3 && break
  >   tarnlab fault clear
  > done
  3

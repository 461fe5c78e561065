How tarnpolicy is called.

  $ . "$TESTDIR/setup"

  $ run tarnpolicy --help | head -3
  Usage: tarnpolicy SUBCOMMAND ...
         tarnpolicy SUBCOMMAND --help
         tarnpolicy --version
  $ tarnpolicy -h > short; tarnpolicy --help | cmp - short
  $ run tarnpolicy --version
  tarnpolicy [0-9.]+ (re)

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
  $ (tarnpolicy --version >&-) 2>&1
  tarnpolicy: failed to write output: Bad file descriptor
  [2]

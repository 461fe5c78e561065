A signal may come during any request of an apply. The filter holds the earlier state or the new one; of a
process that is killed there is a file that leads back.

  $ . "$TESTDIR/setup"
  $ tarnlab init > /dev/null
  $ export web=nic-1002672-eth0-kelpco-sfw.2 TARNPOLICY_RUNTIME="$PWD/run"
  $ sweep() { quiet bash "$TESTDIR/policy-sweep" "$@"; }

  $ sweep signal SIGINT --count 1
  ended with 0 1
  $ sweep signal SIGTERM --count 1
  ended with 0 1
  $ sweep signal SIGHUP --count 1
  ended with 0 1

Who cuts the connection of its output changes nothing.

  $ sweep signal SIGPIPE --count 1
  ended with 0

Killed, it leaves a file that leads back, unless nothing has changed. No lock stays in the way.

  $ sweep signal SIGKILL --count 1
  ended with 0 137
  $ ls run

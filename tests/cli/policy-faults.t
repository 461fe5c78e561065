Whatever request of an apply fails, the filter holds the earlier state or the new one, or it is said what
leads back.

  $ . "$TESTDIR/setup"
  $ tarnlab init > /dev/null
  $ export web=nic-1002672-eth0-kelpco-sfw.2 TARNPOLICY_RUNTIME="$PWD/run"
  $ sweep() { quiet bash "$TESTDIR/policy-sweep" "$@"; }

One that fails once, and one that is answered with a status once.

  $ sweep errno EIO --count 1
  ended with 0 1
  $ sweep status kernel-out-of-memory --count 1
  ended with 0 1

Nothing is answered any more, or with a status only.

  $ sweep errno EIO --count 1000
  ended with 0 1 3
  $ sweep status kernel-out-of-memory
  ended with 0 1 3

Commands that this build does not have say so, whatever their options.

  $ . "$TESTDIR/setup"

  $ run tarnioctl rtt -h
  err| ERROR: command rtt is not available in this build.
  [1]
  $ run tarnioctl addfilter -Override -h
  err| ERROR: command addfilter is not available in this build.
  [1]
  $ run tarnioctl GetFlows -f x
  err| ERROR: command GetFlows is not available in this build.
  [1]

These are for debug builds only.

  $ run tarnioctl getskifferdata
  Command unsupported in release build.
  [1]
  $ run tarnioctl setskifferdata -h
  Command unsupported in release build.
  [1]
  $ run tarnioctl migrate
  Command unsupported in release build.
  [1]

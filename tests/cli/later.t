Commands for debug builds only say so, whatever their options.

  $ . "$TESTDIR/setup"

  $ run tarnioctl getskifferdata
  Command unsupported in release build.
  [1]
  $ run tarnioctl setskifferdata -h
  Command unsupported in release build.
  [1]
  $ run tarnioctl migrate
  Command unsupported in release build.
  [1]

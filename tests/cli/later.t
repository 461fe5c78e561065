Commands that this build does not have say so, whatever their options; one of each family.

  $ . "$TESTDIR/setup"

Trace and inspection.

  $ run tarnioctl tracetarn -x
  err| ERROR: command tracetarn is not available in this build.
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

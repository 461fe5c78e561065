Identifiers and pairs of numbers.

  $ . "$TESTDIR/setup"

  $ run tarnioctl number2uuid -h
  Convert coma separated number pairs to uuids.
  
  Usage: tarnioctl number2uuid <number1,number2>
      -b          : toggle byte order
      -h          : this help message
  $ run tarnioctl uuid2num --help
  Convert uuids like 5a43ddda-c21a-632a-4ae1-00505699723f to number pairs.
  
  Usage: tarnioctl uuid2num <uuid>
      -b          : toggle byte order
      -h          : this help message

  $ run tarnioctl number2uuid 1,2
  1,2: 00000000-0000-0001-0000-000000000002
  $ run tarnioctl num2uuid 6504286218482246442,5395594173616845375 0,0
  6504286218482246442,5395594173616845375: 5a43ddda-c21a-632a-4ae1-00505699723f
  0,0: 00000000-0000-0000-0000-000000000000
  $ run tarnioctl uuid2number 5a43ddda-c21a-632a-4ae1-00505699723f
  5a43ddda-c21a-632a-4ae1-00505699723f: 6504286218482246442,5395594173616845375
  $ run tarnioctl uuid2num 00000000-0000-0001-0000-000000000002
  00000000-0000-0001-0000-000000000002: 1,2

The bytes as the host has them, wherever the option stands.

  $ run tarnioctl number2uuid -b 1,2
  1,2: 01000000-0000-0000-0200-000000000000
  $ run tarnioctl uuid2num 01000000-0000-0000-0200-000000000000 --byteorder -b
  01000000-0000-0000-0200-000000000000: 1,2

Nothing to do.

  $ run tarnioctl number2uuid
  $ run tarnioctl uuid2number -b

What is no pair, or no identifier, ends the command.

  $ run tarnioctl number2uuid 1,2 7 3,4
  1,2: 00000000-0000-0001-0000-000000000002
  cannot recognize uuid number pair 7
  [1]
  $ run tarnioctl uuid2number 00000000-0000-0001-0000-000000000002 x 00000000-0000-0001-0000-000000000002
  00000000-0000-0001-0000-000000000002: 1,2
  cannot recognize uuid: x
  [1]
  $ run tarnioctl number2uuid ''
  cannot recognize uuid number pair 
  [1]

Unknown options.

  $ run tarnioctl num2uuid -x
  Convert coma separated number pairs to uuids.
  
  Usage: tarnioctl num2uuid <number1,number2>
      -b          : toggle byte order
      -h          : this help message
  err| num2uuid: invalid option -- 'x'
  [1]
  $ run tarnioctl uuid2num --bytes=1
  Convert uuids like 5a43ddda-c21a-632a-4ae1-00505699723f to number pairs.
  
  Usage: tarnioctl uuid2num <uuid>
      -b          : toggle byte order
      -h          : this help message
  err| uuid2num: unrecognized option '--bytes=1'
  [1]

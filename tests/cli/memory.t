Memory of the data path.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made

  $ run tarnioctl getmeminfo -h
  Get current memory usage data of datapath.
  
  Usage: tarnioctl getmeminfo <options>
      -h          : this help message
  $ lab tarnioctl getmeminfo | head -8
  Heap: tarn-config, max 512 MB
      zone  0: filter           objSize =  866, inUse =                8, numFail = 0, totalMem = 6928
      zone  1: rule set         objSize =  192, inUse =                0, numFail = 1, totalMem = 0
      zone  2: rule             objSize =  892, inUse =                0, numFail = 2, totalMem = 0
      zone  3: address set      objSize =  256, inUse =                1, numFail = 3, totalMem = 256
      zone  4: address          objSize =  144, inUse =                2, numFail = 0, totalMem = 288
      dynamic: objInUse = 13, memInUse = 6240, hwmMem = 7200, hwmObj = 15, alloc = 5013, free = 5000
      Total Heap Mem In Use = 13712 bytes (0 MB)
  $ quiet tarnioctl getmeminfo | grep '^Heap'
  Heap: tarn-config, max 512 MB
  Heap: tarn-tables, max 256 MB
  Heap: tarn-buffers, max 1024 MB
  Heap: tarn-texts, max 64 MB
  $ quiet tarnioctl getmeminfo | tail -1 | sed -E 's/[0-9]+/N/g'
  Total TARN Mem In Use = N bytes + N overhead = N (N MB)

Operands mean nothing.

  $ quiet tarnioctl getmeminfo now | head -1
  Heap: tarn-config, max 512 MB

A kernel that refuses leaves what it has not written: the room that was asked for.

  $ tarnlab fault absent
  $ lab tarnioctl getmeminfo | sed -E 's/zone [ 0-9]+/zone N/' | sort | uniq -c
       10     Total Heap Mem In Use = 0 bytes (0 MB)
       10     dynamic: objInUse = 0, memInUse = 0, hwmMem = 0, hwmObj = 0, alloc = 0, free = 0
      320     zone N:                  objSize =    0, inUse =                0, numFail = 0, totalMem = 0
       10 Heap: , max 0 MB
        1 Total TARN Mem In Use = 0 bytes + 0 overhead = 0 (0 MB)
        1 err| ERROR: ioctl failed to get meminfo 195887105
        1 log| tarnioctl <84> tarnfw: TarnFWIoctl:FW_Ioctl():N error 12: cannot open device /dev/brq-tarn: 2\n

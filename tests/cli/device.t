A host without the firewall's device.

  $ . "$TESTDIR/setup"

The list is then empty, since only the kernel's own status counts; the log says why.

  $ run tarnioctl getfilters
  err| ERROR: there is no filter for agent 
  log| tarnioctl <84> tarnfw: TarnFWIoctl:FW_Ioctl():N error 12: cannot open device /dev/brq-tarn: 2\n
  [1]
  $ run tarnioctl getfilters -n
  Total number of kernel filters: 0
  log| tarnioctl <84> tarnfw: TarnFWIoctl:FW_Ioctl():N error 12: cannot open device /dev/brq-tarn: 2\n
  $ TARN_CONTROL_DEVICE_PATH_OLD=1 run tarnioctl getfilters -a kelpco-sfw
  err| ERROR: there is no filter for agent kelpco-sfw
  log| tarnioctl <84> tarnfw: TarnFWIoctl:FW_Ioctl():N error 12: cannot open device /dev/tarn: 2\n
  [1]

What needs no device works.

  $ run tarnioctl num2uuid 1,2
  1,2: 00000000-0000-0001-0000-000000000002

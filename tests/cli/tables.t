The filter tables of the host, and the machines that follow them.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-inspect.4

What the tables hold, with every kind of entry.

  $ lab tarnioctl getfiltertables -h
  Get include and exclude tables.
  
  Usage: tarnioctl getfiltertables <options>
      -a <string> : agent name, default agent is kelpco-sfw
      -n          : print vnic index in the vnic form
      -h          : this help message
  $ lab tarnioctl getfiltertables -a kelpco-inspect
  Exclude Table (size = 33)
  VSWITCH office
  VNIC UUID 50 2e 1f 3a c2 1a 63 2b-4a e1 00 50 56 99 b6 2d VNIC Index 0
  
  Include Table (size = 84)
  VNIC UUID 50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26 VNIC Index 0
  DVS 50 2e 7c 11 90 3f 4b 5a-8c 21 d4 0e 6b 77 1f 03 DVPort 253870
  DVS 50 2e 7c 11 90 3f 4b 5a-8c 21 d4 0e 6b 77 1f 2c
  VSWITCH office
  
  $ lab tarnioctl getfiltertables -n -a kelpco-sfw
  Exclude table is empty
  
  Include Table (size = 47)
  VNIC ID 502e1f3a-c21a-632a-4ae1-00505699b626.000
  HOST WIDE
  
  $ lab tarnioctl createagent -Override -a tables
  $ lab tarnioctl getfiltertables -a tables
  Exclude table is empty
  
  Include table is empty.
  $ lab tarnioctl getfiltertables -a none
  Exclude table is empty
  
  Include table is empty.
  log| tarnioctl <83> tarnfw: TarnWGTIoctl:sendIoctl():N ioctl cmd 3 on device /dev/weirgatetbl failed: No such file or directory\n\n
  log| tarnioctl <83> tarnfw: TarnWGTIoctl:sendIoctl():N ioctl cmd 8 on device /dev/weirgatetbl failed: No such file or directory\n\n
  $ brief lab tarnioctl getfiltertables
  (usage)
  [1]
  $ lab tarnioctl getfiltertables -a $(printf 'a%.0s' {1..40})
  err| ERROR: invalid agent name aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa
  [1]

A change is followed by the revalidation of all machines, of one, or of none.

  $ lab tarnioctl setfiltertables -Override -h
  Set include and exclude tables.
  
  Usage: tarnioctl setfiltertables <options>
      -a <string> : agent name, default agent is kelpco-sfw
      -e          : update exclude table instead of include table
      -d          : delete an entry instead of adding an entry
      -o          : entry is a host entry
      -n <string> : entry is a vnic, vnic form
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -s <number> : slot number for host entry, default is 2
      -w <number> : vm world id, used with -n together
                    world id can be obtained by /bin/tarn_vm_list.sh
      -k          : skip Revalidate VM
      -h          : this help message
  $ lab tarnioctl setfiltertables -Override -a tables -n 502e1f3a-c21a-632a-4ae1-00505699b626.000 -s 3
  $ tarnlab log -s -n 6
  tables 5: add to the include table(agent "tables", bytes 32) = ok
  tables 10: revalidate the machine of world 1002672, 502e1f3a-c21a-632a-4ae1-00505699b626 = ok (made nic-1002672-eth0-tables.3)
  tables 10: revalidate the machine of world 1002731, 502e1f3a-c21a-632b-4ae1-00505699b62d = ok
  tables 10: revalidate the machine of world 1003044, 502e1f3a-c21a-7011-4ae1-005056991077 = ok
  tables 10: revalidate the machine of world 1003120, 502e1f3a-c21a-7012-4ae1-00505699107e = ok
  tables 10: revalidate the machine of world 998214, 502e1f3a-c21a-0451-4ae1-005056991e37 = ok
  $ lab tarnioctl getfilters -a tables | grep Name
  Filter Name              : nic-1002672-eth0-tables.3
  $ lab tarnioctl setfiltertables -Override -a tables -o -k
  $ lab tarnioctl setfiltertables -Override -f $filter -a tables -e -w 1002672
  $ tarnlab log -s -n 3
  firewall 40: filter of kelpco-inspect (count 1, room 866) = ok {count 1, bytes 866} (filter nic-1002672-eth0-kelpco-inspect.4)
  tables 0: add to the exclude table(agent "tables", bytes 23) = ok
  tables 10: revalidate the machine of world 1002672, 502e1f3a-c21a-632a-4ae1-00505699b626 = ok (disconnected nic-1002672-eth0-tables.3)
  $ lab tarnioctl getfiltertables -a tables
  Exclude Table (size = 23)
  VNIC UUID 50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26 VNIC Index 0
  
  Include Table (size = 47)
  VNIC UUID 50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26 VNIC Index 0
  HOST WIDE
  
  $ lab tarnioctl setfiltertables -Override -a tables -o -d -k
  $ lab tarnioctl setfiltertables -Override -a tables -f $filter -e -d -k
  log| tarnioctl <83> tarnfw: TarnWGTIoctl:sendIoctl():N ioctl cmd 2 on device /dev/weirgatetbl failed: No such file or directory\n\n
  $ tarnlab log -s -n 2
  firewall 40: filter of kelpco-inspect (count 1, room 866) = ok {count 1, bytes 866} (filter nic-1002672-eth0-kelpco-inspect.4)
  tables 2: delete from the exclude table(agent "kelpco-inspect", bytes 23) = ENOENT (no entry vnic 502e1f3a-c21a-632a-4ae1-00505699b626.000)
  $ lab tarnioctl setfiltertables -Override -a tables -e -d -k -n '50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26:000' -o
  $ lab tarnioctl getfiltertables -a tables
  Exclude table is empty
  
  Include Table (size = 32)
  VNIC UUID 50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26 VNIC Index 0
  

Changes and lookups that fail.

  $ lab tarnioctl setfiltertables -Override -a tables -o -d -k
  log| tarnioctl <83> tarnfw: TarnWGTIoctl:sendIoctl():N ioctl cmd 7 on device /dev/weirgatetbl failed: No such file or directory\n\n
  $ lab tarnioctl setfiltertables -Override -a tables -o -w 5
  err| ERROR: Failed to revalidate vm(s) after set weirgate table
  log| tarnioctl <83> tarnfw: TarnFWUtil:RevalidateOneVM():N Failed to revalidate vm of world id 5: No such file or directory\n\n
  [1]
  $ lab tarnioctl setfiltertables -Override -f nic-1-eth0-none.2
  err| ERROR: failed to get detail of filter nic-1-eth0-none.2: 21
  [1]
  $ brief lab tarnioctl setfiltertables -Override -o
  (usage)
  err| ERROR: agent is missing
  [1]
  $ brief lab tarnioctl setfiltertables -Override -a tables
  (usage)
  err| ERROR: must specify either vnic, filter, or host
  [1]
  $ brief lab tarnioctl setfiltertables -Override -a tables -e -o
  (usage)
  err| ERROR: vnic or filter is missing
  [1]
  $ lab tarnioctl setfiltertables -Override -a tables -n 502e1f3a
  err| ERROR: bad vnic 502e1f3a
  [1]
  $ brief lab tarnioctl setfiltertables -Override -a tables -o -s two
  (usage)
  [1]

Machines are revalidated by their list, or one by one.

  $ lab tarnioctl revalidatevm -Override -h
  Revalidate VM(s) according to weirgate tables.
  
  Usage: tarnioctl revalidatevm <options>
      -w <number> : vm world id, used with -u together to revalidate a single VM
      -u <string> : vm uuid in the gfy form
      -h          : this help message
  $ lab tarnioctl revalidatevm -Override
  $ tarnlab log -s -n 5
  tables 10: revalidate the machine of world 1002672, 502e1f3a-c21a-632a-4ae1-00505699b626 = ok (connected nic-1002672-eth0-tables.3)
  tables 10: revalidate the machine of world 1002731, 502e1f3a-c21a-632b-4ae1-00505699b62d = ok (made nic-1002731-eth0-tables.2)
  tables 10: revalidate the machine of world 1003044, 502e1f3a-c21a-7011-4ae1-005056991077 = ok (made nic-1003044-eth0-tables.2, made nic-1003044-eth1-tables.2)
  tables 10: revalidate the machine of world 1003120, 502e1f3a-c21a-7012-4ae1-00505699107e = ok (made nic-1003120-eth0-tables.2)
  tables 10: revalidate the machine of world 998214, 502e1f3a-c21a-0451-4ae1-005056991e37 = ok (made nic-998214-eth0-tables.2)
  $ lab tarnioctl revalidatevm -Override -w 1002672 -u '50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26'
  $ lab tarnioctl revalidatevm -Override -w 5 -u '50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26'
  log| tarnioctl <83> tarnfw: TarnFWUtil:RevalidateOneVM():N Failed to revalidate vm of world id 5: No such file or directory\n\n
  [1]
  $ brief lab tarnioctl revalidatevm -Override -w 1002672
  (usage)
  err| ERROR: Please provide both vm uuid and world id to revalidate one vm
  [1]
  $ brief lab tarnioctl revalidatevm -Override -w 1002672 -u 502e1f3a
  (usage)
  err| ERROR: Bad vm uuid string.
  [1]
  $ tarnlab fault errno EBUSY --only 10 --count 1
  $ lab tarnioctl revalidatevm -Override
  log| tarnioctl <83> tarnfw: TarnFWUtil:RevalidateAllVMs():N Failed to revalidate vm 50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26 of world 1002672: Device or resource busy\n\n
  [1]
  $ tarnlab log -s -n 1
  tables 10: revalidate the machine = EBUSY (ordered fault)

The entries of an agent are read and deleted.

  $ lab tarnioctl clrwgttable -Override -h
  Remove the weirgate dynamic filter creation entries for an agent.
  
  Usage: tarnioctl clrwgttable <options>
      -a <string> : agent name, default kelpco-sfw
      -v<number>  : enable verbose log
      -i          : only clear incl tables
      -e          : only clear excl tables
      -h          : this help message
  $ lab tarnioctl clrwgttable -Override -e -a kelpco-inspect
  $ tarnlab log -s -n 3
  tables 3: size of the exclude table(agent "kelpco-inspect") = ok {size 33}
  tables 4: exclude table(agent "kelpco-inspect", room 33) = ok {bytes 33}
  tables 2: delete from the exclude table(agent "kelpco-inspect", bytes 33) = ok
  $ quiet tarnioctl clrwgttable -Override -v2 --agent kelpco-inspect
  verbose level : 2
  weirgate agent: kelpco-inspect
  buflen: 84
  got the include extries for kelpco-inspect
  cleared the include extries for kelpco-inspect
  Entries for kelpco-inspect already cleared
  $ lab tarnioctl clrwgttable -Override -a kelpco-inspect
  Entries for kelpco-inspect already cleared
  Entries for kelpco-inspect already cleared
  $ lab tarnioctl clrwgttable -Override -a none
  No include entries found for none
  No exclude entries found for none
  log| tarnioctl <83> tarnfw: TarnWGTIoctl:sendIoctl():N ioctl cmd 8 on device /dev/weirgatetbl failed: No such file or directory\n\n
  log| tarnioctl <83> tarnfw: TarnWGTIoctl:sendIoctl():N ioctl cmd 3 on device /dev/weirgatetbl failed: No such file or directory\n\n
  $ lab tarnioctl clrwgttable -Override -i -e
  err| -i and -e are mutually exclusive, clearing both is default
  [1]
  $ lab tarnioctl clrwgttable -Override -a $(printf 'a%.0s' {1..100})
  err| ERROR: agent name too long (no-eol)
  [1]
  $ tarnlab fault errno EBUSY --only 7 --count 1
  $ lab tarnioctl clrwgttable -Override
  failed to delete the include entries: -1, 16
  log| tarnioctl <83> tarnfw: TarnWGTIoctl:sendIoctl():N ioctl cmd 7 on device /dev/weirgatetbl failed: Device or resource busy\n\n
  [1]
  $ tarnlab fault errno ENOENT --only 9 --count 1
  $ lab tarnioctl clrwgttable -Override
  failed to get current include entries: -1, 2
  log| tarnioctl <83> tarnfw: TarnWGTIoctl:sendIoctl():N ioctl cmd 9 on device /dev/weirgatetbl failed: No such file or directory\n\n
  [1]

All filters of an agent.

  $ lab tarnioctl clearallfilters -Override -h
  Clear all filters.
  
  Usage: tarnioctl clearallfilters <options>
      -a <string> : agent name, default agent is kelpco-sfw
      -d          : delay destroying disconnected filters
      -e          : exclude list
      -o          : only destroy disconnected filters
      -h          : this help message
  $ lab tarnioctl clearallfilters -Override -d -o
  Cannot have option -d and -o together.
  [1]
  $ lab tarnioctl clearallfilters -Override -d
  Removing all kelpco-sfw filters...
  Cleared weirgate include table.
  Updated all VMs to remove filters.
  $ lab tarnioctl getfilters -a kelpco-sfw | grep -c Name
  6
  $ lab tarnioctl clearallfilters -Override -o
  Removing all kelpco-sfw filters...
  Skip connected filters.
  Destroyed all disconnected filters (please ignore `Function not implemented' error if there is).
  [1]
  $ lab tarnioctl getfilters -a kelpco-sfw | grep -c Name
  0
  [1]
  $ lab tarnioctl clearallfilters -Override -e -a tables
  Removing all tables filters...
  Cleared weirgate include table.
  Cleared weirgate exclude table.
  Updated all VMs to remove filters.
  Destroyed all disconnected filters (please ignore `Function not implemented' error if there is).
  $ tarnlab log -s -n 8
  tables 6: clear the include table(agent "tables") = ok
  tables 1: clear the exclude table(agent "tables") = ok
  tables 10: revalidate the machine of world 1002672, 502e1f3a-c21a-632a-4ae1-00505699b626 = ok (disconnected nic-1002672-eth0-tables.3)
  tables 10: revalidate the machine of world 1002731, 502e1f3a-c21a-632b-4ae1-00505699b62d = ok (disconnected nic-1002731-eth0-tables.2)
  tables 10: revalidate the machine of world 1003044, 502e1f3a-c21a-7011-4ae1-005056991077 = ok (disconnected nic-1003044-eth0-tables.2, disconnected nic-1003044-eth1-tables.2)
  tables 10: revalidate the machine of world 1003120, 502e1f3a-c21a-7012-4ae1-00505699107e = ok (disconnected nic-1003120-eth0-tables.2)
  tables 10: revalidate the machine of world 998214, 502e1f3a-c21a-0451-4ae1-005056991e37 = ok (disconnected nic-998214-eth0-tables.2)
  tables 11: destroy disconnected filters(agent "tables") = ok (destroyed nic-1002672-eth0-tables.3, destroyed nic-1002731-eth0-tables.2, destroyed nic-1003044-eth0-tables.2, destroyed nic-1003044-eth1-tables.2, destroyed nic-1003120-eth0-tables.2, destroyed nic-998214-eth0-tables.2)
  $ lab tarnioctl clearallfilters -Override -a $(printf 'a%.0s' {1..40})
  err| ERROR: invalid agent name aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa
  [1]

A device that is not there is no agent without entries.

  $ tarnlab fault absent tables
  $ lab tarnioctl clrwgttable -Override -i
  failed to get include size: -1, 2
  log| tarnioctl <84> tarnfw: TarnWGTIoctl:WGT_Ioctl():N error 12: cannot open device /dev/weirgatetbl: 2\n
  log| tarnioctl <84> tarnfw: TarnWGTIoctl:WGT_GetFd():N error 12: cannot open device /dev/weirgatetbl: 2\n
  [1]
  $ lab tarnioctl getfiltertables -a tables
  Exclude table is empty
  
  Include table is empty.
  log| tarnioctl <84> tarnfw: TarnWGTIoctl:WGT_Ioctl():N error 12: cannot open device /dev/weirgatetbl: 2\n
  log| tarnioctl <84> tarnfw: TarnWGTIoctl:WGT_Ioctl():N error 12: cannot open device /dev/weirgatetbl: 2\n
  $ lab tarnioctl revalidatevm -Override
  log| tarnioctl <84> tarnfw: TarnWGTIoctl:WGT_GetFd():N error 12: cannot open device /dev/weirgatetbl: 2\n
  log| tarnioctl <83> tarnfw: TarnFWUtil:RevalidateAllVMs():N Failed to revalidate vm 50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26 of world 1002672: Bad file descriptor\n\n
  [1]
  $ lab tarnioctl setfiltertables -Override -a tables -o
  err| ERROR: Failed to revalidate vm(s) after set weirgate table
  log| tarnioctl <84> tarnfw: TarnWGTIoctl:WGT_Ioctl():N error 12: cannot open device /dev/weirgatetbl: 2\n
  log| tarnioctl <84> tarnfw: TarnWGTIoctl:WGT_GetFd():N error 12: cannot open device /dev/weirgatetbl: 2\n
  log| tarnioctl <83> tarnfw: TarnFWUtil:RevalidateAllVMs():N Failed to revalidate vm 50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26 of world 1002672: Bad file descriptor\n\n
  [1]

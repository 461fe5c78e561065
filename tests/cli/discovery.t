Addresses that the data path has discovered.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2

  $ run tarnioctl getdiscoveredips -h
  Get discovered IPs of a filter.
  
  Usage: tarnioctl getdiscoveredips <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -h          : this help message
  $ run tarnioctl setipdiscovery -h
  Set IP discovery related configuration of a filter.
  
  Usage: tarnioctl setipdiscovery <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -d          : enable DHCP based discovery
      -a          : enable ARP based discovery
      -t <number> : timeout for entries discoverd by ARP snooping in seconds (default 2 hours, 7200)
      -l <number> : maximum number of ARP snooped entries permitted (max 128)
      -h          : this help message
  $ run tarnioctl cleardiscoveredips -h
  Clear discovered IPs of a filter.
  
  Usage: tarnioctl cleardiscoveredips <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -h          : this help message
  $ brief run tarnioctl getdiscoveredips -s
  (usage)
  err| ERROR: filter is missing.
  [1]
  $ brief run tarnioctl setipdiscovery -d
  (usage)
  err| ERROR: filter is missing.
  [1]
  $ brief run tarnioctl cleardiscoveredips
  (usage)
  err| ERROR: filter is missing.
  [1]

An option that is unknown ends two of them with 0.

  $ run tarnioctl getdiscoveredips -x > text
  [1]
  $ run tarnioctl setipdiscovery -x > text
  $ cat text | head -1
  Set IP discovery related configuration of a filter.
  $ run tarnioctl cleardiscoveredips -x > text
  $ cat text | head -1
  Clear discovered IPs of a filter.

What the first filter has discovered, with every source; others have discovered nothing.

  $ lab tarnioctl getdiscoveredips -f $filter
  Entries found for nic-1002672-eth0-kelpco-sfw.2: 7
  \t[1] vlan = 101  mac = 00:50:56:99:2b:26  IP = 10.20.1.40 (DHCP snooping) (esc)
  \t[2] vlan = 102  mac = 00:50:56:99:2b:27  IP = 10.20.1.41 (ARP snooping) (esc)
  \t[3] vlan = 103  mac = 00:50:56:99:2b:28  IP = 10.20.1.42 (ARP snooping) (esc)
  \t[4] vlan = 104  mac = 00:50:56:99:2b:29  IP = 10.20.1.43 (Unknown source) (esc)
  \t[5] vlan = 105  mac = 00:50:56:99:2b:26  IP = fd00:20:1::40 (DHCP snooping) (esc)
  \t[6] vlan = 106  mac = 00:50:56:99:2b:27  IP = fe80::250:56ff:fe99:2b27 (ND snooping) (esc)
  \t[7] vlan = 107  mac = 00:50:56:99:2b:28  IP = fd00:20:1::42 (Unknown source) (esc)
  $ quiet tarnioctl getdiscoveredips -f $filter -s | head -9
  Features Enabled : 0000000F : (DHCP snooping) (ARP snooping) (DHCPv6 snooping) (ND snooping)
  Arp Timeout : 7200
  Maximum Arp Entries : 32
  Number of Adds so far : 19
  Number of Deletes so far : 12
  Last updated time : 5400
  Entries found for nic-1002672-eth0-kelpco-sfw.2: 7
  \t[1] vlan = 101  mac = 00:50:56:99:2b:26  IP = 10.20.1.40 (DHCP snooping) (esc)
  \t[2] vlan = 102  mac = 00:50:56:99:2b:27  IP = 10.20.1.41 (ARP snooping) (esc)
  $ quiet tarnioctl getdiscoveredips -f nic-1002731-eth0-kelpco-sfw.2
  Entries found for nic-1002731-eth0-kelpco-sfw.2: 0
  $ quiet tarnioctl getdiscoveredips -s -f nic-1002731-eth0-kelpco-sfw.2
  Features Enabled : 0000000F : (DHCP snooping) (ARP snooping) (DHCPv6 snooping) (ND snooping)
  Arp Timeout : 7200
  Maximum Arp Entries : 32
  Number of Adds so far : 0
  Number of Deletes so far : 0
  Last updated time : 0
  Entries found for nic-1002731-eth0-kelpco-sfw.2: 0

What is set is shown.

  $ quiet tarnioctl setipdiscovery -f $filter -d -a -l 64 -t 600
  $ quiet tarnioctl getdiscoveredips -f $filter -s | head -3
  Features Enabled : 00000003 : (DHCP snooping) (ARP snooping)
  Arp Timeout : 600
  Maximum Arp Entries : 64
  $ quiet tarnioctl setipdiscovery -f $filter -a
  $ quiet tarnioctl getdiscoveredips -f $filter -s | head -3
  Features Enabled : 00000002 :  (ARP snooping)
  Arp Timeout : 7200
  Maximum Arp Entries : 1
  $ quiet tarnioctl cleardiscoveredips -f $filter
  $ quiet tarnioctl getdiscoveredips -f $filter
  Entries found for nic-1002672-eth0-kelpco-sfw.2: 0

What is refused, and what nobody answers.

  $ quiet tarnioctl setipdiscovery -f $filter -l 129
  err| ERROR: Maximum ARP VMI entries should between 0 and 128
  [1]
  $ quiet tarnioctl setipdiscovery -f $filter -t soon | head -1
  Set IP discovery related configuration of a filter.
  $ lab tarnioctl getdiscoveredips -f nic-9-eth0-kelpco-sfw.9
  Entries found for nic-9-eth0-kelpco-sfw.9: 0
  log| tarnioctl <83> tarnfw: TarnFWIoctl:sendIoctl():N ioctl cmd 31 on device /dev/brq-tarn failed: No such file or directory\n\n
  $ quiet tarnioctl setipdiscovery -f nic-9-eth0-kelpco-sfw.9
  $ quiet tarnioctl cleardiscoveredips -f nic-9-eth0-kelpco-sfw.9

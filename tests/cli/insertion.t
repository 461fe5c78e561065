Service insertion: instances, profiles, GRE, and the tables of its data path.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2

  $ run tarnioctl createinstance -Override -h
  Create a service instance.
  
  Usage: tarnioctl createinstance <options>
      -i <string> : service instance id
      -n <string> : service name
      -s <number> : slot, 0 to 15
      -d <number> : deploy type, 1 (RIBS), 2 (PLANKIO), 3 (L2),
                    or 4 (L3)
      -t <string> : transport specification
         transport is '=' separated string and its first token
         defines the transport protocol in number, and the rest
         of string defines the options for the protocol:
         1: RIBS, no option
         2: PLANKIO, no option
         3: MACRED, 3=addrstr=dgtmac=flipdir
         4: GRE, 4=addrstr=key=flags=encapProto=gtmac=flipdir
         11: NONE, no option
      -h          : this help message
  $ run tarnioctl replaceinstance -Override -h | head -3
  Replace a service instance.
  
  Usage: tarnioctl replaceinstance <options>
  $ run tarnioctl destroyinstance -Override -h | head -3
  Destroy a service instance.
  
  Usage: tarnioctl destroyinstance <options>
  $ run tarnioctl getinstances -h
  Get service instances.
  
  Usage: tarnioctl getinstances <options>
      -i <string> : service instance id
      -h          : this help message
  $ run tarnioctl createprofile -Override -h
  Create a service profile for a filter.
  
  Usage: tarnioctl createprofile <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -p <string> : service profile id
      -i <string> : service instance id
      -v <string> : vendor template id
      -t <string> : vendor provided template id
      -h          : this help message
  $ run tarnioctl destroyprofile -Override -h
  Destroy a service profile for a filter.
  
  Usage: tarnioctl destroyprofile <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -h          : this help message
  $ run tarnioctl getprofiles -h
  Get service profiles.
  
  Usage: tarnioctl getprofiles <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -h          : this help message
  $ run tarnioctl gre -Override -h
  Add a GRE entry.
  
  Usage: tarnioctl gre <options>
      -a <string> : ip address, e.g., 192.168.1.1
      -k <hex>    : key, e.g., 0x8
      -f <hex>    : flag, e.g., 0x2000,0
      -e <hex>    : encapslated ethertypes, e.g., 0x0800, 0x6558, 0x883e
      -m <string> : mac address
      -g <string> : guest ip address, e.g., 172.16.1.1
      -h          : this help message
  $ run tarnioctl getsisvmstats -h
  get svm stats command help.
  
  Usage: tarnioctl getsisvmstats <options>
      -p <string> : SVM port id, such as 67108875
      -h          : this help message

Instances of the usual host: every protocol and type.

  $ lab tarnioctl getinstances
  Num instances = 5
  
  Instance Id              : web-inspection
  Name                     : deep inspection of web traffic
  Deployment Type          : 4
  Ref Count                : 1
  Mark for Deletion        : 0
  -- Transport --
  Protocol                 : 4
  Address Str              : 10.20.9.8
  GRE key                  : 1234
  GRE Flags                : 8192
  GRE Encap Protocol       : 25944
  GRE Gtway Mac            : 00:50:56:99:4c:08
  GRE Flip dir             : 1
  
  Instance Id              : mail-gateway
  Name                     : mail gateway
  Deployment Type          : 3
  Ref Count                : 0
  Mark for Deletion        : 0
  -- Transport --
  Protocol                 : 3
  Address Str              : 00:50:56:99:4c:07
  MACRED Gtway Mac         : 00:50:56:99:4c:fe
  MACRED Flip dir          : 2
  
  Instance Id              : guest-tap
  Name                     : tap of a guest
  Deployment Type          : 1
  Ref Count                : 0
  Mark for Deletion        : 0
  -- Transport --
  Protocol                 : 1
  
  Instance Id              : copy-tap
  Name                     : tap of a copy
  Deployment Type          : 2
  Ref Count                : 0
  Mark for Deletion        : 0
  -- Transport --
  Protocol                 : 2
  
  Instance Id              : reserve
  Name                     : 
  Deployment Type          : 0
  Ref Count                : 0
  Mark for Deletion        : 0
  -- Transport --
  Protocol                 : 11
  
  $ lab tarnioctl getinstances -i mail-gateway | head -3
  Instance Id              : mail-gateway
  Name                     : mail gateway
  Deployment Type          : 3

An instance that is made, used by two filters, and that is to go.

  $ quiet tarnioctl createinstance -Override -i tap -n 'a tap' -s 5 -d 3 -t 3=00:50:56:99:4c:09=00:50:56:99:4c:fe=1
  $ quiet tarnioctl createprofile -Override -f $filter -p tap-profile -i tap -v basic -t extended
  $ quiet tarnioctl createprofile -Override -f nic-1002731-eth0-kelpco-sfw.2 -p tap-profile -i tap
  $ quiet tarnioctl getprofiles
  Num profiles = 3
  
  Profile Id                     : tap-profile
  Instance Id                    : tap
  Filter Name                    : nic-1002672-eth0-kelpco-sfw.2
  Vendor Template Id             : basic
  Vendor Provided Template Id    : extended
  
  Profile Id                     : web-profile
  Instance Id                    : web-inspection
  Filter Name                    : nic-1002672-eth0-kelpco-inspect.4
  Vendor Template Id             : inspection-basic
  Vendor Provided Template Id    : inspection-web
  
  Profile Id                     : tap-profile
  Instance Id                    : tap
  Filter Name                    : nic-1002731-eth0-kelpco-sfw.2
  Vendor Template Id             : 
  Vendor Provided Template Id    : 
  
  $ quiet tarnioctl getprofiles -f $filter | head -2
  Profile Id                     : tap-profile
  Instance Id                    : tap
  $ quiet tarnioctl getfilters -a kelpco-sfw | grep Profile
  Service Profile          : tap-profile
  Service Profile          : tap-profile
  $ quiet tarnioctl replaceinstance -Override -i tap -t 4=10.20.9.10=77=1=0x0800=00:50:56:99:4c:fd=0
  $ quiet tarnioctl getinstances -i tap
  Instance Id              : tap
  Name                     : 
  Deployment Type          : 0
  Ref Count                : 2
  Mark for Deletion        : 0
  -- Transport --
  Protocol                 : 4
  Address Str              : 10.20.9.10
  GRE key                  : 77
  GRE Flags                : 1
  GRE Encap Protocol       : 2048
  GRE Gtway Mac            : 00:50:56:99:4c:fd
  GRE Flip dir             : 0
  
  $ quiet tarnioctl destroyinstance -Override -i tap
  $ quiet tarnioctl getinstances -i tap | head -5
  Instance Id              : tap
  Name                     : 
  Deployment Type          : 0
  Ref Count                : 2
  Mark for Deletion        : 1
  $ quiet tarnioctl destroyprofile -Override -f $filter
  $ quiet tarnioctl destroyprofile -Override -f nic-1002731-eth0-kelpco-sfw.2
  $ lab tarnioctl getinstances -i tap
  Instance Id              : 
  Name                     : 
  Deployment Type          : 0
  Ref Count                : 0
  Mark for Deletion        : 0
  -- Transport --
  Protocol                 : 0
  
  log| tarnioctl <83> tarnfw: TarnFWIoctl:sendIoctl():N ioctl cmd 5 on device /dev/brq-tarn failed: No such file or directory\n\n
  $ tarnlab log -s -n 18 | grep -v 'firewall 2[01]'
  firewall 4: number of service instances(id "") = ok {count 5}
  firewall 5: service instances(id "", count 5, room 1465) = ok {count 5}
  firewall 5: service instances(id "mail-gateway", count 0, room 293) = ok {count 1}
  firewall 1: create service instance tap (name "a tap", slot 5, deploy type 3, force 0, MACRED address "00:50:56:99:4c:09", gateway "00:50:56:99:4c:fe", flip 1) = ok
  firewall 8: create service profile of nic-1002672-eth0-kelpco-sfw.2 (id "tap-profile", instance "tap", vendor template "basic", vendor provided template "extended") = ok
  firewall 8: create service profile of nic-1002731-eth0-kelpco-sfw.2 (id "tap-profile", instance "tap", vendor template "", vendor provided template "") = ok
  firewall 11: number of service profiles(filter "") = ok {count 3}
  firewall 12: service profiles(filter "", count 3, room 876) = ok {count 3}
  firewall 12: service profiles(filter "nic-1002672-eth0-kelpco-sfw.2", count 0, room 292) = ok {count 1}
  firewall 2: replace service instance tap (name "", slot 0, deploy type 0, force 0, GRE address "10.20.9.10", key 77, flags 0x1, encapsulates 0x800, gateway "00:50:56:99:4c:fd", flip 0) = ok
  firewall 5: service instances(id "tap", count 0, room 293) = ok {count 1}
  firewall 3: destroy service instance tap (force 0) = ok
  firewall 5: service instances(id "tap", count 0, room 293) = ok {count 1}
  firewall 10: destroy service profile of nic-1002672-eth0-kelpco-sfw.2 (id "", instance "", vendor template "", vendor provided template "") = ok
  firewall 10: destroy service profile of nic-1002731-eth0-kelpco-sfw.2 (id "", instance "", vendor template "", vendor provided template "") = ok
  firewall 5: service instances(id "tap", count 0, room 293) = ENOENT (there is no instance tap)

By force an instance goes with its profiles.

  $ quiet tarnioctl destroyinstance -Override -i web-inspection -f
  $ quiet tarnioctl getprofiles
  Num profiles = 0
  
  $ quiet tarnioctl getinstances | head -1
  Num instances = 4

What is refused before anything is sent.

  $ run tarnioctl createinstance -Override -t 2 | head -3
  No options for PLANKIO.
  Create a service instance.
  
  $ brief run tarnioctl createinstance -Override -i x
  (usage)
  [1]
  $ brief run tarnioctl destroyinstance -Override
  (usage)
  [1]
  $ run tarnioctl createinstance -Override -s 16
  err| ERROR: invalid slot number, expected 0 to 15
  [1]
  $ run tarnioctl createinstance -Override -t ''
  err| ERROR: invalid transport specification
  [1]
  $ run tarnioctl createinstance -Override -t 5
  err| ERROR: invalid protocol: 5
  [1]
  $ run tarnioctl createinstance -Override -t 4=10.20.9.8=1
  err| ERROR: bad spec, expected proto=prec=addrstr=key=flags=encapProto=gtmac=flipdir
  [1]
  $ run tarnioctl createinstance -Override -t 4=10.20.9.8=1=2=ip=mac=0
  err| ERROR: bad encap protocol ip
  [1]
  $ run tarnioctl createinstance -Override -t 3=10.20.9.8
  err| ERROR: bad spec, expected proto=prec=addrstr=dgtmac=flipdir
  [1]
  $ brief run tarnioctl createprofile -Override -f $filter
  (usage)
  [1]
  $ brief run tarnioctl destroyprofile -Override -f $filter -p tap
  (usage)
  [1]

What the kernel refuses is in the system log only.

  $ lab tarnioctl createinstance -Override -i reserve -t 11
  No protocol.
  log| tarnioctl <83> tarnfw: TarnFWIoctl:sendIoctl():N ioctl cmd 1 on device /dev/brq-tarn failed: File exists\n\n
  $ lab tarnioctl destroyprofile -Override -f $filter
  log| tarnioctl <83> tarnfw: TarnFWIoctl:sendIoctl():N ioctl cmd 10 on device /dev/brq-tarn failed: No such file or directory\n\n
  $ lab tarnioctl getprofiles -f $filter
  Profile Id                     : 
  Instance Id                    : 
  Filter Name                    : 
  Vendor Template Id             : 
  Vendor Provided Template Id    : 
  
  log| tarnioctl <83> tarnfw: TarnFWIoctl:sendIoctl():N ioctl cmd 12 on device /dev/brq-tarn failed: No such file or directory\n\n
  $ tarnlab log -s -n 3
  firewall 1: create service instance reserve (name "", slot 0, deploy type 0, force 0, no protocol) = EEXIST (instance reserve)
  firewall 10: destroy service profile of nic-1002672-eth0-kelpco-sfw.2 (id "", instance "", vendor template "", vendor provided template "") = ENOENT (the filter has no profile)
  firewall 12: service profiles(filter "nic-1002672-eth0-kelpco-sfw.2", count 0, room 292) = ENOENT (the filter has no profile)

GRE.

  $ quiet tarnioctl gre -Override -a 192.168.1.1 -k 0x8 -f 0x2000 -e 0x0800 -m 00:50:56:99:2b:26 -g 172.16.1.1
  $ quiet tarnioctl gre -Override -a 192.168.1.2 -e 0x0800 -k 0x8 -f 0 -m 00-50-56-99-2b-27 -g 172.16.1.1
  $ tarnlab show --tables | sed -n '/^gre/,/^}/p'
  gre {
    192.168.1.1 for 172.16.1.1, key 0x800, flags 0x2000, encapsulates 0x0, mac 00:50:56:99:2b:26
    192.168.1.2 for 172.16.1.1, key 0x8, flags 0x0, encapsulates 0x0, mac 00:50:56:99:2b:27
  }
  $ brief run tarnioctl gre -Override -a 192.168.1.1 -k 8 -f 0 -g 172.16.1.1
  (usage)
  err| ERROR: missing argument(s).
  [1]
  $ run tarnioctl gre -Override -k 8 -f 0 -m soon
  err| ERROR: invalid MAC address 0
  [1]
  $ run tarnioctl gre -Override -e 0x10000
  err| ERROR: invalid encapslated protocol: 0x10000
  [1]
  $ run tarnioctl gre -Override -g guest
  err| ERROR: invalid guest ip address guest
  [1]

Tables of the data path: every policy, type and mode.

  $ quiet tarnioctl getsisvctable
  Service table has 5 entries
  service table count 5
  --------------------------------------------------------------------------------------------------------------------------------------
   UUID                                | FWD SPI,SI,SCID   | FWD SERVICE MAC   | REV SPI,SI,SCID   | REV SERVICE MAC   | FAILURE POLICY|
  --------------------------------------------------------------------------------------------------------------------------------------
  7d1f02c4-93ab-4e50-8a6e-005056994c01 |      101,254,11   | 00:50:56:99:4c:01 |    65736,127,1001 | 00:50:56:99:4c:81 | INVALID       |
  7d1f02c4-93ab-4e50-8a6e-005056994c02 |      102,253,12   | 00:50:56:99:4c:02 |   131272,126,1002 | 00:50:56:99:4c:82 | DROP          |
  7d1f02c4-93ab-4e50-8a6e-005056994c03 |      103,252,13   | 00:50:56:99:4c:03 |   196808,125,1003 | 00:50:56:99:4c:83 | ALLOW         |
  7d1f02c4-93ab-4e50-8a6e-005056994c04 |      104,251,14   | 00:50:56:99:4c:04 |   262344,124,1004 | 00:50:56:99:4c:84 | DEFAULT       |
  7d1f02c4-93ab-4e50-8a6e-005056994c05 |      105,250,15   | 00:50:56:99:4c:05 |   327880,123,1005 | 00:50:56:99:4c:85 | UNKNOWN       |
  --------------------------------------------------------------------------------------------------------------------------------------
  $ lab tarnioctl getsinshtable -h
  nsh table has 5 entries
  -----------------------------------------------------------------------------------
  SPI_KEY, SI_KEY | SERVICE MAC       | SERVICE TYPE  | MODE     |
  -----------------------------------------------------------------------------------
  101      ,254   | 00:50:56:99:4c:01 | COMPATIBILITY | COPY     |
  102      ,253   | 00:50:56:99:4c:02 | NATIVE        | COPY     |
  103      ,252   | 00:50:56:99:4c:03 | COMPATIBILITY | REDIRECT |
  104      ,251   | 00:50:56:99:4c:04 | NATIVE        | REDIRECT |
  105      ,250   | 00:50:56:99:4c:05 | UNKNOWN       | UNKNOWN  |
  -----------------------------------------------------------------------------------
  log| tarnioctl <86> tarnfw: TarnSiIoctl:sendIoctl():N successfully sent cmd 14 with data \x0e\\n (esc)
  log| tarnioctl <86> tarnfw: TarnSiIoctl:sendIoctl():N successfully sent cmd 15 with data \x0f\\n (esc)
  $ quiet tarnioctl getsiproxytable
  proxy table has 4 entries
  --------------------------------------------------------------------------------------------
   SERVICE MAC       | SERVICE MODE   | SERVICE CAN DEC | LIVENESS SUPPORT  | COPY RED MODE  |
  --------------------------------------------------------------------------------------------
   00:50:56:99:4c:01 | NATIVE         | NO              | NOT REQUIRED      | COPY           |
   00:50:56:99:4c:02 | COMPATIBILITY  | YES             | NOT REQUIRED      | COPY           |
   00:50:56:99:4c:03 | NATIVE         | YES             | NOT REQUIRED      | REDIRECT       |
   00:50:56:99:4c:04 | COMPATIBILITY  | NO              | REQUIRED          | COPY           |
  --------------------------------------------------------------------------------------------

A host of like machines has no entries, and no instances.

  $ tarnlab --home few init --machines 2
  Made a lab with 2 filters at few.
  $ for command in getsisvctable getsinshtable getsiproxytable getinstances getprofiles
  > do
  >   tarnlab --home few run tarnioctl $command
  > done
  service table is empty
  nsh table is empty
  proxy table is empty
  Num instances = 0
  
  Num profiles = 0
  

Statistics of a service machine.

  $ lab tarnioctl getsisvmstats -p 67108875
  calling the SI Ioctl for stats ...
  Statistic name                |  Statistic value               
  ------------------------------------------------------------
  rx_from_svm                   |  1009                          
  rx_from_iochain               |  2018                          
  to_svm_liveness_pkts          |  3027                          
  from_svm_liveness_pkts        |  4036                          
  native_length_patch_fail      |  6054                          
  bad_eth_hdr                   |  7063                          
  quench                        |  8072                          
  get_nsh_fail                  |  9081                          
  ingress_inject_fail           |  10090                         
  copy_fail                     |  11099                         
  nsh_ttl_expired               |  12108                         
  zero_si                       |  13117                         
  unknown_next_hop              |  14126                         
  set_nsh_fail                  |  15135                         
  push_headroom_fail            |  16144                         
  insufficient_decap_bytes      |  17153                         
  insufficient_spf_bytes        |  18162                         
  insufficient_map_bytes        |  19171                         
  partial_copy                  |  20180                         
  log| tarnioctl <86> tarnfw: TarnSiIoctl:sendIoctl():N successfully sent cmd 11 with data \x0b\\n (esc)
  $ quiet tarnioctl getsisvmstats -p 67108876 | tail -1
  partial_copy                  |  0                             
  $ quiet tarnioctl getsisvmstats -p 67108877
  calling the SI Ioctl for stats ...
  Proxy stats not found, please check if port 67108877 is GVM port (no-eol)
  [1]
  $ brief run tarnioctl getsisvmstats
  port number not specified. Please use -p optionget svm stats command help.
  
  Usage: tarnioctl getsisvmstats <options>
      -p <string> : SVM port id, such as 67108875
      -h          : this help message
  [1]

A device that fails, and none.

  $ tarnlab fault errno EIO --device insertion --count 4
  $ lab tarnioctl getsisvctable
  Failed to get service table count, error -1
  log| tarnioctl <83> tarnfw: TarnSiIoctl:sendIoctl():N ioctl cmd 12 on device /dev/brq-tarn-ploy failed: Input/output error\n\n
  log| tarnioctl <86> tarnfw: TarnSiIoctl:sendIoctl():N successfully sent cmd 12 with data \x0c\\n (esc)
  [1]
  $ quiet tarnioctl getsinshtable
  Failed to get nsh table count, error -1
  [1]
  $ quiet tarnioctl getsiproxytable
  Failed to get proxy table count, error -1
  [1]
  $ quiet tarnioctl getsisvmstats -p 67108875
  calling the SI Ioctl for stats ...
  Failed to get the port stats error 4294967295 error code 5
  [1]
  $ for request in 13 15 17
  > do
  >   tarnlab fault errno EIO --only $request
  > done
  $ for command in getsisvctable getsinshtable getsiproxytable
  > do
  >   quiet tarnioctl $command
  > done
  Failed to get service table entries
  Failed to get nsh table entries
  Failed to get proxy table entries
  [1]
  $ tarnlab fault clear
  $ tarnlab fault absent insertion
  $ lab tarnioctl getsisvmstats -p 67108875
  calling the SI Ioctl for stats ...
  Failed to get the port stats error 4294967295 error code 2
  log| tarnioctl <84> tarnfw: TarnSiIoctl:SI_Ioctl():N SI_Ioctl: error 12: cannot open device /dev/brq-tarn-ploy: 2\n
  [1]
  $ lab tarnioctl getsiproxytable
  Failed to get proxy table count, error -1
  log| tarnioctl <84> tarnfw: TarnSiIoctl:SI_Ioctl():N SI_Ioctl: error 12: cannot open device /dev/brq-tarn-ploy: 2\n
  [1]

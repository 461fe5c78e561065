Export versions, what filters learn of names, ICMP errors and the copies for layer 7.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2

Export versions.

  $ run tarnioctl getexportversion -h
  Get skiffer export version for a filter.
  
  Usage: tarnioctl getexportversion <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -h          : this help message
  $ run tarnioctl setexportversion -h
  Set skiffer export version for a filter.
  
  Usage: tarnioctl setexportversion <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -e <number> : export version to set
      -h          : this help message
  $ run tarnioctl setexportversionall -h
  Set skiffer export version for all kelpco-sfw filters.
  
  Usage: tarnioctl setexportversionall <options>
      -a <string> : agent name
      -e <number> : export version to set
      -r          : read export versions only
      -x          : run on BRQV
      -v<number>  : enable verbose log
      -h          : this help message
  $ run tarnioctl getexportversion | tail -1
  err| ERROR: filter is missing
  $ run tarnioctl setexportversion -e 1 | tail -1
  err| ERROR: Filter name is not specified
  $ run tarnioctl setexportversion -f $filter | tail -1
  err| ERROR: Export version is not specified
  $ run tarnioctl setexportversionall | tail -1
  err| ERROR: Export version is not specified
  $ quiet tarnioctl getexportversion -f $filter
  Current export version: 1000
  $ quiet tarnioctl setexportversion -f $filter -e 1200 -v
  verbose level : 1
  weirgate agent: kelpco-sfw
  export version : 1200
  $ quiet tarnioctl getexportversion -f $filter
  Current export version: 1200
  $ quiet tarnioctl setexportversionall -r
  Filter nic-1002672-eth0-kelpco-sfw.2 - version 1200
  Filter nic-1002672-eth0-kelpco-inspect.4 - version 1100
  Filter nic-1002731-eth0-kelpco-sfw.2 - version 1000
  Filter nic-1003044-eth0-kelpco-sfw.2 - version 1100
  Filter nic-1003044-eth1-kelpco-sfw.2 - version 1000
  Filter nic-1003120-eth0-kelpco-sfw.2 - version 1100
  Filter nic-998214-eth0-kelpco-sfw.2 - version 1000
  Filter nic-998214-eth0-kelpco-spoof.guard.1 - version 1100
  $ quiet tarnioctl setexportversionall -e 1100 -a kelpco-sfw
  Filter nic-1002672-eth0-kelpco-sfw.2 - upgrading from 1200 to version 1100 - OK
  Filter nic-1002731-eth0-kelpco-sfw.2 - upgrading from 1000 to version 1100 - OK
  Filter nic-1003044-eth0-kelpco-sfw.2 - already set to version 1100
  Filter nic-1003044-eth1-kelpco-sfw.2 - upgrading from 1000 to version 1100 - OK
  Filter nic-1003120-eth0-kelpco-sfw.2 - already set to version 1100
  Filter nic-998214-eth0-kelpco-sfw.2 - upgrading from 1000 to version 1100 - OK
  $ quiet tarnioctl setexportversionall -e 1100 -x -v
  verbose level : 1
  weirgate agent: 
  Total number of kernel filters: 8
  kelpco-sfw : nic-1002672-eth0-kelpco-sfw.2
  kelpco-inspect : nic-1002672-eth0-kelpco-inspect.4
  kelpco-sfw : nic-1002731-eth0-kelpco-sfw.2
  kelpco-sfw : nic-1003044-eth0-kelpco-sfw.2
  kelpco-sfw : nic-1003044-eth1-kelpco-sfw.2
  kelpco-sfw : nic-1003120-eth0-kelpco-sfw.2
  kelpco-sfw : nic-998214-eth0-kelpco-sfw.2
  kelpco-spoof.guard : nic-998214-eth0-kelpco-spoof.guard.1
  Filter nic-1002672-eth0-kelpco-sfw.2 - already set to version 1100
  Filter nic-1002672-eth0-kelpco-inspect.4 - already set to version 1100
  Filter nic-1002731-eth0-kelpco-sfw.2 - already set to version 1100
  Filter nic-1003044-eth0-kelpco-sfw.2 - already set to version 1100
  Filter nic-1003044-eth1-kelpco-sfw.2 - already set to version 1100
  Filter nic-1003120-eth0-kelpco-sfw.2 - already set to version 1100
  Filter nic-998214-eth0-kelpco-sfw.2 - already set to version 1100
  Filter nic-998214-eth0-kelpco-spoof.guard.1 - already set to version 1100
  $ quiet tarnioctl setexportversionall -r -a nobody
  there are no filters for agent nobody
  $ quiet tarnioctl setexportversion -f nic-9-eth0-kelpco-sfw.9 -e 1
  err| ERROR: Failed to set export version for filter nic-9-eth0-kelpco-sfw.9: switch port not found
  [1]
  $ quiet tarnioctl getexportversion -f nic-9-eth0-kelpco-sfw.9
  err| ERROR: Failed to get skiffer export version for filter nic-9-eth0-kelpco-sfw.9
  [1]

A filter that fails is tried again in the place of those after it.

  $ tarnlab fault status 21 --only GetSkifferExportVer --count 1
  $ quiet tarnioctl setexportversionall -r -a kelpco-inspect
  Filter nic-1002672-eth0-kelpco-inspect.4 - failed to get version.  Skipping.
  [1]
  $ tarnlab fault status 7 --only SetSkifferExportVer --count 1
  $ quiet tarnioctl setexportversionall -e 1 -a kelpco-inspect
  Filter nic-1002672-eth0-kelpco-inspect.4 - upgrading from 1100 to version 1 - FAILED
  [1]

Names.

  $ run tarnioctl setdnsconfigprofile -h
  set dns config profile for a filter.
  
  Usage: tarnioctl setdnsconfigprofile <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -t <ttl>    : AUTO, MAX or time to live in seconds, Range (0-1024)
      -h          : this help message
  $ run tarnioctl getdnsconfigprofile -h
  get dns config profile for a filter.
  
  Usage: tarnioctl getdnsconfigprofile <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -t <ttl>    : AUTO, MAX or time to live in seconds, Range (0-1024)
      -h          : this help message
  $ run tarnioctl setdnsconfigprofile | tail -1
  err| ERROR: filter is missing
  $ for name in $filter nic-1002672-eth0-kelpco-inspect.4 nic-1002731-eth0-kelpco-sfw.2; do
  >   quiet tarnioctl getdnsconfigprofile -f $name
  > done
  Time To Live Value : auto
  Time To Live Value : Infinite
  Time To Live Value : 180 secs
  $ quiet tarnioctl setdnsconfigprofile -f $filter -t 864000
  $ quiet tarnioctl getdnsconfigprofile -f $filter
  Time To Live Value : 864000 secs
  $ quiet tarnioctl setdnsconfigprofile -f $filter -t 864001
  invalid ttl value 864001
  [1]
  $ quiet tarnioctl setdnsconfigprofile -f $filter --ttl
  invalid ttl value 
  [1]
  $ quiet tarnioctl setdnsconfigprofile -f $filter --ttl=max -v
  verbose level : 1
  weirgate agent: kelpco-sfw
  $ quiet tarnioctl getdnsconfigprofile -f $filter
  Time To Live Value : Infinite
  $ quiet tarnioctl setdnsconfigprofile -f $filter
  $ quiet tarnioctl getdnsconfigprofile -f $filter
  Time To Live Value : 0 secs
  $ quiet tarnioctl setdnsconfigprofile -f nic-9-eth0-kelpco-sfw.9
  err| ERROR: Failed to set dns config for nic-9-eth0-kelpco-sfw.9
  [1]
  $ quiet tarnioctl getdnsconfigprofile -f nic-9-eth0-kelpco-sfw.9
  err| ERROR: Failed to set dns config for nic-9-eth0-kelpco-sfw.9
  [1]

ICMP errors.

  $ run tarnioctl seticmperrpktdrop -Override -h
  Set ICMP err pkt drop enable setting.
  
  Usage: tarnioctl seticmperrpktdrop <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -e <0|1>    : set ICMP err pkt drop enable setting (0: disable, 1: enable)
      -h          : this help message
  $ run tarnioctl seticmperrpktdrop -Override -f $filter -e 2
  Set shared addrset setting.
  
  Usage: tarnioctl seticmperrpktdrop <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -m <string> : verbose log component name or id
      -s <0|1>    : set shared addrset setting (0: disable, 1: enable)
      -h          : this help message
  err| ERROR: bad enable option 2
  [1]
  $ run tarnioctl seticmperrpktdrop -Override -f $filter | tail -1
  err| ERROR: enable option is missing
  $ quiet tarnioctl seticmperrpktdrop -Override -f $filter -e 1 -v
  verbose level : 1
  weirgate agent: kelpco-sfw
  DEBUG: ICMP error drop enable was set to enable for filter nic-1002672-eth0-kelpco-sfw.2.
  $ quiet tarnioctl seticmperrpktdrop -Override -f nic-9-eth0-kelpco-sfw.9 -e 1
  err| ERROR: Failed to set filter icmp error drop enable setting
  [1]

The copies for layer 7.

  $ run tarnioctl setcopymode -h
  set L7 copy mode for a filter.
  
  Usage: tarnioctl setcopymode <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -e          : enable L7 copy mode
      -d          : disable L7 copy mode
      -h          : this help message
  $ run tarnioctl setcopymode -f $filter | tail -1
  err| ERROR: select either enable/disable
  $ quiet tarnioctl setcopymode -f $filter -d --enable
  $ quiet tarnioctl setcopymode -f nic-9-eth0-kelpco-sfw.9 -e
  err| ERROR: Failed to set L7 copy mode config for nic-9-eth0-kelpco-sfw.9
  [1]
  $ tarnlab show $filter
  filter nic-1002672-eth0-kelpco-sfw.2
    agent kelpco-sfw, vnic 0, slow path 1, vif 8d0c7a10-55f4-4c1e-9b02-0000632a0000
    flows: 244 active, 97 inactive, 96 dropped, 16 L2 pass, 16 L2 drop, 1 of other kinds
    ICMP errors are dropped
    packets are copied for layer 7
    export.version: 1100
    names.live: 0

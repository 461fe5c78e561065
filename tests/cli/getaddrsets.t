The address sets of a filter, and its containers.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ load() { tarnlab run tarnioctl tarnfwcli -Override -f "$@"; }

  $ run tarnioctl getaddrsets -h
  Get addrsets of a filter.
  
  Usage: tarnioctl getaddrsets <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -m <string> : verbose log component name or id
      -a <string> : addrset to get addresses
      -s <table|entry|all|clear> : retrieve addrset stats
      -o          : always use original filter
      -h          : this help message
  $ run tarnioctl getcontainers -h
  Get profiles of a filter.
  
  Usage: tarnioctl getcontainers <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -m <string> : verbose log component name or id
      -a <string> : profile to get addresses or attributes
      -s <table|entry|all|clear> : retrieve profile stats
      -o          : always use original filter
      -h          : this help message
  $ run tarnioctl getaddrset
  Get addrsets of a filter.
  
  Usage: tarnioctl getaddrset <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -m <string> : verbose log component name or id
      -a <string> : addrset to get addresses
      -s <table|entry|all|clear> : retrieve addrset stats
      -o          : always use original filter
      -h          : this help message
  err| ERROR: filter is missing.
  [1]
  $ run tarnioctl getaddrsets -f $filter -a 01234567890123456789012345678901234567
  err| ERROR: invalid addrset name 01234567890123456789012345678901234567
  [1]
  $ run tarnioctl getcontainers -f $filter -a 01234567890123456789012345678901234567
  err| ERROR: invalid container name 01234567890123456789012345678901234567
  [1]
  $ run tarnioctl getcontainers -f $filter -s all -i
  err| ERROR: only one of -s and -i can be specified.
  [1]

Without any.

  $ lab tarnioctl getaddrsets -f $filter
  No address sets.
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  $ quiet tarnioctl getcontainers -f $filter
  No containers.
  $ quiet tarnioctl getaddrsets -f $filter -a web
  No address sets.
  $ quiet tarnioctl getcontainers -f $filter -a web
  No containers sets.
  $ quiet tarnioctl getaddrsets -f nic-1-eth0-kelpco-sfw.9
  err| ERROR: failed to get addrset count: switch port not found
  [1]

Sets of addresses.

  $ load $filter -c 'create addrset "web" { 10.0.0.1, 10.0.1.0/24, 2001:db8::1 }; create addrset "none";'
  $ load $filter -c 'create addrset "macs" { 00:50:56:01:02:03 };'
  $ quiet tarnioctl getaddrsets -f $filter
  addrset macs {
  mac 00:50:56:01:02:03,
  }
  addrset none {
  }
  addrset web {
  ip 10.0.0.1,
  ip 10.0.1.0/24,
  ip 2001:db8::1,
  }
  $ quiet tarnioctl getaddrset -f $filter -a web
  addrset web {
  ip 10.0.0.1,
  ip 10.0.1.0/24,
  ip 2001:db8::1,
  }
  $ quiet tarnioctl getaddrsets -f $filter -a nowhere
  No address sets.
  $ quiet tarnioctl getaddrsets -f $filter -i -a web
  addrset web {
  address count    : 3
  generation number: 1
  realization time : ????-??-??T??:??:?? (glob)
  }
  $ quiet tarnioctl getaddrsets -f $filter -s clear -a none
  addrset none {
  }

An address set is no container.

  $ quiet tarnioctl getcontainers -f $filter
  No containers.
  $ quiet tarnioctl getcontainers -f $filter -a web
  no container found
  $ quiet tarnioctl getcontainers -f $filter -a nowhere
  No containers sets.

Statistics.

  $ quiet tarnioctl getaddrsets -f $filter -s table -a none
  none:
      in+pass   :                5                13
      out+pass  :                9                17
      in+block  :                3                11
      out+block :                7                15
      match     :              101
      nomatch   :               53
      uptime    : +\d+ (re)
      anchor_ref: 0
  
  addrset none {
  }
  $ quiet tarnioctl getaddrsets -f $filter -s entry -s clear -a web
                              addr :    pkt[in][pass]    pkt[in][drop]   pkt[out][pass]   pkt[out][drop] tcp curr  tcp hwm
                                      bytes[in][pass]  bytes[in][drop] bytes[out][pass] bytes[out][drop] uptime
  addrset web {
                       ip 10.0.0.1 :                5                3                9                7        1        2
                                                   13               11               17               15 \d+ (re)
                    ip 10.0.1.0/24 :               10                6               18               14        2        4
                                                   26               22               34               30 \d+ (re)
                    ip 2001:db8::1 :               15                9               27               21        3        6
                                                   39               33               51               45 \d+ (re)
  }
  $ quiet tarnioctl getaddrsets -f $filter -s entry -a web
                              addr :    pkt[in][pass]    pkt[in][drop]   pkt[out][pass]   pkt[out][drop] tcp curr  tcp hwm
                                      bytes[in][pass]  bytes[in][drop] bytes[out][pass] bytes[out][drop] uptime
  addrset web {
                       ip 10.0.0.1 :                0                0                0                0        0        0
                                                    0                0                0                0 \d+ (re)
                    ip 10.0.1.0/24 :                0                0                0                0        0        0
                                                    0                0                0                0 \d+ (re)
                    ip 2001:db8::1 :                0                0                0                0        0        0
                                                    0                0                0                0 \d+ (re)
  }

Sets that the filters of an agent share.

  $ load $filter -c 'enable shared addrset;'
  $ quiet tarnioctl getaddrsets -f $filter -a web
  addrset is shared for this filter
  global addrset
  No address sets.
  
  local addrset
  addrset web {
  ip 10.0.0.1,
  ip 10.0.1.0/24,
  ip 2001:db8::1,
  }
  $ quiet tarnioctl getaddrsets -f $filter -a web -o
  addrset web {
  ip 10.0.0.1,
  ip 10.0.1.0/24,
  ip 2001:db8::1,
  }
  $ load shared-addrset-filter-kelpco-sfw -c 'create addrset "common" { 10.9.9.9 }; create addrset "web";'
  $ quiet tarnioctl getaddrsets -f $filter
  addrset is shared for this filter
  global addrset
  addrset common {
  ip 10.9.9.9,
  }
  addrset web {
  }
  
  local addrset
  addrset macs {
  mac 00:50:56:01:02:03,
  }
  addrset none {
  }
  addrset web {
  ip 10.0.0.1,
  ip 10.0.1.0/24,
  ip 2001:db8::1,
  }
  $ quiet tarnioctl getaddrsets -f $filter -a common
  addrset is shared for this filter
  global addrset
  addrset common {
  ip 10.9.9.9,
  }
  
  local addrset
  No address sets.
  $ quiet tarnioctl getaddrsets -f $filter -a common -s table
  addrset is shared for this filter
  global addrset
  common:
      in+pass   :               10                26
      out+pass  :               18                34
      in+block  :                6                22
      out+block :               14                30
      match     :              202
      nomatch   :              106
      uptime    : +\d+ (re)
      anchor_ref: 0
  
  addrset common {
  ip 10.9.9.9,
  }
  
  local addrset
  No address sets.
  $ quiet tarnioctl getaddrsets -f $filter -a macs -s table
  addrset is shared for this filter
  global addrset
  No address sets.
  
  local addrset
  macs:
      in+pass   :               10                26
      out+pass  :               18                34
      in+block  :                6                22
      out+block :               14                30
      match     :              202
      nomatch   :              106
      uptime    : +\d+ (re)
      anchor_ref: 0
  
  addrset macs {
  mac 00:50:56:01:02:03,
  }
  $ quiet tarnioctl getaddrsets -f 8d0c7a10-55f4-4c1e-9b02-0000632a0000 -a none
  addrset is shared for this filter
  global addrset
  No address sets.
  
  local addrset
  addrset none {
  }
  $ quiet tarnioctl getcontainers -f $filter
  containers are shared for this filter
  global containers
  No containers.
  
  local containers
  No containers.

What fails.

  $ tarnlab fault status 7 --only getaddrsetcount --count 1
  $ quiet tarnioctl getaddrsets -f $filter -o
  err| ERROR: failed to get addrset count: not supported
  [1]
  $ tarnlab fault status 7 --only getaddrsetlist --count 1
  $ quiet tarnioctl getcontainers -f $filter -o
  err| ERROR: failed to get 3 address sets: not supported
  [1]
  $ tarnlab fault status 7 --only getaddrsettypeandsize --count 1
  $ quiet tarnioctl getaddrsets -f $filter -o -a web
  no addrset found
  err| ERROR: failed to get size of addrset web: not supported
  err| ERROR: failed to find type and size of web

Statements about settings, connections, domains and users, in the lab.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ cli() { quiet tarnioctl tarnfwcli -Override -f $filter -c "$1"; }

What a statement sets another one reads back.

  $ cli 'set timeout dfw.tcp.opening to 31; describe timeout dfw.tcp.opening;'
  Connection Timeouts:
     dfw.tcp.opening       : 31
  $ cli 'set timeout to "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22"; describe timeout;'
  Connection Timeouts:
     dfw.tcp.first_packet  : 1
     dfw.tcp.opening       : 2
     dfw.tcp.established   : 3
     dfw.tcp.closing       : 4
     dfw.tcp.fin_wait      : 5
     dfw.tcp.closed        : 6
     dfw.udp.first_packet  : 7
     dfw.udp.single        : 8
     dfw.udp.multiple      : 9
     dfw.icmp.first_packet : 10
     dfw.icmp.error_reply  : 11
     dfw.other.first_packet: 12
     dfw.other.single      : 13
     dfw.other.multiple    : 14
     dfw.ip.frag           : 15
     dfw.interval          : 16
     dfw.adaptive_start    : 17
     dfw.adaptive_end      : 18
     dfw.src_node          : 19
     dfw.ts_diff           : 20
     dfw.invalid_state     : 21
     dfw.invalid_l7        : 22
  $ cli 'delete spoofguard; describe spoofguard;'
  err| ERROR: Failed to eval config `delete spoofguard; describe spoofguard;': no address
  [1]
  $ cli 'create spoofguard with ip { 10.0.0.1, 10.0.0.2 } and mac 00:11:22:33:44:55; describe spoofguard;'
  enabled : ip 10.0.0.1, ip 10.0.0.2
  MAC = 00:11:22:33:44:55
  $ cli 'describe stat of spoofguard;'
  l2 drop count     : 720
  l3 drop count     : 1200
  invalid arp count : 240
  unknown arp count : 480
  bad MAC arp count : 1680
  bad IP arp count  : 2640
  good arp count    : 24240
  $ cli 'create addrset "guarded" 10.0.0.9; create spoofguard with addrset "guarded" and mac 00:11:22:33:44:55; describe spoofguard;'
  enabled : addrset guarded
  MAC = 00:11:22:33:44:55
  $ cli 'delete spoofguard with mac 00:11:22:33:44:55;'
  $ cli 'describe stat of kif; clear stat of kif; describe stat of kif;' | grep -e PACKETS -e TCP
  PACKETS                       IN                OUT
  IPv4 TCP                   19200              18960
  IPv6 TCP                   14880              14640
  PACKETS                       IN                OUT
  $ cli 'create attrprofile "web" with { [ APP_ID : APP_HTTP, APP_HTTPS ], [ TLS_VERSION : 771 ] }; delete attrprofile "web"; delete attrprofile "web";'
  err| ERROR: Failed to eval config `create attrprofile "web" with { [ APP_ID : APP_HTTP, APP_HTTPS ], [ TLS_VERSION : 771 ] }; delete attrprofile "web"; delete attrprofile "web";': no addrset
  [1]
  $ cli 'set exportver 1000; describe exportver;'
  Current export version: 1000

Strict TCP and the levels of the log have no statement that prints them.

  $ cli 'enable tcp strict; describe tcp strict; debug dp 3; debug "CP" 4; debug nonesuch 5;'
  $ tarnlab log -s | tail -n 4 | cut -d : -f 4-
   ConfigTCPStrict(strict 1) = ok
   GetTCPStrict() = ok {strict 1}
   EnableVerbose(component 1, level 3) = ok
   EnableVerbose(component 2, level 4) = ok

Connections, from a flow on. The kernel decides what becomes of those that are set.

  $ cli 'describe connection count;'
  connection count : 244
  $ cli 'describe connection stat;' | sed -n 1,3p
  2026-01-05T08:00:00Z 0x5c1e000100001001 af 2  ethertype 0x0800 prototcp   10.31.0.1:49152 -> 10.20.1.40:443  4d80 2b3e 1f 1b
  2026-01-05T08:00:09Z 0x5c1e00010000100a af 2  ethertype 0x0800 prototcp   10.20.1.40:49155 -> 10.31.0.4:443  13600 acf8 7c 6c
  2026-01-05T08:00:18Z 0x5c1e000100001013 af 2  ethertype 0x0800 protoudp   10.31.0.7:49158 -> 10.20.1.40:53  21e80 12eb2 d9 bd
  $ cli 'describe connection stat from 6637742905085661203;' | sed -n 1p
  2026-01-05T08:00:18Z 0x5c1e000100001013 af 2  ethertype 0x0800 protoudp   10.31.0.7:49158 -> 10.20.1.40:53  21e80 12eb2 d9 bd
  $ cli 'describe connection stat from -1;'
  $ cli 'set all connection; set connection;'
  $ cli 'set connection with { from 10.0.0.1:1024 to any:80, from any port 1 to 10.0.0.1 port 2 };'
  $ tarnlab log -s | tail -n 3 | cut -d : -f 4-
   SetAllConnection() = ok {count 244}
   SetConnectionByFilter() = ok {count 244}
   SetConnectionByList(connections 2) = ok {result 0}
  $ cli 'clear all connection; describe connection count;'
  Cleared connection count : 244
  connection count : 0

Users, domains and attributes of connections.

  $ cli 'set uid2sidmap "S-1-5-21-1-2-3-1001" { "S-1-5-32-544", "S-1-5-32-545" };'
  $ cli 'add domain2ip "www.example.com" uuid 502e1f3a-c21a-632a-4ae1-00505699b626 with { { 192.0.2.1, 192.0.2.2 } };'
  $ cli 'set connattr 10.0.0.1 1024 10.0.0.2 80 tcp dir_in with { [ APP_ID : APP_HTTP ] };'
  $ cli 'set connattr 6637742905085661185 with { [ TLS_VERSION : 771 ] };'
  $ tarnlab log -s | tail -n 4 | cut -d : -f 4-
   SetUid2SidMapping(operation 0, sids 2, uid S-1-5-21-1-2-3-1001) = ok
   AddDomain2IPMapping(addresses 2, bytes 340) = ok
   SetConnAttr(operation 0, connection 0a0000010000000000000000000000000a0000020000000000000000000000000400005002000006, selector 1, id 0, attributes 1, bytes 38) = ok {result 0}
   SetConnAttr(operation 0, selector 0, id 6637742905085661185, attributes 1, bytes 38) = ok {result 0}

Nothing is sent when a value is wrong.

  $ cli 'destroy all ruleset; set timeout dfw.tcp.opening to 4294967296;'
  err| ERROR: Could not load config `destroy all ruleset; set timeout dfw.tcp.opening to 4294967296;': integer too large
  [1]
  $ cli 'set exportver -1;'
  err| ERROR: Could not load config `set exportver -1;': integer too large
  [1]
  $ cli 'enable udp strict;'
  err| ERROR: Could not load config `enable udp strict;': parsing error
  [1]
  $ cli 'set connection with from ::1 port 1 to any port 2;'
  err| ERROR: Could not load config `set connection with from ::1 port 1 to any port 2;': invalid network address
  [1]
  $ cli 'set connection with from any port 65536 to any port 2;'
  err| ERROR: Could not load config `set connection with from any port 65536 to any port 2;': invalid tcp/udp port
  [1]
  $ cli 'set uid2sidmap "S-2-5" { "S-1-5" };'
  err| ERROR: Could not load config `set uid2sidmap "S-2-5" { "S-1-5" };': parsing error
  [1]
  $ cli 'add domain2ip uuid nonesuch with { 10.0.0.1 };'
  err| ERROR: Could not load config `add domain2ip uuid nonesuch with { 10.0.0.1 };': parsing error
  [1]
  $ cli 'create attrprofile p with { [ nonesuch : a ] };'
  err| ERROR: Could not load config `create attrprofile p with { [ nonesuch : a ] };': parsing error
  [1]

Silence ends a load that names no connection.

  $ cli 'set connattr with { [ TLS_VERSION : 771 ] };'
  err| ERROR: Failed to eval config `set connattr with { [ TLS_VERSION : 771 ] };': invalid argument
  [1]
  $ cli 'set connattr 10.0.0.1 1 ::1 2 tcp dir_in with { [ TLS_VERSION : 771 ] };'
  err| ERROR: Failed to eval config `set connattr 10.0.0.1 1 ::1 2 tcp dir_in with { [ TLS_VERSION : 771 ] };': invalid argument
  [1]

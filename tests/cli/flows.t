Flows and connections of a filter. Times are those of a host in UTC.

  $ . "$TESTDIR/setup"
  $ tarnlab init --flows 30 > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ export TZ=UTC

  $ run tarnioctl getflows -h
  Get flow records of a filter.
  
  Usage: tarnioctl getflows <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -t <number> : refresh interval in seconds
      -T <a|i|d>  : type of flows only: active, inactive or drop
      -F <number> : flush flows in kernel after fetching, must be 0 or 1
      -n          : display flow count numbers only
      -R          : reset RTT average
      -a          : don't include attributes
      -v          : display start and end times
      -h          : this help message
  $ run tarnioctl getconnections -h
  Get active connections for a filter.
  
  usage: tarnioctl getconnections <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -t <number> : refresh interval in seconds
      -h          : this help message
  $ run tarnioctl getconncount -h
  Get active connection count for a filter.
  
  usage: tarnioctl getconncount <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -h          : this help message
  $ run tarnioctl clrconnection -Override -h
  Clear all active connections of a filter.
  
  Usage: tarnioctl clrconnection <options>
      -f <string> : filter name
      -v<number>  : enable verbose log
      -h          : this help message
  $ brief run tarnioctl getflows -n
  (usage)
  err| ERROR: filter is missing.
  [1]
  $ run tarnioctl getflows -f $filter -T x
  err| ERROR: Invalid flow type: x
  [1]
  $ run tarnioctl getflows -f $filter -F 2
  err| ERROR: Invalid flush value 2, expected 0 or 1
  [1]
  $ run tarnioctl getflows -f $filter -t soon
  err| ERROR: Invalid refresh interval soon
  [1]

Numbers, then the flows: with attributes, without them, of one kind.

  $ quiet tarnioctl getflows -f $filter -n
  Counts retrieved from kernel:
        Active: numRecords = 10, totalAttr = 15, attrLen = 708, len = 3218
        Inactive: numRecords = 10, totalAttr = 13, attrLen = 293, len = 2803
        Drop: numRecords = 10, totalAttr = 15, attrLen = 451, len = 2961
  $ quiet tarnioctl getflows -f $filter -F 1
  Count retrieved from kernel active=10, inactive=10, drop=10
  5c1e000100001001 Active tcp 0800 IN 4095 24 44 (est) 10.31.0.1:Unknown(49152) -> 10.20.1.40:https(443) 536 EST:EST  rtt 150000 retrans 60/80 19840 11070 31 27
  5c1e00010000100a Active tcp 0800 OUT 4095 21 42 (S) 10.20.1.40:Unknown(49155) -> 10.31.0.4:https(443) [198.18.0.4:Unknown(1083)] 539 LISTEN:SYNSENT  rtt 150003 retrans 63/83 79360 44280 124 108 attr: UNKNOWN,TLS_NULL_WITH_NULL_NULL,S-1-5-21-1000-2000-3000-4000
  5c1e000100001013 Active udp 0800 N/A 4095 21 42 (est) 10.31.0.7:Unknown(49158) -> 10.20.1.40:domain(53)  138880 77490 217 189 attr: (1623303d-4a57-6471-7e8b-98a5b2bfccd9),TLS_ECDH_ECDSA_WITH_NULL_SHA
  5c1e00010000101c Active udp 0800 OUT 4095 22 42 (S,est) 10.20.1.40:Unknown(49161) -> 10.31.0.10:domain(53) [198.18.0.10:Unknown(1089)]  198400 110700 310 270 attr: S-1-5-21-1000-2000-3000-4000-5000-6000-7000-8000-9000-10000-11000-12000-13000-14000
  5c1e000100001025 Active icmp 0800 IN 4095 21 40 (blocked) 10.31.0.13 -> 10.20.1.40 8 0 257920 143910 403 351
  5c1e00010000102e Active icmp 0800 OUT 4095 22 42 (S,est) 10.20.1.40 -> 10.31.0.16 [198.18.0.16] 0 1 317440 177120 496 432 attr: UNK(7/2/18),UNK(8/4/82),UNK(9/4/82)
  5c1e000100001037 Active ipv6-icmp 86dd IN 4095 21 42 (est) 2001:db8:31::13 -> 2001:db8:14::28 1 4 376960 210330 589 513 attr: APP_ACAS,/shop/items/1(1724313e-4b58-6572-7f8c-99a6b3c0cdda)
  5c1e000100001040 Active ipv6-icmp 86dd OUT 4095 22 42 (S,est) 2001:db8:14::28 -> 2001:db8:31::16 [2001:db8:64::16] 135 2 436480 243540 682 594 attr: S-1-5-21-1001-2001-3001-4001
  5c1e000100001049 Active tcp 86dd IN 4095 23 42  2001:db8:31::19:Unknown(49176) -> 2001:db8:14::28:ssh(22) 560 SYNRECV:SYNSENT  rtt 150024 retrans 67/85 496000 276750 775 675
  5c1e000100001052 Active tcp 86dd N/A 4095 26 45 (blocked,S,est) 2001:db8:31::1c:Unknown(49179) -> 2001:db8:14::28:ssh(22) [2001:db8:64::1c:Unknown(1107)] 563 FINWAIT1:CLOSEWAIT  rtt 150027 retrans 70/88 555520 309960 868 756 attr: profile-1(1724313e-4b58-6572-7f8c-99a6b3c0cdda),S-1-5,APP_INVALID
  5c1e000100001004 Inactive tcp 0800 OUT 4095 29 50 (est) 10.20.1.40:Unknown(49153) -> 10.31.0.2:https(443) 537 FINWAIT2:TIMEWAIT  rtt 150001 retrans 61/81 39680 22140 62 54 attr: APP_NIMAIL
  5c1e00010000100d Inactive tcp 0800 IN 4095 20 50  10.31.0.5:Unknown(49156) -> 10.20.1.40:https(443) [198.18.0.5:Unknown(1084)] 540 CLOSED:TIMEWAIT  rtt 150004 retrans 64/84 99200 55350 155 135
  5c1e000100001016 Inactive udp 0800 OUT 4095 22 43 (est) 10.20.1.40:Unknown(49159) -> 10.31.0.8:domain(53)  158720 88560 248 216 attr: CIFS_SMB_INVALID,11400714819323198485,UNKNOWN
  5c1e00010000101f Inactive udp 0800 IN 4095 21 43 (blocked,est) 10.31.0.11:Unknown(49162) -> 10.20.1.40:domain(53) [198.18.0.11:Unknown(1090)]  218240 121770 341 297 attr: -40000,profile-0(1623303d-4a57-6471-7e8b-98a5b2bfccd9)
  5c1e000100001028 Inactive icmp 0800 N/A 4095 22 43 (blocked,est) 10.31.0.14 -> 10.20.1.40 8 0 277760 154980 434 378 attr: UNK(1/2/18)
  5c1e000100001031 Inactive icmp 0800 IN 4095 21 40  10.31.0.17 -> 10.20.1.40 [198.18.0.17] 0 1 337280 188190 527 459
  5c1e00010000103a Inactive ipv6-icmp 86dd OUT 4095 22 43 (est) 2001:db8:14::28 -> 2001:db8:31::14 1 4 396800 221400 620 540 attr: db1.kelpco.example(1724313e-4b58-6572-7f8c-99a6b3c0cdda),SSL_V3,TLS_RSA_WITH_NULL_MD5
  5c1e000100001043 Inactive ipv6-icmp 86dd IN 4095 21 43 (est) 2001:db8:31::17 -> 2001:db8:14::28 [2001:db8:64::17] 135 2 456320 254610 713 621 attr: HEAD,(1724313e-4b58-6572-7f8c-99a6b3c0cdda)
  5c1e00010000104c Inactive tcp 86dd OUT 4095 30 49 (blocked,est) 2001:db8:14::28:Unknown(49177) -> 2001:db8:31::1a:ssh(22) 561 TIMEWAIT:FINWAIT2  rtt 150025 retrans 68/86 515840 287820 806 702 attr: LS
  5c1e000100001055 Inactive tcp 86dd IN 4095 30 40 (blocked) 2001:db8:31::1d:Unknown(49180) -> 2001:db8:14::28:ssh(22) [2001:db8:64::1d:Unknown(1108)] 564 TIMEWAIT:CLOSED  rtt 150028 retrans 71/89 575360 321030 899 783
  5c1e000100001007 Drop tcp 0800 IN 4095   10.31.0.3:Unknown(49154) -> 10.20.1.40:https(443) 538 LISTEN:CLOSED  rtt 150002 retrans 62/82 0 0 0 0 attr: /shop/items/0(1623303d-4a57-6471-7e8b-98a5b2bfccd9),db0.kelpco.example(1623303d-4a57-6471-7e8b-98a5b2bfccd9)
  5c1e000100001010 Drop tcp 0800 OUT 4095   10.20.1.40:Unknown(49157) -> 10.31.0.6:https(443) [198.18.0.6:Unknown(1085)] 541 SYNSENT:CLOSED  rtt 150005 retrans 65/85 119040 66420 186 162 attr: GET
  5c1e000100001019 Drop udp 0800 IN 4095   10.31.0.9:Unknown(49160) -> 10.20.1.40:domain(53)  178560 99630 279 243
  5c1e000100001022 Drop udp 0800 OUT 4095   10.20.1.40:Unknown(49163) -> 10.31.0.12:domain(53) [198.18.0.12:Unknown(1091)]  238080 132840 372 324 attr: S-1-5,APP_INVALID,UNK(0/2/18)
  5c1e00010000102b Drop icmp 0800 IN 4095   10.31.0.15 -> 10.20.1.40 8 0 297600 166050 465 405 attr: UNK(2/2/18),UNK(5/2/18)
  5c1e000100001034 Drop icmp 0800 OUT 4095   10.20.1.40 -> 10.31.0.18 [198.18.0.18] 0 1 357120 199260 558 486 attr: UNK(6/7/18)
  5c1e00010000103d Drop ipv6-icmp 86dd N/A 4095   2001:db8:31::15 -> 2001:db8:14::28 1 4 416640 232470 651 567
  5c1e000100001046 Drop ipv6-icmp 86dd OUT 4095   2001:db8:14::28 -> 2001:db8:31::18 [2001:db8:64::18] 135 2 476160 265680 744 648 attr: TLS_ECDH_ECDSA_WITH_RC4_128_SHA,CIFS_SMB_V1,11400714819323198486
  5c1e00010000104f Drop tcp 86dd IN 4095   2001:db8:31::1b:Unknown(49178) -> 2001:db8:14::28:ssh(22) 562 CLOSED:SYNSENT  rtt 150026 retrans 69/87 535680 298890 837 729 attr: S-1-5-21-1001-2001-3001-4001-5001-6001-7001-8001-9001-10001-11001-12001-13001-14001,-39999
  5c1e000100001058 Drop tcp 86dd OUT 4095   2001:db8:14::28:Unknown(49181) -> 2001:db8:31::1e:ssh(22) [2001:db8:64::1e:Unknown(1109)] 565 LISTEN:CLOSED  rtt 150029 retrans 72/90 595200 332100 930 810 attr: UNK(0/2/18)
  $ quiet tarnioctl getflows -f $filter -F 1 -a -T drop
  Count retrieved from kernel active=0, inactive=0, drop=10
  5c1e000100001007 Drop tcp 0800 IN 4095   10.31.0.3:Unknown(49154) -> 10.20.1.40:https(443) 538 LISTEN:CLOSED  rtt 150002 retrans 62/82 0 0 0 0
  5c1e000100001010 Drop tcp 0800 OUT 4095   10.20.1.40:Unknown(49157) -> 10.31.0.6:https(443) [198.18.0.6:Unknown(1085)] 541 SYNSENT:CLOSED  rtt 150005 retrans 65/85 119040 66420 186 162
  5c1e000100001019 Drop udp 0800 IN 4095   10.31.0.9:Unknown(49160) -> 10.20.1.40:domain(53)  178560 99630 279 243
  5c1e000100001022 Drop udp 0800 OUT 4095   10.20.1.40:Unknown(49163) -> 10.31.0.12:domain(53) [198.18.0.12:Unknown(1091)]  238080 132840 372 324
  5c1e00010000102b Drop icmp 0800 IN 4095   10.31.0.15 -> 10.20.1.40 8 0 297600 166050 465 405
  5c1e000100001034 Drop icmp 0800 OUT 4095   10.20.1.40 -> 10.31.0.18 [198.18.0.18] 0 1 357120 199260 558 486
  5c1e00010000103d Drop ipv6-icmp 86dd N/A 4095   2001:db8:31::15 -> 2001:db8:14::28 1 4 416640 232470 651 567
  5c1e000100001046 Drop ipv6-icmp 86dd OUT 4095   2001:db8:14::28 -> 2001:db8:31::18 [2001:db8:64::18] 135 2 476160 265680 744 648
  5c1e00010000104f Drop tcp 86dd IN 4095   2001:db8:31::1b:Unknown(49178) -> 2001:db8:14::28:ssh(22) 562 CLOSED:SYNSENT  rtt 150026 retrans 69/87 535680 298890 837 729
  5c1e000100001058 Drop tcp 86dd OUT 4095   2001:db8:14::28:Unknown(49181) -> 2001:db8:31::1e:ssh(22) [2001:db8:64::1e:Unknown(1109)] 565 LISTEN:CLOSED  rtt 150029 retrans 72/90 595200 332100 930 810
  $ quiet tarnioctl getflows -f $filter -F 1 -v -T inactive
  Count retrieved from kernel active=0, inactive=10, drop=0
  5c1e000100001004 Inactive tcp 0800 OUT 4095 29 50 (est) 10.20.1.40:Unknown(49153) -> 10.31.0.2:https(443) 537 FINWAIT2:TIMEWAIT  rtt 150001 retrans 61/81 39680 22140 62 54 attr: APP_NIMAIL Start: Mon, 05 Jan 2026 08:00:03 +0000, End: Mon, 05 Jan 2026 08:00:34 +0000
  5c1e00010000100d Inactive tcp 0800 IN 4095 20 50  10.31.0.5:Unknown(49156) -> 10.20.1.40:https(443) [198.18.0.5:Unknown(1084)] 540 CLOSED:TIMEWAIT  rtt 150004 retrans 64/84 99200 55350 155 135 Start: Mon, 05 Jan 2026 08:00:12 +0000, End: Mon, 05 Jan 2026 08:00:46 +0000
  5c1e000100001016 Inactive udp 0800 OUT 4095 22 43 (est) 10.20.1.40:Unknown(49159) -> 10.31.0.8:domain(53)  158720 88560 248 216 attr: CIFS_SMB_INVALID,11400714819323198485,UNKNOWN Start: Mon, 05 Jan 2026 08:00:21 +0000, End: Mon, 05 Jan 2026 08:00:58 +0000
  5c1e00010000101f Inactive udp 0800 IN 4095 21 43 (blocked,est) 10.31.0.11:Unknown(49162) -> 10.20.1.40:domain(53) [198.18.0.11:Unknown(1090)]  218240 121770 341 297 attr: -40000,profile-0(1623303d-4a57-6471-7e8b-98a5b2bfccd9) Start: Mon, 05 Jan 2026 08:00:30 +0000, End: Mon, 05 Jan 2026 08:01:10 +0000
  5c1e000100001028 Inactive icmp 0800 N/A 4095 22 43 (blocked,est) 10.31.0.14 -> 10.20.1.40 8 0 277760 154980 434 378 attr: UNK(1/2/18) Start: Mon, 05 Jan 2026 08:00:39 +0000, End: Mon, 05 Jan 2026 08:01:22 +0000
  5c1e000100001031 Inactive icmp 0800 IN 4095 21 40  10.31.0.17 -> 10.20.1.40 [198.18.0.17] 0 1 337280 188190 527 459 Start: Mon, 05 Jan 2026 08:00:48 +0000, End: Mon, 05 Jan 2026 08:01:34 +0000
  5c1e00010000103a Inactive ipv6-icmp 86dd OUT 4095 22 43 (est) 2001:db8:14::28 -> 2001:db8:31::14 1 4 396800 221400 620 540 attr: db1.kelpco.example(1724313e-4b58-6572-7f8c-99a6b3c0cdda),SSL_V3,TLS_RSA_WITH_NULL_MD5 Start: Mon, 05 Jan 2026 08:00:57 +0000, End: Mon, 05 Jan 2026 08:01:46 +0000
  5c1e000100001043 Inactive ipv6-icmp 86dd IN 4095 21 43 (est) 2001:db8:31::17 -> 2001:db8:14::28 [2001:db8:64::17] 135 2 456320 254610 713 621 attr: HEAD,(1724313e-4b58-6572-7f8c-99a6b3c0cdda) Start: Mon, 05 Jan 2026 08:01:06 +0000, End: Mon, 05 Jan 2026 08:01:58 +0000
  5c1e00010000104c Inactive tcp 86dd OUT 4095 30 49 (blocked,est) 2001:db8:14::28:Unknown(49177) -> 2001:db8:31::1a:ssh(22) 561 TIMEWAIT:FINWAIT2  rtt 150025 retrans 68/86 515840 287820 806 702 attr: LS Start: Mon, 05 Jan 2026 08:01:15 +0000, End: Mon, 05 Jan 2026 08:02:10 +0000
  5c1e000100001055 Inactive tcp 86dd IN 4095 30 40 (blocked) 2001:db8:31::1d:Unknown(49180) -> 2001:db8:14::28:ssh(22) [2001:db8:64::1d:Unknown(1108)] 564 TIMEWAIT:CLOSED  rtt 150028 retrans 71/89 575360 321030 899 783 Start: Mon, 05 Jan 2026 08:01:24 +0000, End: Mon, 05 Jan 2026 08:02:22 +0000

What a connection was given stands after what its flow has learned. The id of the first flow is
6637742905085661185 in decimal digits.

  $ for connection in 6637742905085661185 '10.20.1.40 49155 10.31.0.4 443 tcp dir_out'; do
  >   quiet tarnioctl tarnfwcli -Override -f $filter \
  >     -c "set connattr of filter \"$filter\" $connection with
  >         { [ TLS_VERSION : 771 ], [ APP_ID : APP_HTTP, APP_DNS ] };"
  > done
  $ quiet tarnioctl getflows -f $filter -F 1 -T active | sed -n -E '2,3s/ .* attr/ ... attr/p'
  5c1e000100001001 ... attr: APP_DNS,APP_HTTP,TLS_V12
  5c1e00010000100a ... attr: UNKNOWN,TLS_NULL_WITH_NULL_NULL,S-1-5-21-1000-2000-3000-4000,APP_DNS,APP_HTTP,TLS_V12
  $ quiet tarnioctl getflows -f $filter -F 1 -T active -a | grep -c attr
  0
  [1]
  $ quiet tarnioctl getflows -f $filter -n
  Counts retrieved from kernel:
        Active: numRecords = 10, totalAttr = 21, attrLen = 816, len = 3326
        Inactive: numRecords = 10, totalAttr = 13, attrLen = 293, len = 2803
        Drop: numRecords = 10, totalAttr = 15, attrLen = 451, len = 2961

What was read is flushed, unless -F 1 says otherwise: active flows stay.

  $ quiet tarnioctl getflows -f $filter -T drop > all
  $ quiet tarnioctl getflows -f $filter -n
  Counts retrieved from kernel:
        Active: numRecords = 10, totalAttr = 21, attrLen = 816, len = 3326
        Inactive: numRecords = 10, totalAttr = 13, attrLen = 293, len = 2803
        Drop: numRecords = 0, totalAttr = 0, attrLen = 0, len = 0

Connections are the active flows.

  $ quiet tarnioctl getconncount -f $filter
  Active connection count : 10
  $ quiet tarnioctl getconncount -v -f $filter
  Setting verbose level : 1Active connection count : 10
  $ quiet tarnioctl getconnections -f $filter
  5c1e000100001001 Active tcp 0800 IN 4095 24 44 (est) 10.31.0.1:Unknown(49152) -> 10.20.1.40:https(443) 536 EST:EST  rtt 150000 retrans 60/80 19840 11070 31 27
  5c1e00010000100a Active tcp 0800 OUT 4095 21 42 (S) 10.20.1.40:Unknown(49155) -> 10.31.0.4:https(443) [198.18.0.4:Unknown(1083)] 539 LISTEN:SYNSENT  rtt 150003 retrans 63/83 79360 44280 124 108
  5c1e000100001013 Active udp 0800 N/A 4095 21 42 (est) 10.31.0.7:Unknown(49158) -> 10.20.1.40:domain(53)  138880 77490 217 189
  5c1e00010000101c Active udp 0800 OUT 4095 22 42 (S,est) 10.20.1.40:Unknown(49161) -> 10.31.0.10:domain(53) [198.18.0.10:Unknown(1089)]  198400 110700 310 270
  5c1e000100001025 Active icmp 0800 IN 4095 21 40 (blocked) 10.31.0.13 -> 10.20.1.40 8 0 257920 143910 403 351
  5c1e00010000102e Active icmp 0800 OUT 4095 22 42 (S,est) 10.20.1.40 -> 10.31.0.16 [198.18.0.16] 0 1 317440 177120 496 432
  5c1e000100001037 Active ipv6-icmp 86dd IN 4095 21 42 (est) 2001:db8:31::13 -> 2001:db8:14::28 1 4 376960 210330 589 513
  5c1e000100001040 Active ipv6-icmp 86dd OUT 4095 22 42 (S,est) 2001:db8:14::28 -> 2001:db8:31::16 [2001:db8:64::16] 135 2 436480 243540 682 594
  5c1e000100001049 Active tcp 86dd IN 4095 23 42  2001:db8:31::19:Unknown(49176) -> 2001:db8:14::28:ssh(22) 560 SYNRECV:SYNSENT  rtt 150024 retrans 67/85 496000 276750 775 675
  5c1e000100001052 Active tcp 86dd N/A 4095 26 45 (blocked,S,est) 2001:db8:31::1c:Unknown(49179) -> 2001:db8:14::28:ssh(22) [2001:db8:64::1c:Unknown(1107)] 563 FINWAIT1:CLOSEWAIT  rtt 150027 retrans 70/88 555520 309960 868 756
  $ quiet tarnioctl getconnections -v -f $filter | head -3
  Setting verbose level to : 1
  5c1e000100001001 Active tcp 0800 IN 4095 24 44 (est) 10.31.0.1:Unknown(49152) -> 10.20.1.40:https(443) 536 EST:EST  rtt 150000 retrans 60/80 19840 11070 31 27 Start: Mon, 05 Jan 2026 08:00:00 +0000, End: Mon, 05 Jan 2026 08:01:00 +0000
  5c1e00010000100a Active tcp 0800 OUT 4095 21 42 (S) 10.20.1.40:Unknown(49155) -> 10.31.0.4:https(443) [198.18.0.4:Unknown(1083)] 539 LISTEN:SYNSENT  rtt 150003 retrans 63/83 79360 44280 124 108 Start: Mon, 05 Jan 2026 08:00:09 +0000, End: Mon, 05 Jan 2026 08:01:12 +0000

With an interval they go on until a signal ends them. What there is comes out at once.

  $ repeats() {
  >   : > seen
  >   tarnlab run sh -c '
  >     "$@" >> seen 2> complaints &
  >     for i in $(seq 600); do [ "$(wc -l < seen)" -ge '$1' ] && break; sleep 0.1; done
  >     kill $!; wait $! 2> /dev/null; echo "ended with $?"' repeats "${@:2}"
  >   cat complaints seen
  > }
  $ repeats 4 tarnioctl getflows -n -f $filter -t 100000
  ended with 143
  Counts retrieved from kernel:
        Active: numRecords = 10, totalAttr = 21, attrLen = 816, len = 3326
        Inactive: numRecords = 10, totalAttr = 13, attrLen = 293, len = 2803
        Drop: numRecords = 0, totalAttr = 0, attrLen = 0, len = 0
  $ repeats 1 tarnioctl getconnections -f $filter -t 100000 | cut -c 1-31
  ended with 143
  5c1e000100001001 Active tcp 080
  5c1e00010000100a Active tcp 080
  5c1e000100001013 Active udp 080
  5c1e00010000101c Active udp 080
  5c1e000100001025 Active icmp 08
  5c1e00010000102e Active icmp 08
  5c1e000100001037 Active ipv6-ic
  5c1e000100001040 Active ipv6-ic
  5c1e000100001049 Active tcp 86d
  5c1e000100001052 Active tcp 86d
  $ quiet tarnioctl getflows -n -f $filter -t 0 | head -n 9 | tail -n 2
        Drop: numRecords = 0, totalAttr = 0, attrLen = 0, len = 0
  Counts retrieved from kernel:

Clearing them.

  $ quiet tarnioctl clrconnection -f $filter
  err| ERROR: Command clrconnection is dangerous and can cause unintended consequence!
  err| ERROR: Please supply first option -Override in order to override the safety guard and actually run the command.
  [1]
  $ quiet tarnioctl clrconnection -Override -f $filter -v 1
  verbose level : 1
  weirgate name : nic-1002672-eth0-kelpco-sfw.2
  Cleared connection count : 10
  $ quiet tarnioctl getconnections -f $filter
  No active connections
  $ repeats 2 tarnioctl getconnections -f $filter -t 100000 | head -n 3
  ended with 143
  No active connections
  No active connections
  $ quiet tarnioctl getflows -f $filter
  Count retrieved from kernel active=0, inactive=10, drop=0
  5c1e000100001004 Inactive tcp 0800 OUT 4095 29 50 (est) 10.20.1.40:Unknown(49153) -> 10.31.0.2:https(443) 537 FINWAIT2:TIMEWAIT  rtt 150001 retrans 61/81 39680 22140 62 54 attr: APP_NIMAIL
  5c1e00010000100d Inactive tcp 0800 IN 4095 20 50  10.31.0.5:Unknown(49156) -> 10.20.1.40:https(443) [198.18.0.5:Unknown(1084)] 540 CLOSED:TIMEWAIT  rtt 150004 retrans 64/84 99200 55350 155 135
  5c1e000100001016 Inactive udp 0800 OUT 4095 22 43 (est) 10.20.1.40:Unknown(49159) -> 10.31.0.8:domain(53)  158720 88560 248 216 attr: CIFS_SMB_INVALID,11400714819323198485,UNKNOWN
  5c1e00010000101f Inactive udp 0800 IN 4095 21 43 (blocked,est) 10.31.0.11:Unknown(49162) -> 10.20.1.40:domain(53) [198.18.0.11:Unknown(1090)]  218240 121770 341 297 attr: -40000,profile-0(1623303d-4a57-6471-7e8b-98a5b2bfccd9)
  5c1e000100001028 Inactive icmp 0800 N/A 4095 22 43 (blocked,est) 10.31.0.14 -> 10.20.1.40 8 0 277760 154980 434 378 attr: UNK(1/2/18)
  5c1e000100001031 Inactive icmp 0800 IN 4095 21 40  10.31.0.17 -> 10.20.1.40 [198.18.0.17] 0 1 337280 188190 527 459
  5c1e00010000103a Inactive ipv6-icmp 86dd OUT 4095 22 43 (est) 2001:db8:14::28 -> 2001:db8:31::14 1 4 396800 221400 620 540 attr: db1.kelpco.example(1724313e-4b58-6572-7f8c-99a6b3c0cdda),SSL_V3,TLS_RSA_WITH_NULL_MD5
  5c1e000100001043 Inactive ipv6-icmp 86dd IN 4095 21 43 (est) 2001:db8:31::17 -> 2001:db8:14::28 [2001:db8:64::17] 135 2 456320 254610 713 621 attr: HEAD,(1724313e-4b58-6572-7f8c-99a6b3c0cdda)
  5c1e00010000104c Inactive tcp 86dd OUT 4095 30 49 (blocked,est) 2001:db8:14::28:Unknown(49177) -> 2001:db8:31::1a:ssh(22) 561 TIMEWAIT:FINWAIT2  rtt 150025 retrans 68/86 515840 287820 806 702 attr: LS
  5c1e000100001055 Inactive tcp 86dd IN 4095 30 40 (blocked) 2001:db8:31::1d:Unknown(49180) -> 2001:db8:14::28:ssh(22) [2001:db8:64::1d:Unknown(1108)] 564 TIMEWAIT:CLOSED  rtt 150028 retrans 71/89 575360 321030 899 783

A filter that is not there.

  $ lab tarnioctl getconncount -f nic-1-eth0-kelpco-sfw.1
  Failed to get active connection count : switch port not found
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <84> tarnfw: TarnFWCmd:execute():N ioctl failed because switch port is not found\n
  [1]
  $ lab tarnioctl getconnections -f nic-1-eth0-kelpco-sfw.1
  Failed to get active connection count : switch port not found
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <84> tarnfw: TarnFWCmd:execute():N ioctl failed because switch port is not found\n
  [1]
  $ lab tarnioctl clrconnection -Override -f nic-1-eth0-kelpco-sfw.1
  err| ERROR: failed to clear connection: switch port not found
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <84> tarnfw: TarnFWCmd:execute():N ioctl failed because switch port is not found\n
  [1]
  $ lab tarnioctl getflows -f nic-1-eth0-kelpco-sfw.1
  No records found
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <83> tarnfw: TarnFWIoctl:sendIoctl():N ioctl cmd 22 on device /dev/brq-tarn failed: No such file or directory\n\n

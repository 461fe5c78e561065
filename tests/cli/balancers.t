The load balancer of a filter, and its application-level gateways.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ service=1b0a7c50-5e41-4d01-a000-0000632a0000

  $ run tarnioctl getlbinfo -h
  Get LB configuration.
  
  Usage: tarnioctl getlbinfo <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -i <number> : lbs ID
      -u <UUID>   : lbs UUID
      -c          : active lbs only
      -a          : both active and stale lbs
      -d          : display more info
      -v<number>  : enable verbose log
      -m <string> : verbose log component name or id
      -h          : this help message
  $ run tarnioctl getlbstat -h
  Get LB statistics.
  
  Usage: tarnioctl getlbstat <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -l <UUID>   : lbs UUID
      -u <UUID>   : virtual server or pool UUID
      -s          : virtual server statistics
      -p          : pool statistics
      -d          : display more info
      -z          : reset the stats to zero
      -v<number>  : enable verbose log
      -m <string> : verbose log component name or id
      -h          : this help message
  $ run tarnioctl getalginfo -h
  Print current ALG structure info.
  
  Usage: tarnioctl getalginfo <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -c <1|0>    : display|omit control flows
      -d <1|0>    : display|omit dynamic data flows
      -h          : this help message
  $ run tarnioctl getlbinfo
  err| ERROR: filter is missing.
  [1]
  $ run tarnioctl getlbstat
  err| ERROR: filter is missing.
  [1]
  $ brief run tarnioctl getalginfo
  (usage)
  err| ERROR: filter is missing.
  [1]
  $ run tarnioctl getlbinfo -f $filter -i -1
  err| ERROR: bad lbs id -1
  [1]
  $ run tarnioctl getlbinfo -f $filter -u web
  err| ERROR: bad uuid web
  [1]
  $ run tarnioctl getlbstat -f $filter -l web
  lbs web is not valid
  [1]
  $ run tarnioctl getlbstat -f $filter -s -u web
  virtual server web is not valid
  [1]
  $ run tarnioctl getlbstat -f $filter -u web -s
  pool web is not valid
  [1]
  $ run tarnioctl getlbstat -f $filter
  err| ERROR: Please specify lbs UUID
  [1]
  $ run tarnioctl getlbstat -f $filter -l $service
  err| ERROR: Please specify vs or pool flag
  [1]
  $ run tarnioctl getlbstat -f $filter -l $service -p -s
  err| ERROR: Invalid, both vs and pool flag are set
  [1]

Services, active ones only until it is said otherwise.

  $ lab tarnioctl getlbinfo -f $filter
  {
      "active_count": 2,
      "stale_count": 0,
      "id": 0,
      "uuid": "",
      "flags": 0,
      "services": [
          {
              "index": 0,
              "state": "active",
              "virtual_servers": 2,
              "pools": 2,
              "pool_members": 4
          },
          {
              "index": 1,
              "state": "active",
              "virtual_servers": 1,
              "pools": 1,
              "pool_members": 2
          }
      ]
  }
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  $ quiet tarnioctl getlbinfo -f $filter --all | python3 -c 'import json, sys; print([s["state"] for s in json.load(sys.stdin)["services"]])'
  ['active', 'active', 'stale']
  $ quiet tarnioctl getlbinfo -f $filter -i 4002 -v1
  verbose level : 1
  weirgate agent: kelpco-sfw
  {
      "active_count": 1,
      "stale_count": 0,
      "id": 4002,
      "uuid": "",
      "flags": 16,
      "services": [
          {
              "index": 0,
              "state": "active",
              "virtual_servers": 1,
              "pools": 1,
              "pool_members": 2
          }
      ]
  }
  $ quiet tarnioctl getlbinfo -f $filter -u 1b0a7c50-5e41-4d03-a000-0000632a0000 | grep -e count -e state
      "active_count": 0,
      "stale_count": 1,
              "state": "stale",
  $ quiet tarnioctl getlbinfo -f nic-1002731-eth0-kelpco-sfw.2
  {
      "active_count": 0,
      "stale_count": 0,
      "id": 0,
      "uuid": "",
      "flags": 0,
      "services": [
      ]
  }
  $ tarnlab log -s -n 2 | cut -d : -f 4-
   GetLBConfigSize(id 0, uuid "", flags 0) = ok {active 0, stale 0}
   GetLBConfig(bytes 81, active 0, stale 0, id 0, uuid "", flags 0) = ok {active 0, stale 0}
  $ quiet tarnioctl getlbinfo -f nic-9-eth0-kelpco-sfw.9
  err| ERROR: Failed to get LB info size
  [1]

Statistics of virtual servers or of pools. What is cleared stays 0.

  $ quiet tarnioctl getlbstat -f $filter -l $service -s
  {
      "virtual_server_count": 2,
      "pool_count": 0,
      "virtual_servers": [
          {
              "index": 0
          },
          {
              "index": 1
          }
      ],
      "pools": [
      ]
  }
  $ quiet tarnioctl getlbstat -f $filter "--lbs uuid" $service --pool --debug | cut -c 1-72
  vs cnt: 0, pool cnt: 2
  pm cnt: 3 1 
  {
      "virtual_server_count": 0,
      "pool_count": 2,
      "virtual_servers": [
      ],
      "pools": [
          {
              "index": 0,
              "bytes": "3162306137633530000065040000000000f065040000000000
              "member_count": 3,
              "members": [
                  {
                      "index": 0,
                      "bytes": "31623061376335302d356534312d346430312d6130
                  },
                  {
                      "index": 1,
                      "bytes": "31623061376335302d356534312d346430312d6130
                  },
                  {
                      "index": 2,
                      "bytes": "31623061376335302d356534312d346430312d6130
                  }
              ]
          },
          {
              "index": 1,
              "bytes": "316230613763353000606e040000000000506f040000000000
              "member_count": 1,
              "members": [
                  {
                      "index": 0,
                      "bytes": "31623061376335302d356534312d346430312d6130
                  }
              ]
          }
      ]
  }
  $ quiet tarnioctl getlbstat -f $filter -l $service -p -d | python3 -c 'import json, sys; sys.stdin.readline(); sys.stdin.readline(); print(len(json.load(sys.stdin)["pools"]))'
  2
  $ quiet tarnioctl getlbstat -f $filter -l 1b0a7c50-5e41-4d03-a000-0000632a0000 -p -d
  vs cnt: 0, pool cnt: 0
  pm cnt: 0
  {
      "virtual_server_count": 0,
      "pool_count": 0,
      "virtual_servers": [
      ],
      "pools": [
      ]
  }
  $ quiet tarnioctl getlbstat -f $filter -l $service -s -d | head -n 2
  vs cnt: 2, pool cnt: 0
  pm cnt: 0
  $ quiet tarnioctl getlbstat -f $filter -l $service -s | python3 -c 'import json, sys; print(json.load(sys.stdin)["virtual_servers"])'
  [{'index': 0}, {'index': 1}]
  $ quiet tarnioctl getlbstat -f $filter -l $service -p -u 1b0a7c50-5e41-4d01-a002-0000632a0001 -d | head -n 2
  vs cnt: 0, pool cnt: 1
  pm cnt: 1 
  $ quiet tarnioctl getlbstat -f $filter -l $service -u 1b0a7c50-5e41-4d01-a002-0000632a0001 -p -d | head -n 2
  vs cnt: 0, pool cnt: 2
  pm cnt: 3 1 
  $ quiet tarnioctl getlbstat -f $filter -l 1b0a7c50-5e41-4d09-a000-0000632a0000 -s
  lbs 1b0a7c50-5e41-4d09-a000-0000632a0000 is not valid
  $ quiet tarnioctl getlbstat -f $filter -l $service -s -u 1b0a7c50-5e41-4d01-a002-0000632a0001
  virtual server 1b0a7c50-5e41-4d01-a002-0000632a0001 is not valid
  $ lab tarnioctl getlbstat -f $filter -l $service -p -z
  {
      "result": "pool stats on datapath is cleared. In rare cases some of the counters may not be cleared and when that happens please try issuing the command again"
  }
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  $ quiet tarnioctl getlbstat -f $filter -l $service -p -d | grep -c '0000000000000000000000000000000000000000000000000000000000000000000000000000000"'
  6
  $ quiet tarnioctl getlbstat -f $filter -l $service -s -z
  {
      "result": "vs stats on datapath is cleared. In rare cases some of the counters may not be cleared and when that happens please try issuing the command again"
  }
  $ tarnlab show $filter | tail -n 1
    balancer.cleared: 3
  $ quiet tarnioctl getlbstat -f $filter -l 1b0a7c50-5e41-4d02-a000-0000632a0000 -s -z | python3 -c 'import json, sys; print(json.load(sys.stdin)["result"][:20])'
  vs stats on datapath
  $ quiet tarnioctl getlbstat -f nic-9-eth0-kelpco-sfw.9 -l $service -s
  err| ERROR: Failed to get LB stat size
  [1]
  $ quiet tarnioctl getlbstat -f nic-9-eth0-kelpco-sfw.9 -l $service -s -z
  err| ERROR: Failed to clear LB stat
  [1]

Gateways and the ports that they opened.

  $ lab tarnioctl getalginfo -f $filter -c 0 -d 0
  ALG: FTP, IPv4 TCP port 21, IN
  ALG: FTP, IPv6 TCP port 21, IN
  ALG: ORACLE, IPv4 TCP port 1521, IN
  ALG: ORACLE, IPv6 TCP port 1521, OUT
  ALG: SUNRPC, IPv4 TCP port 111, IN
  ALG: SUNRPC, IPv6 TCP port 111, IN
  ALG: DCERPC, IPv4 TCP port 135, IN
  ALG: DCERPC, IPv6 TCP port 135, IN
  ALG: TFTP, IPv4 TCP port 6969, IN
  ALG: TFTP, IPv6 TCP port 6969, IN
  ALG: ??, IPv4 TCP port 2000, OUT
  ALG: ??, IPv6 TCP port 2000, IN
  ALG: ??, IPv4 UDP/TCP port 5060, IN
  ALG: ??, IPv6 UDP/TCP port 5060, IN
  ALG: TFTP, IPv4 UDP port 69, IN
  ALG: TFTP, IPv6 UDP port 69, IN
  ALG: SUNRPC, IPv4 UDP port 111, IN
  ALG: SUNRPC, IPv6 UDP port 111, OUT
  ALG: FTP, IPv4 TCP port 21, OUT
  ALG: FTP, IPv6 TCP port 21, OUT
  ALG: ORACLE, IPv4 TCP port 1521, OUT
  ALG: SUNRPC, IPv4 TCP port 111, OUT
  ALG: SUNRPC, IPv6 TCP port 111, OUT
  ALG: DCERPC, IPv4 TCP port 135, OUT
  ALG: DCERPC, IPv6 TCP port 135, OUT
  ALG: TFTP, IPv4 TCP port 6969, OUT
  ALG: TFTP, IPv6 TCP port 6969, OUT
  ALG: ??, IPv6 TCP port 2000, OUT
  ALG: ??, IPv4 UDP/TCP port 5060, OUT
  ALG: ??, IPv6 UDP/TCP port 5060, OUT
  ALG: TFTP, IPv4 UDP port 69, OUT
  ALG: TFTP, IPv6 UDP port 69, OUT
  ALG: SUNRPC, IPv4 UDP port 111, OUT
  
  ALG PORT: FTP, IPv4 TCP port 21, IN, active: 0, dport: 30084, ctrl_flowid: 5c1e0001000010fd, rcnt: 2
  ALG PORT: FTP, IPv6 TCP port 21, IN, active: 1, dport: 30086, ctrl_flowid: 5c1e000100001103, rcnt: 4
  ALG PORT: ORACLE, IPv4 TCP port 1521, IN, active: 0, dport: 30088, ctrl_flowid: 5c1e000100001109, rcnt: 6
  ALG PORT: ORACLE, IPv6 TCP port 1521, OUT, active: 1, dport: 30090, ctrl_flowid: 5c1e00010000110f, rcnt: 1
  ALG PORT: SUNRPC, IPv4 TCP port 111, IN, active: 0, dport: 30092, ctrl_flowid: 5c1e000100001115, rcnt: 3
  ALG PORT: SUNRPC, IPv6 TCP port 111, IN, active: 0, dport: 30094, ctrl_flowid: 5c1e00010000111b, rcnt: 5
  ALG PORT: DCERPC, IPv4 TCP port 135, IN, active: 1, dport: 30096, ctrl_flowid: 5c1e000100001121, rcnt: 7
  ALG PORT: DCERPC, IPv6 TCP port 135, IN, active: 0, dport: 30098, ctrl_flowid: 5c1e000100001127, rcnt: 2
  ALG PORT: TFTP, IPv4 TCP port 6969, IN, active: 1, dport: 30100, ctrl_flowid: 5c1e00010000112d, rcnt: 4
  ALG PORT: TFTP, IPv6 TCP port 6969, IN, active: 0, dport: 30102, ctrl_flowid: 5c1e000100001133, rcnt: 6
  ALG PORT: ??, IPv4 TCP port 2000, OUT, active: 0, dport: 30104, ctrl_flowid: 5c1e000100001139, rcnt: 1
  ALG PORT: ??, IPv6 TCP port 2000, IN, active: 1, dport: 30106, ctrl_flowid: 5c1e00010000113f, rcnt: 3
  ALG PORT: ??, IPv4 TCP port 5060, IN, active: 1, dport: 30108, ctrl_flowid: 5c1e000100001145, rcnt: 5
  ALG PORT: ??, IPv6 TCP port 5060, IN, active: 1, dport: 30110, ctrl_flowid: 5c1e00010000114b, rcnt: 7
  ALG PORT: TFTP, IPv4 UDP port 69, IN, active: 1, dport: 30112, ctrl_flowid: 5c1e000100001151, rcnt: 2
  ALG PORT: TFTP, IPv6 UDP port 69, IN, active: 1, dport: 30114, ctrl_flowid: 5c1e000100001157, rcnt: 4
  ALG PORT: SUNRPC, IPv4 UDP port 111, IN, active: 1, dport: 30116, ctrl_flowid: 5c1e00010000115d, rcnt: 6
  ALG PORT: SUNRPC, IPv6 UDP port 111, OUT, active: 1, dport: 30118, ctrl_flowid: 5c1e000100001163, rcnt: 1
  ALG PORT: FTP, IPv4 TCP port 21, OUT, active: 0, dport: 30209, ctrl_flowid: 5c1e000100001274, rcnt: 1
  ALG PORT: FTP, IPv6 TCP port 21, OUT, active: 1, dport: 30211, ctrl_flowid: 5c1e00010000127a, rcnt: 3
  ALG PORT: ORACLE, IPv4 TCP port 1521, OUT, active: 0, dport: 30213, ctrl_flowid: 5c1e000100001280, rcnt: 5
  ALG PORT: ORACLE, IPv6 TCP port 1521, OUT, active: 0, dport: 30215, ctrl_flowid: 5c1e000100001286, rcnt: 7
  ALG PORT: SUNRPC, IPv4 TCP port 111, OUT, active: 1, dport: 30217, ctrl_flowid: 5c1e00010000128c, rcnt: 2
  ALG PORT: SUNRPC, IPv6 TCP port 111, OUT, active: 0, dport: 30219, ctrl_flowid: 5c1e000100001292, rcnt: 4
  ALG PORT: DCERPC, IPv4 TCP port 135, OUT, active: 1, dport: 30221, ctrl_flowid: 5c1e000100001298, rcnt: 6
  ALG PORT: DCERPC, IPv6 TCP port 135, OUT, active: 0, dport: 30223, ctrl_flowid: 5c1e00010000129e, rcnt: 1
  ALG PORT: TFTP, IPv4 TCP port 6969, OUT, active: 0, dport: 30225, ctrl_flowid: 5c1e0001000012a4, rcnt: 3
  ALG PORT: TFTP, IPv6 TCP port 6969, OUT, active: 1, dport: 30227, ctrl_flowid: 5c1e0001000012aa, rcnt: 5
  ALG PORT: ??, IPv4 TCP port 2000, OUT, active: 1, dport: 30229, ctrl_flowid: 5c1e0001000012b0, rcnt: 7
  ALG PORT: ??, IPv6 TCP port 2000, OUT, active: 1, dport: 30231, ctrl_flowid: 5c1e0001000012b6, rcnt: 2
  ALG PORT: ??, IPv4 TCP port 5060, OUT, active: 0, dport: 30233, ctrl_flowid: 5c1e0001000012bc, rcnt: 4
  ALG PORT: ??, IPv6 TCP port 5060, OUT, active: 0, dport: 30235, ctrl_flowid: 5c1e0001000012c2, rcnt: 6
  ALG PORT: TFTP, IPv4 UDP port 69, OUT, active: 1, dport: 30237, ctrl_flowid: 5c1e0001000012c8, rcnt: 1
  ALG PORT: TFTP, IPv6 UDP port 69, OUT, active: 0, dport: 30239, ctrl_flowid: 5c1e0001000012ce, rcnt: 3
  ALG PORT: SUNRPC, IPv4 UDP port 111, OUT, active: 1, dport: 30241, ctrl_flowid: 5c1e0001000012d4, rcnt: 5
  ALG PORT: SUNRPC, IPv6 UDP port 111, OUT, active: 0, dport: 30243, ctrl_flowid: 5c1e0001000012da, rcnt: 7
  ALG PORT: FTP, IPv4 TCP port 21, OUT, active: 1, dport: 30329, ctrl_flowid: 5c1e0001000013dc, rcnt: 2
  ALG PORT: FTP, IPv6 TCP port 21, OUT, active: 1, dport: 30331, ctrl_flowid: 5c1e0001000013e2, rcnt: 4
  ALG PORT: ORACLE, IPv4 TCP port 1521, OUT, active: 0, dport: 30333, ctrl_flowid: 5c1e0001000013e8, rcnt: 6
  ALG PORT: ORACLE, IPv6 TCP port 1521, OUT, active: 0, dport: 30335, ctrl_flowid: 5c1e0001000013ee, rcnt: 1
  ALG PORT: SUNRPC, IPv4 TCP port 111, OUT, active: 0, dport: 30337, ctrl_flowid: 5c1e0001000013f4, rcnt: 3
  ALG PORT: SUNRPC, IPv6 TCP port 111, OUT, active: 1, dport: 30339, ctrl_flowid: 5c1e0001000013fa, rcnt: 5
  ALG PORT: DCERPC, IPv4 TCP port 135, OUT, active: 1, dport: 30341, ctrl_flowid: 5c1e000100001400, rcnt: 7
  ALG PORT: DCERPC, IPv6 TCP port 135, OUT, active: 0, dport: 30343, ctrl_flowid: 5c1e000100001406, rcnt: 2
  ALG PORT: TFTP, IPv4 TCP port 6969, OUT, active: 0, dport: 30345, ctrl_flowid: 5c1e00010000140c, rcnt: 4
  ALG PORT: TFTP, IPv6 TCP port 6969, OUT, active: 0, dport: 30347, ctrl_flowid: 5c1e000100001412, rcnt: 6
  ALG PORT: ??, IPv4 TCP port 2000, OUT, active: 1, dport: 30349, ctrl_flowid: 5c1e000100001418, rcnt: 1
  ALG PORT: ??, IPv6 TCP port 2000, OUT, active: 1, dport: 30351, ctrl_flowid: 5c1e00010000141e, rcnt: 3
  ALG PORT: ??, IPv4 TCP port 5060, OUT, active: 0, dport: 30353, ctrl_flowid: 5c1e000100001424, rcnt: 5
  ALG PORT: ??, IPv6 TCP port 5060, OUT, active: 0, dport: 30355, ctrl_flowid: 5c1e00010000142a, rcnt: 7
  ALG PORT: TFTP, IPv4 UDP port 69, OUT, active: 1, dport: 30357, ctrl_flowid: 5c1e000100001430, rcnt: 2
  ALG PORT: TFTP, IPv6 UDP port 69, OUT, active: 0, dport: 30359, ctrl_flowid: 5c1e000100001436, rcnt: 4
  ALG PORT: SUNRPC, IPv4 UDP port 111, OUT, active: 1, dport: 30361, ctrl_flowid: 5c1e00010000143c, rcnt: 6
  ALG PORT: SUNRPC, IPv6 UDP port 111, OUT, active: 0, dport: 30363, ctrl_flowid: 5c1e000100001442, rcnt: 1
  ALG PORT: FTP, IPv4 TCP port 21, OUT, active: 1, dport: 30449, ctrl_flowid: 5c1e000100001544, rcnt: 3
  ALG PORT: FTP, IPv6 TCP port 21, OUT, active: 0, dport: 30451, ctrl_flowid: 5c1e00010000154a, rcnt: 5
  ALG PORT: ORACLE, IPv4 TCP port 1521, OUT, active: 1, dport: 30453, ctrl_flowid: 5c1e000100001550, rcnt: 7
  ALG PORT: ORACLE, IPv6 TCP port 1521, OUT, active: 0, dport: 30455, ctrl_flowid: 5c1e000100001556, rcnt: 2
  ALG PORT: SUNRPC, IPv4 TCP port 111, OUT, active: 0, dport: 30457, ctrl_flowid: 5c1e00010000155c, rcnt: 4
  ALG PORT: SUNRPC, IPv6 TCP port 111, OUT, active: 1, dport: 30459, ctrl_flowid: 5c1e000100001562, rcnt: 6
  ALG PORT: DCERPC, IPv4 TCP port 135, OUT, active: 0, dport: 30461, ctrl_flowid: 5c1e000100001568, rcnt: 1
  ALG PORT: DCERPC, IPv6 TCP port 135, OUT, active: 1, dport: 30463, ctrl_flowid: 5c1e00010000156e, rcnt: 3
  ALG PORT: TFTP, IPv4 TCP port 6969, OUT, active: 0, dport: 30465, ctrl_flowid: 5c1e000100001574, rcnt: 5
  ALG PORT: TFTP, IPv6 TCP port 6969, OUT, active: 0, dport: 30467, ctrl_flowid: 5c1e00010000157a, rcnt: 7
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  $ tarnlab log -s -n 4 | cut -d : -f 4-
   GetAlgInfo(bytes 0, count 0) = ok {count 33}
   GetAlgInfo(bytes 198, count 33) = ok {count 33}
   GetAlgPortInfo(bytes 0, count 0) = ok {count 64}
   GetAlgPortInfo(bytes 2560, count 64) = ok {count 64}
  $ quiet tarnioctl getalginfo -f nic-1003120-eth0-kelpco-sfw.2
  $ quiet tarnioctl getalginfo -f nic-9-eth0-kelpco-sfw.9
  err| ERROR: Failed to get alg structure count
  [1]

What a filter does while it cannot enforce rules.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2

  $ run tarnioctl setfailpolicy -h
  Set fail policy.
  
  Usage: tarnioctl setfailpolicy <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -p<fail_policy> : fail policy (0: fail_open, 1: fail_close)
      -h          : this help message
  $ run tarnioctl getfailpolicy -h
  Get fail policy.
  
  Usage: tarnioctl getfailpolicy <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -h          : this help message
  $ brief run tarnioctl setfailpolicy -p 1
  (usage)
  err| ERROR: filter is missing.
  [1]
  $ brief run tarnioctl setfailpolicy -f $filter
  (usage)
  err| ERROR: fail policy is missing.
  [1]

What one command sets the other reads, and the filter next to it keeps its own.

  $ quiet tarnioctl getfailpolicy -f $filter
  filter fail policy: fail open
  $ quiet tarnioctl setfailpolicy -f $filter -p 1
  $ quiet tarnioctl getfailpolicy -f $filter
  filter fail policy: fail close
  $ quiet tarnioctl getfailpolicy -f nic-1002731-eth0-kelpco-sfw.2
  filter fail policy: fail open
  $ tarnlab show $filter
  filter nic-1002672-eth0-kelpco-sfw.2
    agent kelpco-sfw, vnic 0, slow path 1, vif 8d0c7a10-55f4-4c1e-9b02-0000632a0000
    flows: 244 active, 97 inactive, 96 dropped, 16 L2 pass, 16 L2 drop, 1 of other kinds
    traffic is dropped while rules cannot be enforced
  $ tarnlab log | tail -3 | sed 's/.*message 0: //'
  SetFailPolicy(policy 1) = ok
  GetFailPolicy() = ok {policy 1}
  GetFailPolicy() = ok {policy 0}
  $ quiet tarnioctl setfailpolicy -v 2 -f $filter -p0
  verbose level : 2
  weirgate agent: kelpco-sfw
  $ quiet tarnioctl getfailpolicy -v1 -f $filter
  verbose level : 1
  weirgate agent: kelpco-sfw
  filter fail policy: fail open

What is refused.

  $ quiet tarnioctl setfailpolicy -f $filter -p 2
  err| ERROR: failed to set fail policy: not supported 7
  [1]
  $ quiet tarnioctl getfailpolicy -f nic-9-eth0-kelpco-sfw.9
  err| ERROR: failed to get fail policy: switch port not found
  [1]
  $ tarnlab fault status 26 --count 1
  $ lab tarnioctl getfailpolicy -f $filter
  filter fail policy: fail open
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <84> tarnfw: TarnFWCmd:execute():N failed to execute command GetFailPolicy: bad state\n\n
  $ tarnlab fault absent
  $ quiet tarnioctl getfailpolicy -f $filter
  [255]

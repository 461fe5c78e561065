The interface of a filter: its flags, the fast path, and what it logs.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ slow=nic-998214-eth0-kelpco-sfw.2

  $ run tarnioctl getkifflags -h
  Get kif flag settings for a filter.
  
  Usage: tarnioctl getkifflags <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -m <string> : verbose log component name or id
      -h          : this help message
  $ run tarnioctl setkifflags -Override -h
  Set kif flag for a filter.
  
  Usage: tarnioctl setkifflags <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -n <flagname> : flag name
      -e <0|1>    : flag value
      -v<number>  : enable verbose log
      -h          : this help message
  $ run tarnioctl kiffastpath -h
  Set/Get kif fast path rule lookup flag.
  
  Usage: tarnioctl kiffastpath <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -s <number> : set fp flag to 0/1 (disable/enable)
      -i          : retrive fp kif configuration
      -h          : this help message
  $ run tarnioctl setverbose -h
  Set log level.
  
  Usage: tarnioctl setverbose <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -c <comp>   : component, DP or CP
      -v <number> : verbose level, from 0 to 3
      -h          : this help message
  $ brief run tarnioctl getkifflags
  (usage)
  err| ERROR: filter is missing
  [1]
  $ brief run tarnioctl setkifflags -Override
  (usage)
  err| ERROR: filter is missing
  [1]
  $ brief run tarnioctl setkifflags -Override -f $filter -e 1
  (usage)
  err| ERROR: flagname is missing
  [1]
  $ brief run tarnioctl setkifflags -Override -f $filter -n fast_path
  (usage)
  err| ERROR: flagvalue is missing
  [1]
  $ run tarnioctl setkifflags -f $filter -n fast_path -e 0
  err| ERROR: Command setkifflags is dangerous and can cause unintended consequence!
  err| ERROR: Please supply first option -Override in order to override the safety guard and actually run the command.
  [1]

Flags by name. The level of verbosity is printed twice.

  $ quiet tarnioctl getkifflags -f $filter
  kif flags: (0x25)
      fast_path                                1
      tcp_strict                               0
      export_flows                             1
      log_invalid                              0
      reassemble                               1
      drop_ip_options                          0
  $ quiet tarnioctl setkifflags -Override -f $filter -n drop_ip_options -e 1
  $ quiet tarnioctl setkifflags -Override -v2 -f $filter -n reassemble --enable=0
  verbose level : 2
  weirgate agent: kelpco-sfw
  verbose level : 2
  $ quiet tarnioctl getkifflags --verbose=1 -f $filter
  verbose level : 1
  weirgate agent: kelpco-sfw
  verbose level : 1
  kif flags: (0x80000005)
      fast_path                                1
      tcp_strict                               0
      export_flows                             1
      log_invalid                              0
      reassemble                               0
      drop_ip_options                          1
  $ tarnlab show $filter
  filter nic-1002672-eth0-kelpco-sfw.2
    agent kelpco-sfw, vnic 0, slow path 1, vif 8d0c7a10-55f4-4c1e-9b02-0000632a0000
    flows: 244 active, 97 inactive, 96 dropped, 16 L2 pass, 16 L2 drop, 1 of other kinds
    kif.reassemble: off
    kif.drop-ip-options: on
  $ tarnlab log -s -v -n 1
  firewall 15: filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 0: GetKifFlags() = ok {flags 0x80000005}
      fast_path 1
      tcp_strict 0
      export_flows 1
      log_invalid 0
      reassemble 0
      drop_ip_options 1
  $ lab tarnioctl setkifflags -Override -f $filter -n nonesuch -e 1
  err| ERROR: Failed to set kif flag
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <84> tarnfw: TarnFWCmd:execute():N failed to execute command ModifyKifFlags: invalid argument\n\n
  [1]
  $ quiet tarnioctl setkifflags -Override -f $filter -n fast_path -e 256
  err| ERROR: Failed to set kif flag
  [1]
  $ tarnlab log -s -n 1
  firewall 15: filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 0: ModifyKifFlags(flag "fast_path", value 255) = status 3 (value 255)
  $ quiet tarnioctl getkifflags -f nic-9-eth0-kelpco-sfw.9
  err| ERROR: Failed to get filter kif flags
  [1]

The fast path is a flag with a command of its own. The library is opened before the
filter is looked for.

  $ quiet tarnioctl kiffastpath -f $filter -i
  Fast Path flag Enabled
  $ quiet tarnioctl kiffastpath -f $slow -i
  Fast Path flag Disable
  $ quiet tarnioctl kiffastpath -f $slow -s 1
  $ quiet tarnioctl kiffastpath -f $slow -i
  Fast Path flag Enabled
  $ quiet tarnioctl getkifflags -f $slow | head -2
  kif flags: (0x25)
      fast_path                                1
  $ quiet tarnioctl kiffastpath -f $slow -i -s 0
  $ quiet tarnioctl kiffastpath -f $slow -iwhatever
  Fast Path flag Disable
  $ brief quiet tarnioctl kiffastpath
  (usage)
  err| ERROR: filter is missing.
  [1]
  $ brief quiet tarnioctl kiffastpath -f $slow
  (usage)
  err| ERROR: FP flag value is missing.
  [1]
  $ brief quiet tarnioctl kiffastpath -f $slow -s 2
  (usage)
  err| ERROR: bad enable value 2
  [1]
  $ quiet tarnioctl kiffastpath -f nic-9-eth0-kelpco-sfw.9 -i
  err| ERROR: failed to set fp interface flag: switch port not found
  [1]

What a filter writes to the kernel's log.

  $ quiet tarnioctl setverbose -f $filter -c DP -v 3
  $ quiet tarnioctl setverbose -f $filter -c cp -v 1
  $ tarnlab show $filter
  filter nic-1002672-eth0-kelpco-sfw.2
    agent kelpco-sfw, vnic 0, slow path 1, vif 8d0c7a10-55f4-4c1e-9b02-0000632a0000
    flows: 244 active, 97 inactive, 96 dropped, 16 L2 pass, 16 L2 drop, 1 of other kinds
    verbose.dp: 3
    verbose.cp: 1
    kif.reassemble: off
    kif.drop-ip-options: on
  $ quiet tarnioctl setverbose -f $filter -c dp
  $ tarnlab show $filter
  filter nic-1002672-eth0-kelpco-sfw.2
    agent kelpco-sfw, vnic 0, slow path 1, vif 8d0c7a10-55f4-4c1e-9b02-0000632a0000
    flows: 244 active, 97 inactive, 96 dropped, 16 L2 pass, 16 L2 drop, 1 of other kinds
    verbose.cp: 1
    kif.reassemble: off
    kif.drop-ip-options: on
  $ brief run tarnioctl setverbose -f $filter -c all -v 1
  (usage)
  [1]
  $ quiet tarnioctl setverbose -f $filter -v 1
  err| ERROR: failed to set verbose log: not supported
  [1]
  $ quiet tarnioctl setverbose -f $filter -c dp -v 16
  err| ERROR: failed to set verbose log: not supported
  [1]
  $ quiet tarnioctl setverbose -c dp -v 1
  err| ERROR: failed to set verbose log: switch port not found
  [1]
  $ tarnlab log -s -n 1
  firewall 15: no filter: message 0: EnableVerbose(component 1, level 1) = status 21 (command 32 without a filter)

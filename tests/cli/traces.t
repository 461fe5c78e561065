What the components of the kernel's firewall log, and traces of the host's daemon.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2

  $ run tarnioctl tracetarn -h
  Trace tarn.
  
  Usage: tarnioctl tracetarn <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -s          : tracing status
      -c <string> : execute a trace command
      -m <string> : verbose log component name or id
      -v<number>  : verbose log level for log commands
      -h          : this help message
  $ run tarnioctl tracehulld -h
  Trace hulld.
  
  Usage: tarnioctl tracehulld <options>
      -e          : enable tracing
      -q          : disable tracing
      -s          : tracing status
      -c <string> : execute a trace command
      -o          : turn on a trace feature
      -v<number>  : verbose log level for log commands
      -m <string> : verbose log component name or id
      -t <number> : addrset update timeout
      -h          : this help message

The kernel's firewall: each component has a level, which another command sets.

  $ lab tarnioctl tracetarn -f $filter -s
  Filter debug status:
      comp       level 
      fastpath   0     
      rule       0     
      table      0     
      icmp       0     
      tcp        0     
      udp        0     
      ioctl      0     
      norm       0     
      rpc        0     
      ftp        0     
      oracle     0     
      tftp       0     
      ospf       0     
      msg2pf     0     
      layer7     0     
      layer4     0     
      layer3     0     
      layer2     0     
      skiffer    0     
      syncache   0     
      lb         0     
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  $ quiet tarnioctl tracetarn -f $filter -c comp-log
  $ quiet tarnioctl tracetarn -f $filter -c B -m tcp -v -v
  $ quiet tarnioctl tracetarn -f $filter -v9 -m 0x12 -c COMP-LOG
  $ quiet tarnioctl tracetarn -f $filter -c STATUS | sed 1,2d | paste -s -d ' ' | tr -s ' '
   fastpath 3 rule 3 table 3 icmp 3 tcp 2 udp 3 ioctl 3 norm 3 rpc 3 ftp 3 oracle 3 tftp 3 ospf 3 msg2pf 3 layer7 3 layer4 3 layer3 3 layer2 3 skiffer 9 syncache 3 lb 3 
  $ tarnlab log | tail -4 | sed 's/.*message 0: //'
  DebugComponent(component 255, level 3) = ok
  DebugComponent(component 4, level 2) = ok
  DebugComponent(component 18, level 9) = ok
  DebugStatus(components 21) = ok {levels 030303030203030303030303030303030303090303}

The level of a filter is its own.

  $ quiet tarnioctl tracetarn -f nic-1002731-eth0-kelpco-sfw.2 -c A | grep -c ' 0 *$'
  21
  $ tarnlab show | grep -e '^filter nic-1002672' -e skiffer
  filter nic-1002672-eth0-kelpco-sfw.2
    debug.skiffer: 9
  filter nic-1002672-eth0-kelpco-inspect.4

A component that the kernel does not have, one that has no number, and a filter that is not there.

  $ lab tarnioctl tracetarn -f $filter -c B -m 21
  err| ERROR: failed to execute tarn trace command: not supported
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <84> tarnfw: TarnFWLibSettings:FW_DebugComponent():N error 7: unsupported debug component\n
  $ lab tarnioctl tracetarn -f $filter -c B -m 64
  err| ERROR: bad component id 64
  [1]
  $ lab tarnioctl tracetarn -f $filter -c B -m misc
  err| ERROR: bad component id misc
  [1]
  $ lab tarnioctl tracetarn -f nonesuch -s
  err| ERROR: failed to execute tarn trace command: switch port not found
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <84> tarnfw: TarnFWCmd:execute():N ioctl failed because switch port is not found\n

What is missing or refused.

  $ brief run tarnioctl tracetarn -f $filter
  (usage)
  err| ERROR: missing trace command
  [1]
  $ brief run tarnioctl tracetarn -s
  (usage)
  err| ERROR: filter is missing.
  [1]
  $ brief run tarnioctl tracetarn -f $filter -s -e
  (usage)
  [1]
  $ brief run tarnioctl tracetarn -f $filter -s -t 5
  (usage)
  [1]
  $ run tarnioctl tracetarn -f $filter -s -v10
  err| ERROR: invalid log level 10
  [1]
  $ run tarnioctl tracetarn -f $filter -c help
  Available trace commands are:
             status (A): tracing status
           comp-log (B): set component log level
               help (?): this help message
  [1]
  $ run tarnioctl tracetarn -c nonesuch -s
  Available trace commands are:
             status (A): tracing status
           comp-log (B): set component log level
               help (?): this help message
  err| ERROR: invalid trace command `nonesuch'.
  [1]

Commands of the daemon.

  $ run tarnioctl tracehulld -c help
  Available trace commands are:
             status (A): tracing status
               exit (B): stop tracing
                log (C): set process log level
            lib-log (D): set library log level
          save-rule (E): save binary ruleset config
          dump-rule (F): dump ruleset config
    save-spoofguard (G): save binary spoofguard config
    dump-spoofguard (H): dump spoofguard config
        save-filter (I): save binary filter config
        dump-filter (J): dump filter config
          save-flow (K): save flow config
          dump-flow (L): dump flow config
     save-threshold (M): save threshold config
     dump-threshold (N): dump threshold config
           save-msg (O): save manager message
        tune-l2rule (P): tune l2 rule optimization
        tune-l3rule (Q): tune l3 rule optimization
       save-gconfig (R): save global config
       dump-gconfig (S): dump global config
    tune-scontainer (T): tune shared addrset
      dump-cservice (U): dump container service
         dump-spset (V): dump service profile set
         dump-siset (W): dump service instance set
        dump-appmon (X): dump app mon config
       dump-montype (Y): dump filter monitor types
       dump-timeout (Z): dump timeout config
       clean-buffer ([): toggle clean protobuf
    addrset-timeout (\): set addrset aggregation timeout
    dump-clienttopics (]): dump client topics
    dump-ploysyncstate (^): dump ploy sync state
      vm-cont-query (_): vm continer query
        dump-thread (`): dump threads info
    addrset-interval (a): set addrset aggregation interval
               help (?): this help message
  [1]
  $ run tarnioctl tracehulld -c b | head -2
  Available trace commands are:
             status (A): tracing status
  $ brief run tarnioctl tracehulld -v3
  (usage)
  err| ERROR: missing trace command
  [1]
  $ run tarnioctl tracehulld -s -vten
  err| ERROR: invalid log level ten
  [1]
  $ run tarnioctl tracehulld -c M -v
  err| ERROR: Threshold value not provided.
  [1]
  $ run tarnioctl tracehulld -s -t 31
  err| ERROR: timeout should be between 0 and 30 second(s)
  [1]
  $ run tarnioctl tracehulld -s -m 64
  err| ERROR: bad component id 64
  [1]

What the components of the kernel's firewall log, and traces of the host's daemon.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2

  $ run tarnioctl tracetarn -h
  Trace tarn kernel module.
  
  Usage: tarnioctl tracetarn <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -s          : tracing status
      -c <string> : execute a trace command
      -m <string> : verbose log component name or id
      -v<number>  : verbose log level for log commands
      -h          : this help message
  $ run tarnioctl tracehulld -h
  Trace hulld process.
  
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
  log| tarnioctl <84> tarnfw: TarnFWLibMain:FW_DebugComponent():N error 7: unsupported debug component\n
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

Tracing is enabled by a file that must not be there before.

  $ (umask 022; lab tarnioctl tracehulld -e)
  hulld trace is scheduled to start shortly. please check hulld.log to confirm.
  $ lab tarnioctl tracehulld -e
  err| ERROR: failed to enable trace: File exists
  [1]
  $ stat -c '%a %s %n' "$TARNLAB_HOME"/root/etc/kelpco/hulld/* | sed 's|/.*/root||'
  644 0 /etc/kelpco/hulld/enable_trace
  $ lab tarnioctl tracehulld -s
  tracing: on
  process log level: 3
  library log level: 2
  L2 rule optimization: on
  L3 rule optimization: on
  shared addrset: off
  clean protobuf: off
  addrset aggregation timeout: 5 seconds
  addrset aggregation interval: 10 seconds
  filters: 8, agents: 3

Levels of the daemon's logs. A level counts up from 0, or is given.

  $ lab tarnioctl tracehulld -c log -v
  process log level of all components is 1
  $ lab tarnioctl tracehulld -c log -v -v
  process log level of all components is 2
  $ lab tarnioctl tracehulld -c LOG -v7 -m flow
  process log level of flow is 7
  $ lab tarnioctl tracehulld -c D -v9 -m all
  library log level of all components is 9
  $ lab tarnioctl tracehulld -s | grep level
  process log level: 2, flow 7
  library log level: 9

A feature is on with -o; without it, off.

  $ lab tarnioctl tracehulld -c tune-l2rule
  L2 rule optimization is off
  $ lab tarnioctl tracehulld -c P -o
  L2 rule optimization is on

A timeout has up to 30 seconds, a threshold its kind and a value. Both depend on the command before them.

  $ lab tarnioctl tracehulld -c addrset-timeout -t 30
  addrset aggregation timeout is 30 seconds
  $ lab tarnioctl tracehulld -c a -t 0
  addrset aggregation interval is 0 seconds
  $ lab tarnioctl tracehulld -c save-threshold -t 0 -v 65
  err| ERROR: Threshold value not provided.
  [1]
  $ lab tarnioctl tracehulld -c save-threshold -t 0 -v65
  threshold of CPU is 65 percent
  $ lab tarnioctl tracehulld -t 2 -v9 -c M -t 2 -v9999
  threshold of connections is 9999 per second
  $ lab tarnioctl tracehulld -c M -t 200
  ERROR: there is no threshold 200
  $ lab tarnioctl tracehulld -c dump-threshold
  threshold of CPU: 65 percent
  threshold of memory: 75 percent
  threshold of connections: 9999 per second

A letter and a name are the same command.

  $ quiet tarnioctl tracehulld -c Z > letter
  $ quiet tarnioctl tracehulld -c dump-timeout > name
  $ cmp letter name
  $ head -2 name
  filter nic-1002672-eth0-kelpco-sfw.2
    dfw.tcp.first_packet: 120
  $ tarnlab log | tail -2 | sed 's/.*trace /trace /; s/bytes .*/bytes/'
  trace Z: dump timeout config() = ok {bytes
  trace Z: dump timeout config() = ok {bytes

A dump that is longer than a piece comes whole; some go into a file of the host.

  $ quiet tarnioctl tracehulld -c dump-filter | grep -c '^filter '
  8
  $ quiet tarnioctl tracehulld -c dump-flow | wc -c | grep -c '^......$'
  1
  $ quiet tarnioctl tracehulld -c save-flow -i /var/run/kelpco/flows | sed 's/[0-9][0-9]*/N/'
  saved N bytes to /var/run/kelpco/flows
  $ cmp <(quiet tarnioctl tracehulld -c L) "$TARNLAB_HOME"/root/var/run/kelpco/flows
  $ run tarnioctl tracehulld -c E -i "$(printf 'p%.0s' {1..256})"
  err| ERROR: Failed: Input file path is longer than 255
  [1]

Nothing is sent after a list.

  $ lines() { tarnlab log | wc -l; }
  $ before=$(lines)
  $ lab tarnioctl tracehulld -c help -c status > list
  [1]
  $ test $before = $(lines)

The daemon is absent, refuses, goes away or takes its time.

  $ fault() { tarnlab fault peer "$@" --count 1; }
  $ fault absent && lab tarnioctl tracehulld -s
  err| ERROR: failed to connect trace ctrl socket: No such file or directory
  [1]
  $ fault refuse && lab tarnioctl tracehulld -s
  err| ERROR: failed to connect trace ctrl socket: Connection refused
  [1]
  $ fault close && lab tarnioctl tracehulld -s
  err| ERROR: failed to send trace ctrl command: Broken pipe
  [1]
  $ fault cut 12 && lab tarnioctl tracehulld -s; echo
  tracing: on
  
  $ fault bytes && lab tarnioctl tracehulld -s | tail -1
  filters: 8, agents: 3
  $ fault slow 20 && lab tarnioctl tracehulld -s | tail -1
  filters: 8, agents: 3
  $ fault endless && tarnlab run tarnioctl tracehulld -s | head -1
  tracing: on
  $ fault silent && waits tarnioctl tracehulld -s
  [143]
  $ tarnlab run tarnioctl tracehulld -s > /dev/full
  ERROR: failed to print data: 0
  $ tarnlab fault
  no faults

A path that is no socket.

  $ rm "$TARNLAB_HOME"/root/var/run/kelpco/hulld_trace
  $ echo text > "$TARNLAB_HOME"/root/var/run/kelpco/hulld_trace
  $ lab tarnioctl tracehulld -s
  err| ERROR: failed to connect trace ctrl socket: Connection refused
  [1]

Without the socket there is no daemon. Tracing is stopped, which can be repeated.

  $ rm "$TARNLAB_HOME"/root/var/run/kelpco/hulld_trace
  $ lab tarnioctl tracehulld -q
  err| ERROR: failed to connect trace ctrl socket: No such file or directory
  [1]
  $ tarnlab reset > made
  $ lab tarnioctl tracehulld -e
  hulld trace is scheduled to start shortly. please check hulld.log to confirm.
  $ lab tarnioctl tracehulld -q
  tracing is stopped
  $ lab tarnioctl tracehulld -c exit
  tracing was not on

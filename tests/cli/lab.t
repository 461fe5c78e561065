The program that makes labs and runs programs in them.

  $ . "$TESTDIR/setup"

  $ run tarnlab --help
  Usage: tarnlab [--home FOLDER] COMMAND [ARGUMENT...]
  
  A model of the kernel firewall for programs that are run in it.
  
    init     make a lab: a fresh host with a few machines and their filters
    run      run a program in the lab
    shell    start a shell in the lab
    reset    make the lab's host fresh again
    machines list the machines of the host
    show     show what the host holds
    log      show what was asked of the devices and peers
    fault    order failures, or list or clear them
  
    --home FOLDER  the lab's folder; without it the one that TARNLAB_HOME names, or
                   .tarnlab in the current folder
    --help         this text; "tarnlab COMMAND --help" tells more
  $ run tarnlab
  err| tarnlab: a command is missing
  err| Usage: tarnlab [--home FOLDER] COMMAND [ARGUMENT...]
  err| 
  err| A model of the kernel firewall for programs that are run in it.
  err| 
  err|   init     make a lab: a fresh host with a few machines and their filters
  err|   run      run a program in the lab
  err|   shell    start a shell in the lab
  err|   reset    make the lab's host fresh again
  err|   machines list the machines of the host
  err|   show     show what the host holds
  err|   log      show what was asked of the devices and peers
  err|   fault    order failures, or list or clear them
  err| 
  err|   --home FOLDER  the lab's folder; without it the one that TARNLAB_HOME names, or
  err|                  .tarnlab in the current folder
  err|   --help         this text; "tarnlab COMMAND --help" tells more
  [2]
  $ run tarnlab frobnicate
  err| tarnlab: unknown command frobnicate
  err| Usage: tarnlab [--home FOLDER] COMMAND [ARGUMENT...]
  err| 
  err| A model of the kernel firewall for programs that are run in it.
  err| 
  err|   init     make a lab: a fresh host with a few machines and their filters
  err|   run      run a program in the lab
  err|   shell    start a shell in the lab
  err|   reset    make the lab's host fresh again
  err|   machines list the machines of the host
  err|   show     show what the host holds
  err|   log      show what was asked of the devices and peers
  err|   fault    order failures, or list or clear them
  err| 
  err|   --home FOLDER  the lab's folder; without it the one that TARNLAB_HOME names, or
  err|                  .tarnlab in the current folder
  err|   --help         this text; "tarnlab COMMAND --help" tells more
  [2]
  $ run tarnlab --home
  err| tarnlab: --home needs a folder
  err| Usage: tarnlab [--home FOLDER] COMMAND [ARGUMENT...]
  err| 
  err| A model of the kernel firewall for programs that are run in it.
  err| 
  err|   init     make a lab: a fresh host with a few machines and their filters
  err|   run      run a program in the lab
  err|   shell    start a shell in the lab
  err|   reset    make the lab's host fresh again
  err|   machines list the machines of the host
  err|   show     show what the host holds
  err|   log      show what was asked of the devices and peers
  err|   fault    order failures, or list or clear them
  err| 
  err|   --home FOLDER  the lab's folder; without it the one that TARNLAB_HOME names, or
  err|                  .tarnlab in the current folder
  err|   --help         this text; "tarnlab COMMAND --help" tells more
  [2]
  $ run tarnlab --bad init
  err| tarnlab: unknown option --bad
  err| Usage: tarnlab [--home FOLDER] COMMAND [ARGUMENT...]
  err| 
  err| A model of the kernel firewall for programs that are run in it.
  err| 
  err|   init     make a lab: a fresh host with a few machines and their filters
  err|   run      run a program in the lab
  err|   shell    start a shell in the lab
  err|   reset    make the lab's host fresh again
  err|   machines list the machines of the host
  err|   show     show what the host holds
  err|   log      show what was asked of the devices and peers
  err|   fault    order failures, or list or clear them
  err| 
  err|   --home FOLDER  the lab's folder; without it the one that TARNLAB_HOME names, or
  err|                  .tarnlab in the current folder
  err|   --help         this text; "tarnlab COMMAND --help" tells more
  [2]

Without a lab

  $ run tarnlab --home nowhere run true
  err| tarnlab: no lab at nowhere: make one with "tarnlab init"
  [125]
  $ run tarnlab --home nowhere shell
  err| tarnlab: no lab at nowhere: make one with "tarnlab init"
  [125]
  $ run tarnlab --home nowhere show
  err| tarnlab: no lab at nowhere: make one with "tarnlab init"
  [1]
  $ run tarnlab --home nowhere log
  err| tarnlab: no lab at nowhere: make one with "tarnlab init"
  [1]
  $ run tarnlab --home nowhere fault
  err| tarnlab: no lab at nowhere: make one with "tarnlab init"
  [1]
  $ run tarnlab --home nowhere reset
  err| tarnlab: no lab at nowhere: make one with "tarnlab init"
  [1]
  $ preload=$(dirname "$(command -v tarnlab)")/libtarnlab_preload.so
  $ run env TARNLAB_HOME=nowhere LD_PRELOAD=$preload:$SYSLOG_SHIM tarnioctl getfilters
  err| ERROR: there is no filter for agent 
  log| tarnioctl <84> tarnfw: TarnFWIoctl:FW_Ioctl():N error 12: cannot open device /dev/brq-tarn: 2\n
  [1]

Making one

  $ run tarnlab init --help
  Usage: tarnlab init [--machines N] [--memory BYTES] [--flows N]
                      [--firewall-off] [--bare]
  
  Makes a lab in the folder that TARNLAB_HOME names, by default .tarnlab in the
  current folder. There must be none yet: "tarnlab reset" makes one fresh again.
  
    --machines N    a host of N like machines (1 to 100000) in place of the usual one
    --memory BYTES  the largest rule set or address set that the host has memory for;
                    1073741824 without this option
    --flows N       N flows in every filter (0 to 1000000, 10000000 in all); without it,
                    some hundred in the usual host's and none in those of --machines
    --firewall-off  a host whose distributed firewall is disabled: its include table
                    does not have every virtual NIC
    --bare          machines only, without agents and filters
    --help          this text
  $ run tarnlab init --machines
  err| tarnlab: init: --machines needs a number
  err| Try "tarnlab init --help".
  [2]
  $ run tarnlab init --machines 0
  err| tarnlab: init: --machines: bad number 0
  err| Try "tarnlab init --help".
  [2]
  $ run tarnlab init --machines 100001
  err| tarnlab: init: --machines: bad number 100001
  err| Try "tarnlab init --help".
  [2]
  $ run tarnlab init --memory 12x
  err| tarnlab: init: --memory: bad number 12x
  err| Try "tarnlab init --help".
  [2]
  $ run tarnlab init --flows 1000001
  err| tarnlab: init: --flows: bad number 1000001
  err| Try "tarnlab init --help".
  [2]
  $ run tarnlab init --machines 2000 --flows 5001
  err| tarnlab: init: --flows: more than 10000000 flows for 2000 filters
  err| Try "tarnlab init --help".
  [2]
  $ tarnlab --home few init --flows 7 > made
  $ tarnlab --home few show nic-1003120-eth0-kelpco-sfw.2
  filter nic-1003120-eth0-kelpco-sfw.2
    agent kelpco-sfw, vnic 0, slow path 0, vif 8d0c7a10-55f4-4c1e-9b02-000070120000
    flows: 3 active, 2 inactive, 2 dropped
    export.version: 1100
    names.live: 0
    names.live-seconds: 360
  $ tarnlab --home none init --flows 0 > made
  $ tarnlab --home none show nic-1002672-eth0-kelpco-sfw.2
  filter nic-1002672-eth0-kelpco-sfw.2
    agent kelpco-sfw, vnic 0, slow path 1, vif 8d0c7a10-55f4-4c1e-9b02-0000632a0000
  $ tarnlab --home fleet init --machines 2 > made
  $ tarnlab --home fleet show nic-1000001-eth0-kelpco-sfw.2
  filter nic-1000001-eth0-kelpco-sfw.2
    agent kelpco-sfw, vnic 0, slow path 1, vif 8d0c7a10-55f4-4c1e-9b02-000000010000
    export.version: 1100
    names.live: 1
  $ run tarnlab init extra
  err| tarnlab: init: unknown argument extra
  err| Try "tarnlab init --help".
  [2]
  $ tarnlab init > made
  $ run tarnlab init > again
  [1]
  $ sed "s|$TARNLAB_HOME|HOME|" again
  err| tarnlab: there is a lab at HOME already: "tarnlab reset" makes it fresh again

What is cut short is no lab, and leaves nothing in the next one.

  $ (trap '' XFSZ; ulimit -f 64; run tarnlab --home cut init)
  err| tarnlab: cannot write cut/next: File too large
  [1]
  $ run tarnlab --home cut show
  err| tarnlab: no lab at cut: make one with "tarnlab init"
  [1]
  $ [ -d cut/filters ]
  $ tarnlab --home cut init --bare > made
  $ tarnlab --home other init --bare > made
  $ diff -r cut other | grep '^Only'
  [1]

Running

  $ run tarnlab run --help
  Usage: tarnlab run COMMAND [ARGUMENT...]
  
  Runs the program, and all programs that it starts, with the lab in the place of the
  control devices. Ends with the program's exit status, with 127 when there is no such
  program, 126 when it cannot be run, 125 when there is no lab.
  
    --help          this text
  $ run tarnlab run
  err| tarnlab: run: a program is missing
  err| Try "tarnlab run --help".
  [125]
  $ run tarnlab run no-such-program
  err| tarnlab: cannot find the program no-such-program
  [127]
  $ run tarnlab run ''
  err| tarnlab: cannot find the program 
  [127]
  $ mkdir path path/inner
  $ PATH=$PWD/path:$PATH run tarnlab run inner
  err| tarnlab: cannot find the program inner
  [127]
  $ run tarnlab run echo --help -h
  --help -h
  $ echo 'exit 3' > script
  $ chmod +x script
  $ run tarnlab run ./script
  [3]
  $ mkdir folder
  $ run tarnlab run ./folder
  err| tarnlab: cannot run ./folder: Permission denied
  [126]
  $ run tarnlab run sh -c 'exit 7'
  [7]
  $ run tarnlab run -- sh -c 'exit 8'
  [8]
  $ lab=$(command -v tarnlab); for program in tarnioctl tarnpolicy; do
  >   PATH=/usr/bin:/bin "$lab" run sh -c "command -v $program > /dev/null && echo found $program"
  > done
  found tarnioctl
  found tarnpolicy
  $ SHELL=/bin/true run tarnlab shell
  $ run tarnlab shell extra
  err| tarnlab: shell: takes no arguments
  err| Try "tarnlab shell --help".
  [125]

Machines

  $ run tarnlab machines --help
  Usage: tarnlab machines
  
  Lists the machines of the host, each with its world id and its uuid. A program that is
  run in the lab gets this list from /bin/tarn_vm_list.sh.
  
    --help          this text
  $ run tarnlab machines
  1002672:50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26
  1002731:50 2e 1f 3a c2 1a 63 2b-4a e1 00 50 56 99 b6 2d
  1003044:50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77
  1003120:50 2e 1f 3a c2 1a 70 12-4a e1 00 50 56 99 10 7e
  998214:50 2e 1f 3a c2 1a 04 51-4a e1 00 50 56 99 1e 37
  $ run tarnlab machines 7
  err| tarnlab: machines: takes no arguments
  err| Try "tarnlab machines --help".
  [2]
  $ tarnlab --home bare init --bare
  Made a lab with 0 filters at bare.
  $ tarnlab --home bare show
  lab bare
    the distributed firewall is disabled
  $ tarnlab --home bare machines | wc -l
  5
  $ tarnlab --home bare run /bin/tarn_vm_list.sh | tail -1
  998214:50 2e 1f 3a c2 1a 04 51-4a e1 00 50 56 99 1e 37
  $ tarnlab --home bare run sh -c '/bin/tarn_vm_list.sh | grep -c :'
  5
  $ tarnlab --home barefleet init --bare --machines 2
  Made a lab with 0 filters at barefleet.
  $ tarnlab --home barefleet machines
  1000000:50 2e 1f 3a c2 1a 00 00-4a e1 00 50 56 99 00 00
  1000001:50 2e 1f 3a c2 1a 00 01-4a e1 00 50 56 99 00 07
  $ run tarnlab --home nowhere machines
  err| tarnlab: no lab at nowhere: make one with "tarnlab init"
  [1]

Showing

  $ run tarnlab show --help
  Usage: tarnlab show [FILTER]
         tarnlab show --rules FILTER [RULESET]
         tarnlab show --addrsets FILTER [ADDRSET]
         tarnlab show --tables [FILTER|AGENT [TABLE]]
         tarnlab show --peers
  
  Shows the host's agents and filters, what each of these holds, and the faults in force;
  with a FILTER, that one only. An agent's shared address sets are shown and named as the
  filter shared-addrset-filter-AGENT.
  
    --rules         the rules of every rule set, or of the one, as the configuration
                    language writes them
    --addrsets      the addresses and elements of every address set and container, or
                    of the one
    --tables        what the filter has learnt or was given, table by table, or of the one:
                    attributes, inspections, discovered, names, service-profile, users; of an
                    agent, the tables include and exclude; of nothing, those of the host
    --peers         what the host daemon and the inspection process are set to, how they
                    fail, and the host's files
    --help          this text
  $ tarnlab show | sed "s|$TARNLAB_HOME|HOME|"
  lab HOME
    service-table: 5
    nsh-table: 5
    proxy-table: 4
    service-machines: 2
    service-instances: 5
  agent kelpco-sfw: 2 included, 0 excluded
  agent kelpco-inspect: 4 included, 2 excluded
  agent kelpco-spoof.guard: 1 included, 0 excluded
  filter nic-1002672-eth0-kelpco-sfw.2
    agent kelpco-sfw, vnic 0, slow path 1, vif 8d0c7a10-55f4-4c1e-9b02-0000632a0000
    flows: 244 active, 97 inactive, 96 dropped, 16 L2 pass, 16 L2 drop, 1 of other kinds
  filter nic-1002672-eth0-kelpco-inspect.4
    agent kelpco-inspect, vnic 0, slow path 0, vif 8d0c7a10-55f4-4c1e-9b02-0000632a0000
    flows: 246 active, 97 inactive, 96 dropped, 16 L2 pass, 16 L2 drop, 1 of other kinds
    export.version: 1100
    names.live: 1
  filter nic-1002731-eth0-kelpco-sfw.2
    agent kelpco-sfw, vnic 0, slow path 1, vif 8d0c7a10-55f4-4c1e-9b02-0000632b0000
    flows: 264 active, 102 inactive, 100 dropped, 16 L2 pass, 16 L2 drop, 1 of other kinds
    names.live: 0
    names.live-seconds: 180
  filter nic-1003044-eth0-kelpco-sfw.2
    agent kelpco-sfw, vnic 0, slow path 2, vif 8d0c7a10-55f4-4c1e-9b02-000070110000
    flows: 208 active, 85 inactive, 84 dropped, 12 L2 pass, 12 L2 drop, 1 of other kinds
    export.version: 1100
  filter nic-1003044-eth1-kelpco-sfw.2
    agent kelpco-sfw, vnic 1, slow path 2, vif 8d0c7a10-55f4-4c1e-9b02-000070110001
    flows: 208 active, 85 inactive, 84 dropped, 12 L2 pass, 12 L2 drop, 1 of other kinds
    names.live: 1
    flow-exclusion.definitions: 6 definitions
      not source mac 00:50:56:99:10:78 mask ff:ff:ff:ff:ff:ff, destination mac 01:00:5e:00:00:00 mask ff:ff:ff:80:00:00, ethertypes 0x88cc 0x8906
      source 10.20.7.0 mask 255.255.255.0, source port 1024 to 65535, destination 10.20.7.16 to 10.20.7.23, destination port 2049, protocols 6 17
      source fe80::1 to fe80::1f, not destination fd00:20:7:: mask ffff:ffff:ffff::, not protocols 1 58 253
      not source vnic 502e1f3ac21a70114ae1005056991077 index 1, destination machine 502e1f3ac21a70114ae1005056991077
      source machine 502e1f3ac21a70114ae1005056991077, not destination vnic 502e1f3ac21a70114ae1005056991077 index 1
      not destination port 3260 to 3261, protocols 6, not ethertypes 0x0800
  filter nic-1003120-eth0-kelpco-sfw.2
    agent kelpco-sfw, vnic 0, slow path 0, vif 8d0c7a10-55f4-4c1e-9b02-000070120000
    export.version: 1100
    names.live: 0
    names.live-seconds: 360
  filter nic-998214-eth0-kelpco-sfw.2
    agent kelpco-sfw, vnic 0, slow path 3
    flows: 219 active, 97 inactive, 96 dropped, 16 L2 pass, 15 L2 drop, 1 of other kinds
    flood.udp: 0
    flood.icmp: 0
    flood.tcp: 0
    flood.other: 0
    flood.syncache: off
    flood.rst-spoofing: off
    kif.fast-path: off
    spoofguard.addresses: ip 10.20.9.14, ip fd00:20:9::14, addrset backup-addresses
  filter nic-998214-eth0-kelpco-spoof.guard.1
    agent kelpco-spoof.guard, vnic 0, slow path 0
    flows: 219 active, 97 inactive, 96 dropped, 15 L2 pass, 15 L2 drop, 1 of other kinds
    export.version: 1100
    names.live: 1
    flood.other: 0
    flood.rst-spoofing: off
    kif.fast-path: off
    spoof guard is on
    spoofguard.addresses: ip 10.20.9.14, ip fd00:20:9::14, addrset backup-addresses
    addrset backup-addresses: 2 addresses, generation 1
  $ run tarnlab show nowhere
  err| tarnlab: there is no filter nowhere
  [1]
  $ run tarnlab show a b
  err| tarnlab: show: takes one filter
  err| Try "tarnlab show --help".
  [2]
  $ run tarnlab show --frob
  err| tarnlab: show: unknown argument --frob
  err| Try "tarnlab show --help".
  [2]
  $ run tarnlab show --rules
  err| tarnlab: show: --rules needs a filter and takes the name of a set
  err| Try "tarnlab show --help".
  [2]
  $ run tarnlab show --rules nic-1002672-eth0-kelpco-sfw.2
  $ run tarnlab show --rules nic-1002672-eth0-kelpco-sfw.2 web
  err| tarnlab: there is no rule set web
  [1]
  $ run tarnlab show --addrsets nic-1002672-eth0-kelpco-sfw.2 web
  err| tarnlab: there is no address set web
  [1]
  $ run tarnlab show --tables nic-1002672-eth0-kelpco-sfw.2
  inspections {
    id 1001, state 0
    id 1002, state 1
    id 1003, state 2
    id 1004, state 3
    id 1005, state 4
  }
  discovered {
    adds 19, deletes 12, updated 5400
    ip 10.20.1.40 vlan 101, mac 00:50:56:99:2b:26, source 1
    ip 10.20.1.41 vlan 102, mac 00:50:56:99:2b:27, source 2
    ip 10.20.1.42 vlan 103, mac 00:50:56:99:2b:28, source 2
    ip 10.20.1.43 vlan 104, mac 00:50:56:99:2b:29, source 3
    ip fd00:20:1::40 vlan 105, mac 00:50:56:99:2b:26, source 3
    ip fe80::250:56ff:fe99:2b27 vlan 106, mac 00:50:56:99:2b:27, source 4
    ip fd00:20:1::42 vlan 107, mac 00:50:56:99:2b:28, source 1
  }
  names {
    ip 10.20.5.10 since 120, for 300 seconds
      6f1c2b90-4d3e-4a57-8c61-000000000001 shop1.kelpco.example
    ip 10.20.5.11 since 260, stays
      6f1c2b90-4d3e-4a57-8c61-000000000002 shop2.kelpco.example
      6f1c2b90-4d3e-4a57-8c61-000000000003 shop3.kelpco.example
    ip 10.20.5.12 since 380, for 60 seconds
    ip fd00:20:5::10 since 540, for 86400 seconds
      6f1c2b90-4d3e-4a57-8c61-000000000004 shop4.kelpco.example
    ip fd00:20:5::11 since 660, stays
      6f1c2b90-4d3e-4a57-8c61-000000000005 shop5.kelpco.example
      6f1c2b90-4d3e-4a57-8c61-000000000006 shop6.kelpco.example
      6f1c2b90-4d3e-4a57-8c61-000000000007 shop7.kelpco.example
  }
  users {
    S-1-5-21-1004336348-1177238915-1101 active, 7 connections
      S-1-5-21-1004336348-1177238915-513
      S-1-5-21-1004336348-1177238915-514
      S-1-5-21-1004336348-1177238915-515
    S-1-5-21-1004336348-1177238915-1102 inactive, 0 connections
      S-1-5-21-1004336348-1177238915-523
      S-1-5-21-1004336348-1177238915-524
    S-1-5-21-1004336348-1177238915-1103 active, 9 connections
      S-1-5-21-1004336348-1177238915-533
    S-1-5-21-1004336348-1177238915-1104 inactive, 0 connections
  }
  $ run tarnlab show --tables nic-1002731-eth0-kelpco-sfw.2
  $ run tarnlab show --tables nic-1002672-eth0-kelpco-sfw.2 nothing
  err| tarnlab: there is no table nothing
  [1]
  $ run tarnlab show --tables kelpco-inspect
  include {
    vnic 502e1f3a-c21a-632a-4ae1-00505699b626.000, slot 4
    dvs 502e7c11-903f-4b5a-8c21-d40e6b771f03 port 253870
    dvs 502e7c11-903f-4b5a-8c21-d40e6b771f2c
    switch office
  }
  exclude {
    switch office
    vnic 502e1f3a-c21a-632b-4ae1-00505699b62d.000
  }
  $ run tarnlab show --tables kelpco-sfw include
  include {
    vnic 502e1f3a-c21a-632a-4ae1-00505699b626.000, slot 2
    host, slot 2
  }
  $ run tarnlab show --tables kelpco-sfw exclude
  $ run tarnlab show --tables kelpco-sfw users
  err| tarnlab: there is no table users
  [1]
  $ run tarnlab show --tables nic-1002672-eth0-kelpco-sfw.2 users more
  err| tarnlab: show: --tables needs a filter and takes the name of a table
  err| Try "tarnlab show --help".
  [2]
  $ run tarnlab show --rules nowhere
  err| tarnlab: there is no filter nowhere
  [1]

The log

  $ run tarnlab log --help
  Usage: tarnlab log [-s] [-l] [-v] [-x] [-n N]
  
  Shows every message, direct request and exchange with a peer so far, one line each: when,
  which program, device and request number, what was asked, and the answer.
  
    -s              short: without when and which program
    -l              with what programs wrote to the system log, in order with the rest
    -v              with the rules, addresses, elements and names in it
    -x              with the bytes that were sent and answered
    -n N            only the last N
    --help          this text
  $ run tarnlab log

Each line begins with the time and with the process, by the name that the system has for it: that of
valgrind when valgrind runs the program.

  $ tarnlab run tarnioctl getfilters -n
  Total number of kernel filters: 8
  $ tarnlab log | sed -E "s/^[0-9-]+ [0-9:.]+ (tarnioctl|memcheck-amd64-)\[[0-9]+\]/WHEN WHO/"
  WHEN WHO firewall 20: number of filters of every agent = ok {count 8}
  $ run tarnlab log -s -n 1
  firewall 20: number of filters of every agent = ok {count 8}
  $ run tarnlab log -n 0
  $ run tarnlab log -n
  err| tarnlab: log: -n needs a number
  err| Try "tarnlab log --help".
  [2]
  $ run tarnlab log -n x
  err| tarnlab: log: bad number x
  err| Try "tarnlab log --help".
  [2]
  $ run tarnlab log -q
  err| tarnlab: log: unknown argument -q
  err| Try "tarnlab log --help".
  [2]

Output that is lost

  $ for command in "log" "show" "fault" "--help" "log --help"; do
  >   tarnlab $command > /dev/full
  >   echo "status $?"
  > done
  tarnlab: failed to write output: No space left on device
  status 1
  tarnlab: failed to write output: No space left on device
  status 1
  tarnlab: failed to write output: No space left on device
  status 1
  tarnlab: failed to write output: No space left on device
  status 1
  tarnlab: failed to write output: No space left on device
  status 1
  $ tarnlab show >&-
  tarnlab: failed to write output: Bad file descriptor
  [1]
  $ tarnlab show >&- 2>&-
  [1]
  $ (trap '' PIPE; tarnlab --home big init --machines 3000 > made; tarnlab --home big show; echo "status $?" >&2) | true
  tarnlab: failed to write output: Broken pipe
  status 1
  $ tarnlab fault status 26 --frob 1 > /dev/full
  tarnlab: fault: unknown argument --frob
  Try "tarnlab fault --help".
  [2]
  $ tarnlab fault clear >&-
  $ tarnlab show <&- > shown

A program that is run has its own standard output and its own status.

  $ tarnlab run cat shown 2>/dev/null > /dev/full
  [1]
  $ tarnlab run true > /dev/full
  $ tarnlab run true >&-
  $ tarnlab run sh -c 'exit 5' >&-
  [5]
  $ tarnlab run sh -c 'for fd in 0 1 2; do [ -e /proc/self/fd/$fd ] && echo $fd; done > fds; true' <&- >&- 2>&-
  $ cat fds
  1

Faults

  $ run tarnlab fault --help
  Usage: tarnlab fault
         tarnlab fault status S [--after N] [--count N] [--only COMMAND]
         tarnlab fault errno E [--after N] [--count N] [--only REQUEST]
                       [--device DEVICE]
         tarnlab fault delay MS [--after N] [--count N]
         tarnlab fault signal SIGNAL [--after N] [--count N]
         tarnlab fault absent [DEVICE...]
         tarnlab fault peer WHAT [VALUE] [--count N] [--peer PEER]
         tarnlab fault clear
  
  Without an argument, lists the faults in force. Otherwise:
  
    status S        messages are not carried out but answered with status S, a number or
                    a name like no-ruleset
    errno E         requests fail with the errno E, a number or a name like ENOMEM
    delay MS        requests are held up for so many milliseconds
    signal SIGNAL   programs get the signal with the answer to a request, a number or a
                    name like SIGINT
    absent          the devices cannot be opened; without a DEVICE, the firewall
    peer WHAT       the processes that programs talk to over sockets: absent, refuse, close
                    (at once), cut BYTES (of the answer), slow MS, bytes (one by one),
                    length [+-]N (announced), unterminated, silent, endless
    clear           no faults from now on
    --after N       lets N of those that it is for pass first
    --count N       only the next N; without it, until cleared
    --only COMMAND  only messages with this command, by name or number
    --only REQUEST  only this request number
    --device DEVICE firewall, tables or insertion
    --peer PEER     trace or inspection; without it, both
    --help          this text
  $ run tarnlab fault
  no faults
  $ run tarnlab fault status
  err| tarnlab: fault: status needs a value
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault status x
  err| tarnlab: fault: bad status x
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault status no-such-status
  err| tarnlab: fault: bad status no-such-status
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault status 26 --count 0
  err| tarnlab: fault: bad count 0
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault status 26 --count
  err| tarnlab: fault: --count needs a value
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault status 26 --only NoSuchCommand
  err| tarnlab: fault: unknown command NoSuchCommand
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault status 26 --device firewall
  err| tarnlab: fault: --device does not go with this fault
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault status 26 --frob 1
  err| tarnlab: fault: unknown argument --frob
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault errno ENOSUCH
  err| tarnlab: fault: bad errno ENOSUCH
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault errno 0
  err| tarnlab: fault: bad errno 0
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault errno EIO --device nowhere
  err| tarnlab: fault: unknown device nowhere
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault errno EIO --only x
  err| tarnlab: fault: bad request number x
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault delay 3600001
  err| tarnlab: fault: bad delay 3600001
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault signal SIGNONE
  err| tarnlab: fault: bad signal SIGNONE
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault signal 65 --only 20
  err| tarnlab: fault: bad signal 65
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault absent nowhere
  err| tarnlab: fault: unknown device nowhere
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault frob
  err| tarnlab: fault: unknown fault frob
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault clear now
  err| tarnlab: fault: clear takes no arguments
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault
  no faults
  $ tarnlab fault status bad-state --only getruleofruleset --count 3
  $ tarnlab fault errno 28 --device /dev/weirgatetbl --only 3
  $ tarnlab fault absent
  $ tarnlab fault absent firewall
  $ run tarnlab fault
  messages are answered with status 26, those with command 10 only, the next 3
  requests fail with ENOSPC on the device tables, request 3 only, until cleared
  the device firewall is absent
  $ run tarnlab run tarnioctl getfilters -n
  Total number of kernel filters: 0
  log| tarnioctl <84> tarnfw: TarnFWIoctl:FW_Ioctl():N error 12: cannot open device /dev/brq-tarn: 2\n
  $ run tarnlab fault clear
  $ run tarnlab fault
  no faults

A signal comes with the answer, and what was asked is done

  $ tarnlab fault signal SIGTERM --after 1 --count 1
  $ tarnlab fault signal 62
  $ tarnlab fault
  programs get SIGTERM with the answer to a request, after 1 more, the next 1
  programs get signal 62 with the answer to a request, until cleared
  $ tarnlab fault clear
  $ tarnlab fault signal SIGTERM --after 1 --count 1
  $ tarnlab run tarnioctl getfilters -n
  Total number of kernel filters: 8
  $ { tarnlab run tarnioctl setfailpolicy -f nic-998214-eth0-kelpco-sfw.2 -p 1; } 2> /dev/null
  [143]
  $ tarnlab run tarnioctl getfailpolicy -f nic-998214-eth0-kelpco-sfw.2
  filter fail policy: fail close
  $ tarnlab fault
  no faults

Help, wherever it is asked for

  $ run tarnlab fault status 26 --help | head -1
  Usage: tarnlab fault
  $ run tarnlab log -s -h | head -1
  Usage: tarnlab log [-s] [-l] [-v] [-x] [-n N]
  $ run tarnlab run -h | head -1
  Usage: tarnlab run COMMAND [ARGUMENT...]
  $ run tarnlab fault
  no faults

Fresh again

  $ tarnlab fault delay 1
  $ tarnlab run tarnioctl setfloodconfig -f nic-998214-eth0-kelpco-spoof.guard.1 -o 5 -u 6
  $ run tarnlab reset now
  err| tarnlab: reset: takes no arguments
  err| Try "tarnlab reset --help".
  [2]
  $ run tarnlab reset
  $ tarnlab show nic-998214-eth0-kelpco-spoof.guard.1
  filter nic-998214-eth0-kelpco-spoof.guard.1
    agent kelpco-spoof.guard, vnic 0, slow path 0
    flows: 219 active, 97 inactive, 96 dropped, 15 L2 pass, 15 L2 drop, 1 of other kinds
    export.version: 1100
    names.live: 1
    flood.other: 0
    flood.rst-spoofing: off
    kif.fast-path: off
    spoof guard is on
    spoofguard.addresses: ip 10.20.9.14, ip fd00:20:9::14, addrset backup-addresses
    addrset backup-addresses: 2 addresses, generation 1
  $ run tarnlab fault
  no faults
  $ run tarnlab log

The host's processes that programs talk to over sockets, as the lab has them, and how they fail on
order.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made

What they are set to.

  $ run tarnlab show --peers | tee before
  peer trace at /var/run/kelpco/hulld_trace
    tracing: off
    process log level: 3
    library log level: 2
    L2 rule optimization: on
    L3 rule optimization: on
    shared addrset: off
    clean protobuf: off
    addrset aggregation timeout: 5 seconds
    addrset aggregation interval: 10 seconds
    filters: 8, agents: 3
  peer inspection at /var/run/kelpco/vdpi_stats_channel
    tracing: off
    names: 7, 0 of them loaded
  $ quiet tarnioctl tracehulld -e
  hulld trace is scheduled to start shortly. please check hulld.log to confirm.
  $ quiet tarnioctl tracehulld -c lib-log -m parser -v7
  library log level of parser is 7
  $ quiet tarnioctl tracehulld -c save-filter -i /tmp/filters
  saved 6928 bytes to /tmp/filters
  $ quiet tarnioctl getdpiinfo -e
  $ tarnlab show --peers | grep -vxFf before
    tracing: on
    library log level: 2, parser 7
    tracing: on
  file /etc/kelpco/hulld/enable_trace: 0 bytes
  file /tmp/filters: 6928 bytes
  $ tarnlab show | sed -n 2,4p
    the inspection process traces
    hulld.library-components: parser 7
    service-table: 5
  $ run tarnlab show --peers all
  err| tarnlab: show: --peers takes no filter
  err| Try "tarnlab show --help".
  [2]

What programs find in the host's folders is in the lab's, and nothing is made outside of it.

  $ tarnlab run ls /var/run/kelpco /etc/kelpco/hulld
  /etc/kelpco/hulld:
  enable_trace
  
  /var/run/kelpco:
  hulld_trace
  vdpi_stats_channel
  $ tarnlab run test -S /var/run/kelpco/hulld_trace
  $ tarnlab run sh -c 'echo text > /etc/kelpco/note; cat /etc/kelpco/note; rm /etc/kelpco/note'
  text
  $ (cd "$TARNLAB_HOME/root" && find . -type f | LC_ALL=C sort)
  ./etc/kelpco/hulld/enable_trace
  ./tmp/filters
  $ ls -d /etc/kelpco /var/run/kelpco 2>&1 | sed 's/^ls: //'
  cannot access '/etc/kelpco': No such file or directory
  cannot access '/var/run/kelpco': No such file or directory

What was asked, with the fields of the request, and what was answered.

  $ tarnlab log -s
  trace D: set library log level(level "7", component 4) = ok {bytes 33}
  trace I: save binary filter config(file "/tmp/filters") = ok {bytes 33}
  inspection 66: enable tracing = ok
  $ quiet tarnioctl tracehulld -c dump-threshold
  threshold of CPU: 80 percent
  threshold of memory: 75 percent
  threshold of connections: 5000 per second
  $ tarnlab log -s -v -n 1
  trace N: dump threshold config() = ok {bytes 103}
      threshold of CPU: 80 percent
      threshold of memory: 75 percent
      threshold of connections: 5000 per second
  $ quiet tarnioctl getdpiinfo -m nobody.example
  
  
  no uuid matches nobody.example
  $ tarnlab log -s -v -x -n 1
  inspection 71: get uuids matching FQDN(name "nobody.example") = ok {bytes 36}
      no uuid matches nobody.example
      sent, 27 bytes
      000000  04 00 00 00 47 00 00 00 0f 00 00 00 6e 6f 62 6f
      000010  64 79 2e 65 78 61 6d 70 6c 65
      zeros to the end
      answered, 36 bytes
      000000  20 00 00 00 6e 6f 20 75 75 69 64 20 6d 61 74 63
      000010  68 65 73 20 6e 6f 62 6f 64 79 2e 65 78 61 6d 70
      000020  6c 65 0a
      zeros to the end

Nobody there.

  $ tarnlab fault peer absent --count 2
  $ tarnlab fault
  every peer is absent, the next 2
  $ lab tarnioctl tracehulld -s
  err| ERROR: failed to connect trace ctrl socket: No such file or directory
  [1]
  $ lab tarnioctl getdpiinfo -s
  
  vDPI runtime stats
  err| ERROR: failed to connect to vdpi stats socket: No such file or directory
  [1]
  $ tarnlab fault
  no faults
  $ tarnlab fault peer refuse --peer inspection
  $ lab tarnioctl getdpiinfo -m name
  
  
  err| ERROR: failed to connect to vdpi stats socket: Connection refused
  [1]
  $ quiet tarnioctl tracehulld -s | head -1
  tracing: on
  $ tarnlab fault clear

A peer that goes away early: before the first byte, before its answer, in the middle of it.

  $ tarnlab fault peer close --count 2
  $ lab tarnioctl tracehulld -s
  err| ERROR: failed to send trace ctrl command: Broken pipe
  [1]
  $ lab tarnioctl getdpiinfo -s
  
  vDPI runtime stats
  err| ERROR: failed to send length of get stats command: Broken pipe
  [1]
  $ tarnlab fault peer cut 0 --peer trace --count 1
  $ lab tarnioctl tracehulld -s
  $ tarnlab fault peer cut 11 --peer trace --count 1
  $ lab tarnioctl tracehulld -s; echo
  tracing: on
  $ tarnlab fault peer cut 0 --peer inspection --count 1
  $ lab tarnioctl getdpiinfo -s; echo
  
  vDPI runtime stats
  err| ERROR: Failed to receive the length of dpi stats
  $ tarnlab fault peer cut 30 --peer inspection --count 1
  $ lab tarnioctl getdpiinfo -s; echo
  
  vDPI runtime stats
  err| ERROR: failed to get stats from vdpi

Slowly, and byte by byte: the answer is the same.

  $ tarnlab fault peer slow 20
  $ tarnlab fault peer bytes --count 1
  $ tarnlab fault
  every peer waits 20 ms before each piece of its answer, until cleared
  every peer answers byte by byte, the next 1
  $ quiet tarnioctl getdpiinfo -m shop1.kelpco.example
  
  
  6f1c2b90-4d3e-4a57-8c61-000000000001 shop1.kelpco.example
  $ tarnlab fault clear

Lengths that lie, and a text without its end.

  $ tarnlab fault peer length 0 --count 1
  $ quiet tarnioctl getdpiinfo -m n; echo
  
  
  
  $ tarnlab fault peer length 0xffffffff --count 1
  $ quiet tarnioctl getdpiinfo -m n; echo
  
  
  err| ERROR: Failed to allocate buffer to recv response
  $ tarnlab fault peer length -5 --count 1
  $ quiet tarnioctl getdpiinfo -m n; echo
  
  
  no uuid matche
  $ tarnlab fault peer length +5 --count 1
  $ quiet tarnioctl getdpiinfo -m n; echo
  
  
  err| ERROR: failed to get response from vdpi
  $ tarnlab fault peer unterminated --count 1
  $ quiet tarnioctl getdpiinfo -m n
  
  
  no uuid matches n
  $ tarnlab log -s -n 5
  inspection 71: get uuids matching FQDN(name "n") = ok {bytes 23} (ordered fault: announces 0 bytes)
  inspection 71: get uuids matching FQDN(name "n") = ok {bytes 23} (ordered fault: announces 4294967295 bytes)
  inspection 71: get uuids matching FQDN(name "n") = ok {bytes 23} (ordered fault: announces 5 bytes less)
  inspection 71: get uuids matching FQDN(name "n") = ok {bytes 23} (ordered fault: announces 5 bytes more)
  inspection 71: get uuids matching FQDN(name "n") = ok {bytes 22} (ordered fault: sends its text without the NUL at the end)

One that says nothing, and one that does not stop: the program has to be ended, and the lab's log has
what was asked.

  $ tarnlab fault peer silent --count 1
  $ tarnlab run tarnioctl tracehulld -s > said & program=$!
  $ for i in $(seq 600); do tarnlab log -s -n 1 | grep -q nothing && break; sleep 0.1; done
  $ kill -KILL $program; { wait $program; } 2> killed
  [137]
  $ cat said
  $ tarnlab fault peer endless --count 1
  $ tarnlab run tarnioctl tracehulld -q | head -c 100
  tracing is stopped
  tracing is stopped
  tracing is stopped
  tracing is stopped
  tracing is stopped
  traci (no-eol)
  $ tarnlab log -s -n 2
  trace A: tracing status() = ok {bytes 256} (ordered fault: says nothing and stays connected)
  trace B: stop tracing() = ok {bytes 19} (ordered fault: sends without end)

A lab whose folder has a name that is longer than a socket's.

  $ long=$TRANSCRIPT_TMP/$(printf '%0200d' 0)/lab
  $ tarnlab --home "$long" init | sed 's|at .*|at LONG|'
  Made a lab with 8 filters at LONG
  $ tarnlab --home "$long" run tarnioctl tracehulld -s | head -1
  tracing: off

What cannot be ordered.

  $ run tarnlab fault peer
  err| tarnlab: fault: peer needs a fault
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault peer nonsense
  err| tarnlab: fault: unknown fault of a peer nonsense
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault peer cut
  err| tarnlab: fault: peer cut needs a value
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault peer cut 4294967296
  err| tarnlab: fault: bad peer cut 4294967296
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault peer slow 3600001
  err| tarnlab: fault: bad peer slow 3600001
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault peer length +
  err| tarnlab: fault: bad peer length +
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault peer absent --peer nobody
  err| tarnlab: fault: unknown peer nobody
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault peer length 0 --peer trace
  err| tarnlab: fault: the peer trace announces no lengths
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault peer absent --only 3
  err| tarnlab: fault: --only does not go with this fault
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault absent trace
  err| tarnlab: fault: unknown device trace
  err| Try "tarnlab fault --help".
  [2]
  $ run tarnlab fault errno EIO --peer trace
  err| tarnlab: fault: --peer does not go with this fault
  err| Try "tarnlab fault --help".
  [2]
  $ tarnlab fault
  no faults

A lab that is made fresh has none of what was set and saved.

  $ tarnlab reset
  $ tarnlab run ls /var/run/kelpco /etc/kelpco/hulld
  /etc/kelpco/hulld:
  
  /var/run/kelpco:
  hulld_trace
  vdpi_stats_channel
  $ quiet tarnioctl tracehulld -s | head -3
  tracing: off
  process log level: 3
  library log level: 2

No process of this lab and no socket of its peers is left.

  $ for process in /proc/[0-9]*; do
  >   grep -qsz "^TARNLAB_HOME=$TARNLAB_HOME\$" $process/environ &&
  >     grep -qsz '^TARNLAB_PROGRAM=' $process/environ && tr '\0' ' ' < $process/cmdline
  > done | cat
  $ grep "@tarnlab-$(stat -c %i "$TARNLAB_HOME")-" /proc/net/unix
  [1]
  $ grep "$TRANSCRIPT_TMP" /proc/net/unix
  [1]

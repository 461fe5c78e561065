What the host's inspection process counts and knows.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made

  $ run tarnioctl getdpiinfo -h
  Get VDPI info.
  
  Usage: tarnioctl getdpiinfo <options>
      -s          : stats
      -t          : thread status
      -e          : enable tracing
      -d          : disable tracing
      -c          : dump FQDN config
      -l          : load FQDN config
      -m <string> : get uuids matching FQDN
      -h          : this help message
  $ brief run tarnioctl getdpiinfo -x
  (usage)
  [1]
  $ brief run tarnioctl getdpiinfo -m
  (usage)
  [1]

Stats and threads. Of both, the later one counts.

  $ lab tarnioctl getdpiinfo -s
  
  vDPI runtime stats
  filters: 8, tracing: off
  total: 3132 flows, 5 inspected, 0 with attributes, 7 names
    nic-1002672-eth0-kelpco-sfw.2: 470 flows, 5 inspected, 0 with attributes, 7 names
    nic-1002672-eth0-kelpco-inspect.4: 472 flows, 0 inspected, 0 with attributes, 0 names
    nic-1002731-eth0-kelpco-sfw.2: 499 flows, 0 inspected, 0 with attributes, 0 names
    nic-1003044-eth0-kelpco-sfw.2: 402 flows, 0 inspected, 0 with attributes, 0 names
    nic-1003044-eth1-kelpco-sfw.2: 402 flows, 0 inspected, 0 with attributes, 0 names
    nic-1003120-eth0-kelpco-sfw.2: 0 flows, 0 inspected, 0 with attributes, 0 names
    nic-998214-eth0-kelpco-sfw.2: 444 flows, 0 inspected, 0 with attributes, 0 names
    nic-998214-eth0-kelpco-spoof.guard.1: 443 flows, 0 inspected, 0 with attributes, 0 names
  $ lab tarnioctl getdpiinfo -t
  
  vDPI Thread Status
  thread 0 dispatcher: waits, 8 filters
  thread 1 worker: waits, 1815 flows, 5 inspected, 0 with attributes, 7 names
  thread 2 worker: waits, 1317 flows, 0 inspected, 0 with attributes, 0 names
  thread 3 trace: off
  $ lab tarnioctl getdpiinfo -s -t | head -3
  
  vDPI Thread Status
  thread 0 dispatcher: waits, 8 filters

Commands that have no answer; the log of the lab shows that they came.

  $ lab tarnioctl getdpiinfo -e
  $ lab tarnioctl getdpiinfo -t | tail -1
  thread 3 trace: on
  $ lab tarnioctl getdpiinfo -d
  $ lab tarnioctl getdpiinfo -c
  $ lab tarnioctl getdpiinfo -l
  $ lab tarnioctl getdpiinfo
  $ tarnlab log | tail -6 | sed 's/.*inspection /inspection /; s/bytes .*/bytes/'
  inspection 66: enable tracing = ok
  inspection 68: thread status = ok {bytes
  inspection 67: disable tracing = ok
  inspection 69: dump FQDN config = ok (written to /var/run/kelpco/vdpi_fqdn_config)
  inspection 70: load FQDN config = EINVAL (there is no /etc/kelpco/vdpi_fqdn_config)
  inspection 4294967295: unknown = EINVAL (there is no command 4294967295)

Names are dumped into a file of the host, and loaded from another one.

  $ host=$TARNLAB_HOME/root
  $ head -1 $host/var/run/kelpco/vdpi_fqdn_config
  6f1c2b90-4d3e-4a57-8c61-000000000001 shop1.kelpco.example
  $ echo 0a0b0c0d-0000-0000-0000-000000000001 www.example.com > $host/etc/kelpco/vdpi_fqdn_config
  $ lab tarnioctl getdpiinfo -l
  $ lab tarnioctl getdpiinfo -m www.example.com
  
  
  0a0b0c0d-0000-0000-0000-000000000001 www.example.com

After -s a reply is awaited, whatever the command; the process has none.

  $ lab tarnioctl getdpiinfo -s -e; echo
  
  vDPI runtime stats
  err| ERROR: Failed to receive the length of dpi stats

Identifiers of names.

  $ lab tarnioctl getdpiinfo -m shop3.kelpco.example
  
  
  6f1c2b90-4d3e-4a57-8c61-000000000003 shop3.kelpco.example
  $ lab tarnioctl getdpiinfo -s -m '*.kelpco.example' | head -4
  
  
  6f1c2b90-4d3e-4a57-8c61-000000000001 shop1.kelpco.example
  6f1c2b90-4d3e-4a57-8c61-000000000002 shop2.kelpco.example
  $ lab tarnioctl getdpiinfo -m nonesuch.example.net
  
  
  no uuid matches nonesuch.example.net
  $ run tarnioctl getdpiinfo -m "$(printf 'n%.0s' {1..1024})"
  length of input string shoudl be less than 1024
  [1]
  $ lab tarnioctl getdpiinfo -m "$(printf 'n%.0s' {1..1023})" | tail -1 | wc -c
  1040

The process is absent, refuses, goes away or takes its time. Nobody learns by the status whether a command arrived.

  $ fault() { tarnlab fault peer "$@" --count 1; }
  $ fault absent && lab tarnioctl getdpiinfo -s
  
  vDPI runtime stats
  err| ERROR: failed to connect to vdpi stats socket: No such file or directory
  [1]
  $ fault absent && lab tarnioctl getdpiinfo -m name
  
  
  err| ERROR: failed to connect to vdpi stats socket: No such file or directory
  [1]
  $ fault absent && lab tarnioctl getdpiinfo -e
  err| ERROR: failed to connect to vdpi stats socket: No such file or directory
  $ fault refuse && lab tarnioctl getdpiinfo -t
  
  vDPI Thread Status
  err| ERROR: failed to connect to vdpi stats socket: Connection refused
  [1]
  $ fault close && lab tarnioctl getdpiinfo -t
  
  vDPI Thread Status
  err| ERROR: failed to send length of get stats command: Broken pipe
  [1]
  $ fault close && lab tarnioctl getdpiinfo -m name
  
  
  err| ERROR: failed to send length of command: Broken pipe
  [1]
  $ fault cut 3 && lab tarnioctl getdpiinfo -t; echo
  
  vDPI Thread Status
  err| ERROR: Failed to receive the length of dpi stats
  $ fault cut 4 && lab tarnioctl getdpiinfo -t; echo
  
  vDPI Thread Status
  err| ERROR: failed to get stats from vdpi
  $ fault cut 12 && lab tarnioctl getdpiinfo -m name; echo
  
  
  err| ERROR: failed to get response from vdpi
  $ fault cut 3 && lab tarnioctl getdpiinfo -m name; echo
  
  
  err| ERROR: Failed to receive the length of response
  $ fault bytes && lab tarnioctl getdpiinfo -t | tail -1
  thread 3 trace: on
  $ fault slow 20 && lab tarnioctl getdpiinfo -t | tail -1
  thread 3 trace: on
  $ fault silent && waits tarnioctl getdpiinfo -s
  [143]

Lengths that lie.

  $ fault length 0 && lab tarnioctl getdpiinfo -t
  
  vDPI Thread Status
  $ fault length 10 && lab tarnioctl getdpiinfo -t; echo
  
  vDPI Thread Status
  thread 0 d
  $ fault length +1 && lab tarnioctl getdpiinfo -t; echo
  
  vDPI Thread Status
  err| ERROR: failed to get stats from vdpi
  $ fault length -5 && lab tarnioctl getdpiinfo -t; echo
  
  vDPI Thread Status
  thread 0 dispatcher: waits, 8 filters
  thread 1 worker: waits, 1815 flows, 5 inspected, 0 with attributes, 7 names
  thread 2 worker: waits, 1317 flows, 0 inspected, 0 with attributes, 0 names
  thread 3 trace:
  $ fault length 67108864 && lab tarnioctl getdpiinfo -t; echo
  
  vDPI Thread Status
  err| ERROR: failed to get stats from vdpi
  $ fault length 67108865 && lab tarnioctl getdpiinfo -t; echo
  
  vDPI Thread Status
  err| ERROR: Failed to allocate buffer to recv dpi stats
  $ fault length 4294967295 && lab tarnioctl getdpiinfo -m name; echo
  
  
  err| ERROR: Failed to allocate buffer to recv response
  $ fault unterminated && lab tarnioctl getdpiinfo -t | tail -1
  thread 3 trace: on
  $ tarnlab fault
  no faults

A path that is no socket.

  $ rm "$TARNLAB_HOME"/root/var/run/kelpco/vdpi_stats_channel
  $ echo text > "$TARNLAB_HOME"/root/var/run/kelpco/vdpi_stats_channel
  $ lab tarnioctl getdpiinfo -s
  
  vDPI runtime stats
  err| ERROR: failed to connect to vdpi stats socket: Connection refused
  [1]

Fully qualified names.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ times() { sed -E 's/start_time : [0-9T:-]{19}$/start_time : TIME/'; }

  $ run tarnioctl getfqdnentries -h
  Get fqdn records of a filter.
  
  Usage: tarnioctl getfqdnentries <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -d          : delete all entries
      -v          : enable verbose log
      -h          : this help message
  $ brief run tarnioctl getfqdnentries
  (usage)
  err| ERROR: filter is missing.
  [1]

  $ quiet tarnioctl getfqdnentries -f $filter | times
  Total fqdn entries: 5
  Total number of uuid entries: 7
  Fqdn IP 10.20.5.10
    # start_time : TIME
    # ttl : 300
       UUID -- 6f1c2b90-4d3e-4a57-8c61-000000000001
  
  Fqdn IP 10.20.5.11
    # start_time : TIME
    # ttl : Infinite
       UUID -- 6f1c2b90-4d3e-4a57-8c61-000000000002
       UUID -- 6f1c2b90-4d3e-4a57-8c61-000000000003
  
  Fqdn IP fd00:20:5::10
    # start_time : TIME
    # ttl : 86400
       UUID -- 6f1c2b90-4d3e-4a57-8c61-000000000004
  
  Fqdn IP fd00:20:5::11
    # start_time : TIME
    # ttl : Infinite
       UUID -- 6f1c2b90-4d3e-4a57-8c61-000000000005
       UUID -- 6f1c2b90-4d3e-4a57-8c61-000000000006
       UUID -- 6f1c2b90-4d3e-4a57-8c61-000000000007
  
  $ quiet tarnioctl getfqdnentries -f $filter -v | head -5 | times
  Total fqdn entries: 5
  Total number of uuid entries: 7
  DEBUG: GetFqdnEntries: Getting V4 address
  DEBUG: GetFqdnEntries: Response is here, IPv4 10.20.5.10
  DEBUG: GetFqdnEntries: Number of uuid 1
  $ quiet tarnioctl getfqdnentries -f nic-1002731-eth0-kelpco-sfw.2
  No fqdn entry.

The time is that of the kernel's count of seconds since the host's start.

  $ quiet tarnioctl getfqdnentries -f $filter | grep -c '^  # start_time : 20[0-9][0-9]-[01][0-9]-[0-3][0-9]T[0-2][0-9]:[0-5][0-9]:[0-5][0-9]$'
  4

  $ quiet tarnioctl getfqdnentries -f $filter -d
  $ quiet tarnioctl getfqdnentries -f $filter
  No fqdn entry.

What is refused.

  $ quiet tarnioctl getfqdnentries -f nic-9-eth0-kelpco-sfw.9
  err| ERROR: failed to get fqdn total entries: switch port not found
  [1]
  $ quiet tarnioctl getfqdnentries -d -f nic-9-eth0-kelpco-sfw.9
  err| ERROR: failed to delete fqdn entries: switch port not found
  [1]

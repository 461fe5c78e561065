Users of a filter and their security identifiers.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2

  $ run tarnioctl getsidcache -h
  print uid to sid mapping for a filter.
  
  Usage: tarnioctl getsidcache <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -h          : this help message
  $ brief run tarnioctl getsidcache
  (usage)
  err| ERROR: filter is missing
  [1]

  $ lab tarnioctl getsidcache -f $filter
  uid2sid map size : 784
  uid2sid map num entries : 4
  User ID : S-1-5-21-1004336348-1177238915-1101
  Status : Active
  NoConn : 7
  {
    S-1-5-21-1004336348-1177238915-513
    S-1-5-21-1004336348-1177238915-514
    S-1-5-21-1004336348-1177238915-515
  }
  User ID : S-1-5-21-1004336348-1177238915-1102
  Status : Inactive
  NoConn : 0
  {
    S-1-5-21-1004336348-1177238915-523
    S-1-5-21-1004336348-1177238915-524
  }
  User ID : S-1-5-21-1004336348-1177238915-1103
  Status : Active
  NoConn : 9
  {
    S-1-5-21-1004336348-1177238915-533
  }
  User ID : S-1-5-21-1004336348-1177238915-1104
  Status : Inactive
  NoConn : 0
  {
  }
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  $ lab tarnioctl getsidcache -f nic-1002731-eth0-kelpco-sfw.2 -v3
  verbose level : 3
  weirgate agent: kelpco-sfw
  uid2sid map size : 0
  uid2sid map num entries : 0
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  $ quiet tarnioctl getsidcache -f nic-9-eth0-kelpco-sfw.9
  err| ERROR: Failed to get uid to sid map size for filter : nic-9-eth0-kelpco-sfw.9
  [1]
  $ tarnlab fault status 29 --count 1
  $ quiet tarnioctl getsidcache -f $filter
  err| ERROR: Failed to get uid to sid map size for filter : nic-1002672-eth0-kelpco-sfw.2
  [1]

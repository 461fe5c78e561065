What the address sets of a filter are set to.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2

Sharing them.

  $ run tarnioctl setsharedaddrset -Override -h
  Set shared addrset setting.
  
  Usage: tarnioctl setsharedaddrset <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -m <string> : verbose log component name or id
      -s <0|1>    : set shared addrset setting (0: disable, 1: enable)
      -h          : this help message
  $ run tarnioctl getsharedaddrset -h
  Get shared addrset setting.
  
  Usage: tarnioctl getsharedaddrset <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -m <string> : verbose log component name or id
      -h          : this help message
  $ run tarnioctl setsharedaddrset -f $filter -s 1
  err| ERROR: Command setsharedaddrset is dangerous and can cause unintended consequence!
  err| ERROR: Please supply first option -Override in order to override the safety guard and actually run the command.
  [1]
  $ brief run tarnioctl getsharedaddrset
  (usage)
  err| ERROR: filter is missing
  [1]
  $ run tarnioctl setsharedaddrset -Override -f $filter | tail -2
      -h          : this help message
  err| ERROR: shared option is missing
  $ brief run tarnioctl setsharedaddrset -Override -f $filter -s 2
  (usage)
  err| ERROR: bad shared option 2
  [1]
  $ quiet tarnioctl getsharedaddrset -f $filter
  shared addrset: disabled
  $ quiet tarnioctl setsharedaddrset -Override -f $filter -s 1 -v
  verbose level : 1
  weirgate agent: kelpco-sfw
  DEBUG: Shared addrset was set to enable for filter nic-1002672-eth0-kelpco-sfw.2.
  $ quiet tarnioctl getsharedaddrset -f $filter
  shared addrset: enabled
  $ quiet tarnioctl getsharedaddrset -f nic-1002731-eth0-kelpco-sfw.2
  shared addrset: disabled
  $ quiet tarnioctl setsharedaddrset -Override --filter=$filter --shared=0 --verbose=2
  verbose level : 2
  weirgate agent: kelpco-sfw
  DEBUG: Shared addrset was set to disable for filter nic-1002672-eth0-kelpco-sfw.2.
  $ quiet tarnioctl getsharedaddrset -f $filter
  shared addrset: disabled
  $ quiet tarnioctl setsharedaddrset -Override -f nic-9-eth0-kelpco-sfw.9 -s 1
  err| ERROR: Failed to set filter shared addrset setting
  [1]
  $ quiet tarnioctl getsharedaddrset -f nic-9-eth0-kelpco-sfw.9
  err| ERROR: Failed to get filter shared addrset setting
  [1]

Their statistics, and the marks of their addresses.

  $ run tarnioctl setaddrsetcfg -Override -h
  Enable/disable addreset stats collection for a filter.
  
  Usage: tarnioctl setaddrsetcfg <options> <cmd>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -a <string> : addrset name
      -i <ipaddr> : IP address
      -v <number> : enable verbose log
      -m <string> : verbose log component name or id
      -h          : this help message
      cmd:
      enablestats  : enable addrset stat collection
      disablestats : disable addrset stat collection
      display      : show stat collection status
      setvalid     : set valid flag bit for <ipaddr> within <addrset>
      clearvalid   : clear valid flag bit for <ipaddr> within <addrset>
      getvalid     : get valid flags for entries within <addrset>
  $ run tarnioctl setaddrsetcfg -f $filter display
  err| ERROR: Command setaddrsetcfg is dangerous and can cause unintended consequence!
  err| ERROR: Please supply first option -Override in order to override the safety guard and actually run the command.
  [1]
  $ run tarnioctl setaddrsetcfg -Override display | head -1
  Enable/disable addreset stats collection for a filter.
  $ run tarnioctl setaddrsetcfg -Override -f $filter | head -1
  Enable/disable addreset stats collection for a filter.
  $ run tarnioctl setaddrsetcfg -Override -f $filter shows | head -1
  Enable/disable addreset stats collection for a filter.
  $ tarnlab run tarnioctl tarnfwcli -Override -f $filter \
  >   -c 'create addrset "web" with { 10.20.1.40, 2001:db8::7 }; create addrset "none";
  >       create attrprofile "tls" with { [ TLS_VERSION : 771 ] };'
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter display
  kif stats = disabled
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter -a web display
  kif stats = disabled, addrset web stats = unset
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter enablestats
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter -a web enablestats
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter -a web display
  kif stats = enabled, addrset web stats = enabled
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter -a web disablestats
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter -a web display
  kif stats = enabled, addrset web stats = disabled
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter -a web unsetstats
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter disablestats
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter -a web display
  kif stats = disabled, addrset web stats = unset
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter -a web getvalid
  addrset web {
  ip 10.20.1.40   dlb_valid_cnt = 0x00,
  ip 2001:db8::7   dlb_valid_cnt = 0x00,
  }
  [1]
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter -a web -i 10.20.1.40 setvalid
  kentry valid field changed from 0x0 to 0x1
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter -a web -i 2001:db8::7 setvalid
  kentry valid field changed from 0x0 to 0x1
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter -a web getvalid
  addrset web {
  ip 10.20.1.40   dlb_valid_cnt = 0x01,
  ip 2001:db8::7   dlb_valid_cnt = 0x01,
  }
  [1]
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter -a web -i 10.20.1.40 clearvalid
  kentry valid field changed from 0x1 to 0x0
  $ tarnlab log -s -n 1
  firewall 15: filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 0: SetAddrSetCfg(operation 6, name "web", component 1, address 0a140128000000000000000000000000, first 0, second 0) = ok {old 1, new 0}
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter -a none getvalid
  addrset none {
  }
  [1]
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter -a tls getvalid
  [1]
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter -a nonesuch getvalid
  err| ERROR: failed to get size of addrset nonesuch: no addrset
  [1]
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter -a web -i 10.9.9.9 setvalid
  err| ERROR: Failed to set addrset config for filter nic-1002672-eth0-kelpco-sfw.2.
  [1]
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter -a web -i 10.9.9 setvalid
  err| ERROR: invalid ip address.
  [1]
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter -a web setvalid
  err| ERROR: must specify an addrset and ipaddress when setting or clearing valid flag
  [1]
  $ quiet tarnioctl setaddrsetcfg -Override -f $filter getvalid
  err| ERROR: must specify an addrset to read valid flags
  [1]
  $ quiet tarnioctl setaddrsetcfg -Override -v 2 -f $filter display
  verbose level : 2
  weirgate agent: kelpco-sfw
  kif stats = disabled

Usage, the command table's guard, and the system log.

  $ . "$TESTDIR/setup"

Without an argument the usage is shown and the status is 1.

  $ run tarnioctl
  Usage: help <cmd> <options>
    below is a list of available cmd:
      getfilters      : get list of filters
      getfwconfig     : get rules, addrsets and containers of a filter
      getrules        : get rules of a filter
      getaddrsets     : get addrsets of a filter
      getcontainers   : get containers of a filter
      getspoofguard   : get spoofguard setting of a filter
      getflows        : get flows of a filter
      getconncount    : get active connection count
      getconnections  : get active connections
      getsisvmstats   : get service insertion service VM stats
      getsisvctable   : dump service insertion service table
      getsinshtable   : display service insertion nsh table
      getsiproxytable : display service insertion proxy table
      getmeminfo      : get meminfo data
      getfqdnentries  : get fqdn entries
      getdnsconfigprofile : get dns config profile for a filter
      getfilterstat   : get statistics of a filter
      gettimeout      : get connection timeout setting of a filter
      getfloodstat    : get flood protection status
      getsidcache     : get sid cache of a filter
      help            : this help message
    run `tarnioctl <cmd> -h' to find out available options of a cmd.
  [1]

The same text with status 0.

  $ run tarnioctl -h | head -1
  Usage: help <cmd> <options>
  $ run tarnioctl help | head -1
  Usage: help <cmd> <options>
  $ tarnioctl -h > h; tarnioctl help > help; tarnioctl > none; cmp h help; cmp h none

The word stands in the text as typed.

  $ run tarnioctl HELP | head -1
  Usage: HELP <cmd> <options>

The log is opened on every run, also for help, under the program's name.

  $ SYSLOG_SHOW_OPEN=1 run tarnioctl help | tail -1
  log| openlog tarnioctl option 2 facility 80
  $ ln -s "$(command -v tarnioctl)" fwctl
  $ SYSLOG_SHOW_OPEN=1 run ./fwctl help | tail -1
  log| openlog fwctl option 2 facility 80

Words that are no command.

  $ run tarnioctl frobnicate
  Usage: help <cmd> <options>
    below is a list of available cmd:
      getfilters      : get list of filters
      getfwconfig     : get rules, addrsets and containers of a filter
      getrules        : get rules of a filter
      getaddrsets     : get addrsets of a filter
      getcontainers   : get containers of a filter
      getspoofguard   : get spoofguard setting of a filter
      getflows        : get flows of a filter
      getconncount    : get active connection count
      getconnections  : get active connections
      getsisvmstats   : get service insertion service VM stats
      getsisvctable   : dump service insertion service table
      getsinshtable   : display service insertion nsh table
      getsiproxytable : display service insertion proxy table
      getmeminfo      : get meminfo data
      getfqdnentries  : get fqdn entries
      getdnsconfigprofile : get dns config profile for a filter
      getfilterstat   : get statistics of a filter
      gettimeout      : get connection timeout setting of a filter
      getfloodstat    : get flood protection status
      getsidcache     : get sid cache of a filter
      help            : this help message
    run `tarnioctl <cmd> -h' to find out available options of a cmd.
  err| ERROR: unknown command `frobnicate'
  err| 
  [1]
  $ run tarnioctl -hx | grep -v '^  '
  Usage: help <cmd> <options>
  err| ERROR: unknown command `-hx'
  err| 
  $ run tarnioctl '' | grep -v '^  '
  Usage: help <cmd> <options>
  err| ERROR: unknown command `'
  err| 

A dangerous command wants its first option, spelled exactly.

  $ run tarnioctl addfilter
  err| ERROR: Command addfilter is dangerous and can cause unintended consequence!
  err| ERROR: Please supply first option -Override in order to override the safety guard and actually run the command.
  [1]
  $ run tarnioctl AddFilter -h
  err| ERROR: Command AddFilter is dangerous and can cause unintended consequence!
  err| ERROR: Please supply first option -Override in order to override the safety guard and actually run the command.
  [1]
  $ run tarnioctl addfilter -override -h
  err| ERROR: Command addfilter is dangerous and can cause unintended consequence!
  err| ERROR: Please supply first option -Override in order to override the safety guard and actually run the command.
  [1]
  $ run tarnioctl addfilter -h -Override
  err| ERROR: Command addfilter is dangerous and can cause unintended consequence!
  err| ERROR: Please supply first option -Override in order to override the safety guard and actually run the command.
  [1]

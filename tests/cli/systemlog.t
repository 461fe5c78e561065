What programs in the lab write to the system log is in the lab's log too, in order with what they ask.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ plain() { sed -E 's/\(\):[0-9]+ /():N /'; }

  $ quiet tarnioctl getfailpolicy -f $filter
  filter fail policy: fail open
  $ tarnlab log -s
  firewall 15: filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 0: GetFailPolicy() = ok {policy 0}
  $ tarnlab log -s -l | plain
  syslog authpriv.info tarnioctl: tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.
  syslog authpriv.info tarnioctl: tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library
  firewall 15: filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 0: GetFailPolicy() = ok {policy 0}
  $ tarnlab log -l -n 1 | sed -E 's/^[0-9. :-]+ ([a-z]+)\[[0-9]+\] /WHEN \1[PID] /'
  WHEN tarnioctl[PID] firewall 15: filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 0: GetFailPolicy() = ok {policy 0}
  $ tarnlab log -s -l -n 2 | plain
  syslog authpriv.info tarnioctl: tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library
  firewall 15: filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 0: GetFailPolicy() = ok {policy 0}
  $ tarnlab log -s -n 2
  firewall 15: filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 0: GetFailPolicy() = ok {policy 0}

A request that fails, and why.

  $ tarnlab fault errno EIO --only 15 --count 1
  $ quiet tarnioctl getfailpolicy -f $filter
  err| ERROR: failed to get fail policy: ioctl failed
  [1]
  $ tarnlab log -s -l -n 2 | plain
  firewall 15: no message = EIO (ordered fault)
  syslog authpriv.warning tarnioctl: tarnfw: TarnFWCmd:execute():N ioctl failed, errno=5

A mistake in configuration text. The system's own log gets it all the same.

  $ lab tarnioctl tarnfwcli -Override -f $filter -c 'create addrset "a" with { nonsense };'
  err| ERROR: Could not load config `create addrset "a" with { nonsense };': parsing error
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <83> tarnfw: tarnfw_parser:yyerror():N [<cmd>:1] syntax error, unexpected double-quoted string\n
  [1]
  $ tarnlab log -s -l -n 1 | plain
  syslog authpriv.err tarnioctl: tarnfw: tarnfw_parser:yyerror():N [<cmd>:1] syntax error, unexpected double-quoted string

Any other program.

  $ tarnlab run python3 -c 'import syslog; syslog.openlog("tester", 0, syslog.LOG_MAIL); syslog.syslog(syslog.LOG_CRIT, "one\ntwo\n")'
  $ tarnlab log -s -l -v -x -n 1
  syslog mail.crit tester: one\x0atwo
      sent, 8 bytes
      000000  6f 6e 65 0a 74 77 6f 0a
  $ tarnlab reset
  $ tarnlab log -l

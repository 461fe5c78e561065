Standard streams that the caller has closed, and one that takes nothing.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ config() { tarnlab run tarnioctl tarnfwcli -Override "$@"; }

What is printed never gets into a file that is opened behind it.

  $ text='config file "message"; destroy all ruleset;'
  $ config -c "$text" -c nonsense
  ERROR: Could not load config `nonsense': parsing error
  [1]
  $ mv message expected
  $ config -c "$text" -c nonsense 2>&-
  [1]
  $ cmp message expected
  $ rm message
  $ config -c "$text" -c nonsense >&- 2>&-
  [1]
  $ cmp message expected
  $ rm message
  $ config -c "$text" -c nonsense <&- >&- 2>&-
  [1]
  $ cmp message expected

Configuration is not read from a device in the place of a closed standard input.

  $ config -f $filter -l - <&-
  input in flex scanner failed
  [2]

The command is carried out and its status is its own.

  $ config -f $filter -c 'create addrset "web";' >&- 2>&-
  $ tarnlab run tarnioctl getaddrsets -f $filter >&-
  $ tarnlab run tarnioctl getaddrsets -f $filter > /dev/full
  $ tarnlab run tarnioctl getaddrsets -f nonesuch 2>&-
  [1]
  $ tarnlab run tarnioctl getaddrsets -f $filter <&- 2>&-
  addrset web {
  }

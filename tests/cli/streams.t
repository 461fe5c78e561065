Standard streams that the caller has closed, and one that takes nothing.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ config() { tarnlab run tarnioctl tarnfwcli -Override "$@"; }

What is printed never gets into a file that is opened after it.

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
  ERROR: Could not load config `-': cannot load file
  [1]

The command is carried out. Its status is its own, but output that is lost is no success.

  $ config -f $filter -c 'create addrset "web";' >&- 2>&-
  $ getaddrsets() { tarnlab run tarnioctl getaddrsets -f "$@"; }
  $ getaddrsets $filter >&-
  ERROR: failed to write output: Bad file descriptor
  [1]
  $ getaddrsets $filter > /dev/full
  ERROR: failed to write output: No space left on device
  [1]
  $ getaddrsets $filter <&- >&- 2>&-
  [1]
  $ getaddrsets nonesuch 2>&-
  [1]
  $ getaddrsets nonesuch > /dev/full
  ERROR: failed to get addrset count: switch port not found
  [1]
  $ getaddrsets $filter <&- 2>&-
  addrset web {
  }

A reader that has gone ends the program, as it ends others, unless that is ignored.

  $ alone() { for i in $(seq 600); do (trap '' PIPE; echo) 2> /dev/null || return 0; sleep 0.1; done; }
  $ (alone; getaddrsets $filter; echo $? >&2) | true
  141
  $ (trap '' PIPE; alone; getaddrsets $filter; echo $? >&2) | true
  ERROR: failed to write output: Broken pipe
  1

Usage is output too. A status other than 0 stays.

  $ for words in help 'getfilters -h' 'getfilters -x' 'tarnfwcli -Override -h' nonesuch; do
  >   tarnioctl $words > /dev/full
  >   echo $?
  > done
  ERROR: failed to write output: No space left on device
  1
  ERROR: failed to write output: No space left on device
  1
  getfilters: invalid option -- 'x'
  ERROR: failed to write output: No space left on device
  1
  ERROR: failed to write output: No space left on device
  1
  ERROR: unknown command `nonesuch'
  
  ERROR: failed to write output: No space left on device
  1

Output that was lost before the library ends the program.

  $ tarnlab fault absent
  $ tarnlab run tarnioctl getaddrsets -v -f $filter > /dev/full
  ERROR: failed to write output: No space left on device
  [255]
  $ tarnlab fault clear

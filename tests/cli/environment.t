Odd values of the environment variables that the programs read, and words of any length.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2 long=$(printf '%5000s' | tr ' ' x) program=$(command -v tarnlab)
  $ shorten() { sed "s/x\{5000\}/LONG/"; }

A lab in a folder that is none.

  $ for home in "$long" /dev/null made; do
  >   TARNLAB_HOME=$home tarnlab show 2>&1 | shorten
  >   TARNLAB_HOME=$home tarnlab run true 2>&1 | shorten
  >   TARNLAB_HOME=$home tarnlab init 2>&1 | shorten
  > done
  tarnlab: no lab at LONG: make one with "tarnlab init"
  tarnlab: no lab at LONG: make one with "tarnlab init"
  tarnlab: cannot make folder LONG: File name too long
  tarnlab: no lab at /dev/null: make one with "tarnlab init"
  tarnlab: no lab at /dev/null: make one with "tarnlab init"
  tarnlab: cannot lock /dev/null: Not a directory
  tarnlab: no lab at made: make one with "tarnlab init"
  tarnlab: no lab at made: make one with "tarnlab init"
  tarnlab: cannot lock made: Not a directory
  $ TARNLAB_HOME= tarnlab show
  tarnlab: no lab at .tarnlab: make one with "tarnlab init"
  [1]
  $ SHELL=/nonesuch tarnlab shell
  tarnlab: cannot find the program /nonesuch
  [127]
  $ SHELL=$long tarnlab shell 2>&1 | shorten
  tarnlab: cannot find the program LONG
  $ (unset PATH; "$program" run tarnioctl getfilters -n; PATH= "$program" run tarnioctl getfilters -n)
  Total number of kernel filters: 8
  Total number of kernel filters: 8
  $ env -i TARNLAB_HOME="$TARNLAB_HOME" "$program" run tarnioctl getfilters -n
  Total number of kernel filters: 8

Whether statements go one by one or in batches: what is no such word leaves it as it is.

  $ load() { tarnfwlib_exec_batch_cmd=$1 tarnlab run tarnioctl tarnfwcli -Override -f $filter -c "$2"; }
  $ for value in true TRUE '' 1 $'true\n' "$long"; do
  >   load "$value" 'create addrset "a" 10.0.0.1; create addrset "b" 10.0.0.2; destroy addrset "a"; destroy addrset "b";'
  > done
  $ tarnlab log -s | cut -d ' ' -f 3- | sort | uniq -c
        4 filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 0: CreateAddrSet(name "a", sequence 0, entries 1, type 1, bytes 144, flags 3) = ok
        2 filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 0: CreateAddrSet(name "a", sequence 0, entries 1, type 1, bytes 144, flags 3) = ok; CreateAddrSet(name "b", sequence 0, entries 1, type 1, bytes 144, flags 3) = ok; DestroyAddrSet(name "a") = ok; DestroyAddrSet(name "b") = ok
        4 filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 1: CreateAddrSet(name "b", sequence 0, entries 1, type 1, bytes 144, flags 3) = ok
        4 filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 2: DestroyAddrSet(name "a") = ok
        4 filter nic-1002672-eth0-kelpco-sfw.2 of kelpco-sfw: message 3: DestroyAddrSet(name "b") = ok
        3 number of filters of every agent = ok {count 8}
  $ TARN_CONTROL_DEVICE_PATH_OLD=$long tarnlab run tarnioctl getfilters -n
  Total number of kernel filters: 8

Words of any length.

  $ tarnlab run tarnioctl $long 2>&1 | shorten | tail -1
    run `tarnioctl <cmd> -h' to find out available options of a cmd.
  $ tarnlab run tarnioctl getrules -f $long 2>&1 | shorten
  ERROR: invalid filter name LONG
  $ tarnlab run tarnioctl getfilters $(yes -- -n | head -3000)
  Total number of kernel filters: 8
  $ tarnlab run tarnioctl getrules $(yes -- "-f $filter" | head -3000)
  No rules.
  $ echo 'create addrset "a" 10.0.0.1;' > a.conf
  $ for words in "save -f $long" "apply --agent $long a.conf" "check $long" "check --format $long made" "diff $long made" \
  >     "diff filter:$long made" "apply --confirm $long -f $filter made" "$long"; do
  >   tarnlab run tarnpolicy $words 2>&1 | sed 's/x\{60,\}[.]\{3\}x\{60,\}/LONG/' | shorten | head -1
  > done
  tarnpolicy save: the filter's name is too long
  tarnpolicy apply: the agent's name is too long
  tarnpolicy check: cannot open LONG: File name too long
  tarnpolicy check: no format LONG: it is human, json or sarif
  tarnpolicy diff: can't open LONG: File name too long
  tarnpolicy diff: the filter's name is too long
  tarnpolicy apply: the seconds must be a number from 1 to 86400
  tarnpolicy: no subcommand LONG
  $ tarnlab run tarnpolicy check $(yes a.conf | head -3000) | tail -1
  0 errors, 2999 warnings

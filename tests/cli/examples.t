The examples load as they stand.

  $ . "$TESTDIR/setup"
  $ examples=$TESTDIR/../../examples
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2

Each of the three, in a lab of its own state. The notices name the file.

  $ for example in three-tier root-pair; do
  >   tarnlab run tarnioctl tarnfwcli -Override -f $filter -l "$examples/$example.conf" || echo "status $?"
  > done
  $ "$examples/generate-large" 200 300 > large.conf
  $ tarnlab run tarnioctl tarnfwcli -Override -f $filter -l large.conf

What the filter holds then.

  $ tarnlab run tarnioctl tarnfwcli -Override -f $filter -c 'describe list of ruleset;' | sort
  large
  office
  office_L2
  three-tier
  $ tarnlab run tarnioctl tarnfwcli -Override -f $filter -c 'describe list of addrset;' | sort
  admins
  app
  clients
  db
  dst1009
  gateways
  web
  $ tarnlab run tarnioctl tarnfwcli -Override -f $filter -c 'describe rule count of ruleset "large"; describe size of addrset "clients";'
  rule count : 200
  addrset type : 1
  addrset elements count : 300
  addrset serialize size : 43200

A mistake in the last line of a large file is reported with its line, and changes nothing.

  $ "$examples/generate-large" 2000 10 | sed 's/"large"/"larger"/' > bad.conf
  $ echo 'create ruleset "x" with { rule 1 inout protocol tcp from any to any port 70000 accept; };' >> bad.conf
  $ wc -l < bad.conf
  2017
  $ lab tarnioctl tarnfwcli -Override -f $filter -l bad.conf | grep -v Initializ
  err| ERROR: Could not load config `bad.conf': invalid tcp/udp port
  log| tarnioctl <83> tarnfw: tarnfw_parser:yyerror():N [bad.conf:2017] TCP/UDP port number (70000) is invalid\n
  $ tarnlab run tarnioctl tarnfwcli -Override -f $filter -c 'describe list of ruleset;' | grep -c larger
  0
  [1]

The script that makes large ones checks its words.

  $ "$examples/generate-large" many
  usage: generate-large [RULES [ADDRESSES]]
  [2]

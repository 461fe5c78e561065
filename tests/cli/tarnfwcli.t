Configuration text into the kernel.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2

  $ run tarnioctl tarnfwcli
  err| ERROR: Command tarnfwcli is dangerous and can cause unintended consequence!
  err| ERROR: Please supply first option -Override in order to override the safety guard and actually run the command.
  [1]
  $ run tarnioctl tarnfwcli -Override -h
  Usage: tarnioctl tarnfwcli <options>
      -v <number> : verbose level of output
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -m <string> : verbose log component name or id
      -l <file>   : file of config commands
      -c <cmd>    : config command
      -h          : this help message
  $ brief run tarnioctl tarnfwcli -Override -x
  (usage)
  err| -Override: invalid option -- 'x'
  [1]

Nothing to load.

  $ lab tarnioctl tarnfwcli -Override
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  [1]
  $ lab tarnioctl tarnfwcli -Override -f $filter
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  [1]

Text from the command line.

  $ lab tarnioctl tarnfwcli -Override -f $filter -c 'create ruleset "web" with rule 1 inout protocol tcp from any to any port 80 accept;'
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <85> Filter nic-1002672-eth0-kelpco-sfw.2 was configured with `create ruleset "web" with rule 1 inout protocol tcp from any to any port 80 accept;'.\n
  $ lab tarnioctl tarnfwcli -Override -f $filter -c 'describe list of ruleset; describe rule of ruleset "web";'
  web
  # generation number: 1
  # realization time : ????-??-??T??:??:?? (glob)
  rule 1 at 0 inout protocol tcp from any to any port 80 accept;
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <85> Filter nic-1002672-eth0-kelpco-sfw.2 was configured with `describe list of ruleset; describe rule of ruleset "web";'.\n

A file, and standard input, in the order of the options.

  $ cat > sets.conf << 'END'
  > create addrset "a" { 10.0.0.1-3, };
  > describe list of addrset;
  > END
  $ lab tarnioctl tarnfwcli -Override -f $filter -l sets.conf
  a
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <86> tarnfw: tarnfw_parser:AddAddress():N replaced ip range ip 10.0.0.1-10.0.0.3 to cidr list\n
  log| tarnioctl <85> Filter nic-1002672-eth0-kelpco-sfw.2 was configured with `sets.conf'.\n
  $ echo 'describe size of addrset "a";' | lab tarnioctl tarnfwcli -Override -f $filter -c 'describe count of addrset;' -l -
  addrset count : 1
  addrset type : 1
  addrset elements count : 2
  addrset serialize size : 288
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <85> Filter nic-1002672-eth0-kelpco-sfw.2 was configured with `describe count of addrset;'.\n
  log| tarnioctl <85> Filter nic-1002672-eth0-kelpco-sfw.2 was configured with `-'.\n

A selector in the text does without the option.

  $ lab tarnioctl tarnfwcli -Override -c "describe count of ruleset of vif 8d0c7a10-55f4-4c1e-9b02-0000632a0000;"
  ruleset count : 1
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <85> Filter  was configured with `describe count of ruleset of vif 8d0c7a10-55f4-4c1e-9b02-0000632a0000;'.\n

What is wrong is reported with its place; nothing of the text is sent.

  $ lab tarnioctl tarnfwcli -Override -f $filter -c 'destroy all ruleset; destroy;'
  err| ERROR: Could not load config `destroy all ruleset; destroy;': parsing error
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <83> tarnfw: tarnfw_parser:yyerror():N [<cmd>:1] syntax error, unexpected ;, expecting keyword ruleset or keyword addrset or keyword all\n
  [1]
  $ printf 'create addrset "b";\ncreate addrset "c" {\n  10.0.0.1, 10.0.0.300-5 };\n' > bad.conf
  $ lab tarnioctl tarnfwcli -Override -f $filter -l bad.conf
  err| ERROR: Could not load config `bad.conf': invalid network address
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <83> tarnfw: tarnfw_parser:yyerror():N [bad.conf:3] invalid ip address - 10.0.0.300\n
  [1]
  $ lab tarnioctl tarnfwcli -Override -f $filter -l nonesuch.conf
  err| ERROR: Could not load config `nonesuch.conf': cannot load file
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  [1]
  $ mkdir folder.conf
  $ lab tarnioctl tarnfwcli -Override -f $filter -l folder.conf
  err| ERROR: Could not load config `folder.conf': cannot load file
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <83> tarnfw: tarnfw_parser:yyerror():N [folder.conf:1] cannot read the configuration\n
  [1]
  $ lab tarnioctl tarnfwcli -Override -f $filter -c 'debug dp 16;'
  err| ERROR: Could not load config `debug dp 16;': integer too large
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <83> tarnfw: tarnfw_parser:yyerror():N [<cmd>:1] debug level value overflows\n
  [1]
  $ lab tarnioctl tarnfwcli -Override -f $filter -c 'create nonesuch attrset "a" with x;'
  err| ERROR: Failed to eval config `create nonesuch attrset "a" with x;': invalid argument
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <84> tarnfw: TarnFWAttributeUtils:FWAttribute_str2key():N attribute literal string name nonesuch not found\n
  [1]
  $ lab tarnioctl tarnfwcli -Override -f $filter -c 'describe count of ruleset; describe count of addrset;'
  ruleset count : 1
  addrset count : 1
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <85> Filter nic-1002672-eth0-kelpco-sfw.2 was configured with `describe count of ruleset; describe count of addrset;'.\n

A file from another system: a mark in front, line ends of two characters, none after the last line.

  $ printf '\357\273\277describe count of ruleset;\r\ndescribe\r\ncount of addrset;' > other.conf
  $ quiet tarnioctl tarnfwcli -Override -f $filter -l other.conf
  ruleset count : 1
  addrset count : 1
  err| Unrecognized token:  \xef (esc)
  err| Unrecognized token:  \xbb (esc)
  err| Unrecognized token:  \xbf (esc)
  $ printf 'destroy all ruleset;\r\ndescribe\r\ncount of' >> other.conf
  $ lab tarnioctl tarnfwcli -Override -f $filter -l other.conf | grep -a yyerror
  log| tarnioctl <83> tarnfw: tarnfw_parser:yyerror():N [other.conf:5] syntax error, unexpected end of file, expecting keyword ruleset or keyword addrset\n
  $ quiet tarnioctl tarnfwcli -Override -f $filter -c 'describe count of ruleset;'
  ruleset count : 1

What the kernel refuses ends the evaluation.

  $ lab tarnioctl tarnfwcli -Override -f $filter -c 'destroy ruleset "nonesuch"; describe count of ruleset;'
  err| ERROR: Failed to eval config `destroy ruleset "nonesuch"; describe count of ruleset;': no ruleset
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <84> tarnfw: TarnFWCmd:execute():N failed to execute command DestroyRuleSet: no ruleset\n\n
  [1]

A selector of the text that no filter has is passed over, unless it is the last or there is the option.

  $ none='vif 00000000-0000-0000-0000-000000000000' some='vif 8d0c7a10-55f4-4c1e-9b02-0000632a0000'
  $ quiet tarnioctl tarnfwcli -Override -c "clear all connection of $none; describe count of ruleset of $some;"
  ruleset count : 1
  $ quiet tarnioctl tarnfwcli -Override -c "describe count of ruleset of $some; describe count of ruleset of $none;"
  ruleset count : 1
  err| ERROR: Failed to eval config `describe count of ruleset of vif 8d0c7a10-55f4-4c1e-9b02-0000632a0000; describe count of ruleset of vif 00000000-0000-0000-0000-000000000000;': switch port not found
  [1]
  $ quiet tarnioctl tarnfwcli -Override -f nic-9-eth0-kelpco-sfw.9 -c 'describe count of ruleset; describe count of addrset;'
  err| ERROR: Failed to eval config `describe count of ruleset; describe count of addrset;': switch port not found
  [1]
  $ tarnlab log -s -n 1
  firewall 15: filter nic-9-eth0-kelpco-sfw.9 of kelpco-sfw: message 0: GetRuleSetCount() = ENOENT (there is no filter nic-9-eth0-kelpco-sfw.9 of kelpco-sfw)

In batches the statuses of the commands are not looked at.

  $ tarnfwlib_exec_batch_cmd=True quiet tarnioctl tarnfwcli -Override -f $filter -c 'destroy ruleset "nonesuch"; describe count of ruleset;'
  ruleset count : 1

Another channel takes the messages of its text and of those after it.

  $ lab tarnioctl tarnfwcli -Override -f $filter -c 'config file "out.bin"; destroy ruleset "web";' -c 'destroy all addrset;'
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <85> Filter nic-1002672-eth0-kelpco-sfw.2 was configured with `config file "out.bin"; destroy ruleset "web";'.\n
  log| tarnioctl <85> Filter nic-1002672-eth0-kelpco-sfw.2 was configured with `destroy all addrset;'.\n
  $ wc -c < out.bin
  332
  $ lab tarnioctl tarnfwcli -Override -f $filter -c 'config file "/nonesuch/out.bin";'
  err| ERROR: Could not load config `config file "/nonesuch/out.bin";': cannot load file
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <84> tarnfw: TarnFWLibMain:FW_Initialize():N error 12: /nonesuch/out.bin : No such file or directory\n
  [1]

A socket's peer gets of each command what is its request, and 20 bytes more. Nothing says which filter is meant.

  $ cat > peer.py <<'PEER'
  > import socket, struct
  > listener = socket.create_server(('127.0.0.1', 0))
  > open('port', 'w').write(str(listener.getsockname()[1]))
  > peer = listener.accept()[0]
  > for body, answer in (4, b'\x07\0\0\0'), (132, b'l3' + bytes(62) + b'l2'):
  >     request = peer.recv(20, socket.MSG_WAITALL)
  >     request += peer.recv(struct.unpack_from('<I', request, 4)[0], socket.MSG_WAITALL)
  >     print(len(request), request[:32].hex(' ', 4))
  >     head = struct.pack('<4sIIBBBBHHIHHI', b'TARN', 12 + body, 0, 1, 1, 1, 1, 1, 0, body, request[24], 0, 0)
  >     peer.sendall(head + answer.ljust(body, b'\0'))
  > PEER
  $ timeout 60 python3 peer.py > requests & for i in $(seq 600); do [ -s port ] && break; sleep 0.1; done
  $ connect() { local status; quiet tarnioctl tarnfwcli -Override -f $filter -c "$1" > answer; status=$?
  >   sed "s/:$(cat port);/:PORT;/" answer; return $status; }
  $ connect "config socket 127.0.0.1:$(cat port); describe count of ruleset; describe root ruleset; describe count of addrset;"
  ruleset count : 7
  layer3 root ruleset : l3
  layer2 root ruleset : l2
  err| ERROR: Failed to eval config `config socket 127.0.0.1:PORT; describe count of ruleset; describe root ruleset; describe count of addrset;': socket error
  [1]
  $ wait; cat requests
  53 5441524e 21000000 00000000 01010001 01000000 01000000 01000000 00000000
  53 5441524e 21000000 01000000 01010001 01000000 01000000 04000000 00000000
  $ connect "config socket 127.0.0.1:$(cat port);"
  err| ERROR: Could not load config `config socket 127.0.0.1:PORT;': unknown error
  [1]
  $ connect "config ribs 127.0.0.1:$(cat port);"
  err| ERROR: Could not load config `config ribs 127.0.0.1:PORT;': socket error
  [1]

No more than 256 texts.

  $ texts=(); for i in $(seq 258); do texts+=(-c '#'); done
  $ lab tarnioctl tarnfwcli -Override -f $filter "${texts[@]}" | uniq -c
        2 err| ERROR: cannot accept more than 256 configs
        1 log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
        1 log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
      256 log| tarnioctl <85> Filter nic-1002672-eth0-kelpco-sfw.2 was configured with `#'.\n

Filters and agents that are made and removed, and rules that are deleted.

  $ . "$TESTDIR/setup"
  $ tarnlab init > made
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ uuid='50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26'

An agent comes first. What the kernel says is in the log only.

  $ lab tarnioctl createagent -h
  err| ERROR: Command createagent is dangerous and can cause unintended consequence!
  err| ERROR: Please supply first option -Override in order to override the safety guard and actually run the command.
  [1]
  $ lab tarnioctl createagent -Override -h
  Create an agent.
  
  Usage: tarnioctl createagent <options>
      -a <string> : agent name
      -h          : this help message
  $ lab tarnioctl createagent -Override -a lifecycle
  $ tarnlab log -s -n 1
  firewall 23: create agent(name "lifecycle") = ok
  $ lab tarnioctl createagent -Override -a lifecycle
  log| tarnioctl <83> tarnfw: TarnFWIoctl:sendIoctl():N ioctl cmd 23 on device /dev/brq-tarn failed: File exists\n\n
  $ brief lab tarnioctl createagent -Override
  (usage)
  [1]
  $ lab tarnioctl createagent -Override -a $(printf 'a%.0s' {1..100})
  err| ERROR: invalid agent name aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa
  [1]
  $ brief lab tarnioctl createagent -Override -x
  (usage)
  err| -Override: invalid option -- 'x'
  [1]

A filter ends with 1, also when it was made: scripts know it so.

  $ lab tarnioctl addfilter -Override -h
  Create or destroy a filter.
  
  Usage: tarnioctl addfilter <options>
      -w <number> : vm world id
      -u <string> : vm uuid in the gfy form
      -v <number> : vnic index
      -f <number> : filter index
      -a <string> : agent name, default agent is kelpco-sfw
      -o <number> : on failure policy, must be 0 or 1
      -0 to -9, -A to -F <string> : filter parameter of that number, 0 to 15
      -h          : this help message
  $ add() { lab tarnioctl addfilter -Override -w 1002672 -u "$uuid" -v 0 -f 7 -a lifecycle "$@"; }
  $ add -o 1 -0 first -1 '%s second'
  Add filter: vm worldId(1002672), vnic (502e1f3a-c21a-632a-4ae1-00505699b626.000), filter (7), agent (lifecycle)
  Filter of agent lifecycle vnic 502e1f3a-c21a-632a-4ae1-00505699b626.000 index 7 was Created
  [1]
  $ tarnlab log -s -n 1
  firewall 1000: create or destroy a filter(agent "lifecycle", parameters 2, policy 1, world 1002672, slot 7, vnic "502e1f3a-c21a-632a-4ae1-00505699b626.000", add 1) = ok (made nic-1002672-eth0-lifecycle.7)
  $ lab tarnioctl getfilters -a lifecycle | grep -e Name -e Config
  Filter Name              : nic-1002672-eth0-lifecycle.7
  Filter Rule Config       : none
  $ lab tarnioctl getfailpolicy -f nic-1002672-eth0-lifecycle.7
  filter fail policy: fail close
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  $ add
  Add filter: vm worldId(1002672), vnic (502e1f3a-c21a-632a-4ae1-00505699b626.000), filter (7), agent (lifecycle)
  err| ERROR: Create filter failed: error bad state
  [1]
  $ add -a none
  Add filter: vm worldId(1002672), vnic (502e1f3a-c21a-632a-4ae1-00505699b626.000), filter (7), agent (none)
  err| ERROR: Create filter failed: error invalid argument
  [1]
  $ add -w 5
  Add filter: vm worldId(5), vnic (502e1f3a-c21a-632a-4ae1-00505699b626.000), filter (7), agent (lifecycle)
  err| ERROR: Create filter failed: error vnic uuid not found
  [1]
  $ add -0 a -2 b
  err| ERROR: missing param 1
  [1]
  $ lab tarnioctl addfilter -Override -F b
  err| ERROR: missing param 0
  [1]
  $ add -u "$uuid "
  err| ERROR: bad vcuuid, correct format "00 01 02 03 04 05 06 07-08 09 0a 0b 0c 0d 0e 0f"
  [1]
  $ add -v 256
  err| ERROR: bad vnic index, no larger than 255
  [1]
  $ add -a $(printf 'a%.0s' {1..100})
  err| ERROR: invalid agent name aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa (no-eol)
  [1]
  $ brief lab tarnioctl addfilter -Override -w 1 -v 0 -f 7 -u "$uuid"
  (usage)
  [1]
  $ all="-w 1002672 -v 0 -f 7 -a lifecycle"
  $ brief lab tarnioctl addfilter -Override $all -u "$uuid" -o 2
  (usage)
  [1]
  $ brief lab tarnioctl addfilter -Override $all -u "$uuid" -w many
  (usage)
  [1]
  $ lab tarnioctl deletefilter -Override -w 1002672 -u "$uuid" -v 0 -f 7 -a lifecycle
  Delete filter: vm worldId(1002672), vnic (502e1f3a-c21a-632a-4ae1-00505699b626.000), filter (7), agent (lifecycle)
  Filter of agent lifecycle vnic 502e1f3a-c21a-632a-4ae1-00505699b626.000 index 7 was Deleted
  [1]
  $ lab tarnioctl deletefilter -Override -w 1002672 -u "$uuid" -v 0 -f 7 -a lifecycle
  Delete filter: vm worldId(1002672), vnic (502e1f3a-c21a-632a-4ae1-00505699b626.000), filter (7), agent (lifecycle)
  err| ERROR: Delete filter failed: error switch port not found
  [1]
  $ lab tarnioctl getfilters -a lifecycle | grep Name
  [1]
  $ brief lab tarnioctl deletefilter -Override -x
  (usage)
  err| -Override: invalid option -- 'x'
  [1]

The request has room for 39 characters of an agent's name, by which the agent is found.

  $ long=$(printf 'a%.0s' {1..60})
  $ lab tarnioctl createagent -Override -a $long
  $ add -a $long | tail -1
  Filter of agent aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa vnic 502e1f3a-c21a-632a-4ae1-00505699b626.000 index 7 was Created
  $ lab tarnioctl getfilters -a $long | grep Name
  Filter Name              : nic-1002672-eth0-aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa.7
  $ lab tarnioctl deletefilter -Override $all -a $long -u "$uuid" | tail -1
  Filter of agent aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa vnic 502e1f3a-c21a-632a-4ae1-00505699b626.000 index 7 was Deleted

A kernel that does not have the request refuses it.

  $ tarnlab fault errno ENOTTY --only 1000 --count 1
  $ add
  Add filter: vm worldId(1002672), vnic (502e1f3a-c21a-632a-4ae1-00505699b626.000), filter (7), agent (lifecycle)
  err| ERROR: Create filter failed: error ioctl failed
  log| tarnioctl <83> tarnfw: TarnFWIoctl:sendIoctl():N ioctl cmd 1000 on device /dev/brq-tarn failed: Inappropriate ioctl for device\n\n
  log| tarnioctl <84> tarnfw: TarnFWLibMain:FW_AddRemoveFilter():N error 19: ioctl failed, errno=25\n
  [1]
  $ tarnlab fault absent firewall
  $ add
  Add filter: vm worldId(1002672), vnic (502e1f3a-c21a-632a-4ae1-00505699b626.000), filter (7), agent (lifecycle)
  err| ERROR: Create filter failed: error cannot load file
  log| tarnioctl <84> tarnfw: TarnFWLibMain:FW_AddRemoveFilter():N error 12: cannot open device /dev/brq-tarn: 2\n
  [1]
  $ tarnlab fault clear

  $ lab tarnioctl destroyagent -Override -h
  Destroy an agent.
  
  Usage: tarnioctl destroyagent <options>
      -a <string> : agent name
      -h          : this help message
  $ lab tarnioctl destroyagent -Override -a lifecycle
  $ lab tarnioctl destroyagent -Override -a lifecycle
  log| tarnioctl <83> tarnfw: TarnFWIoctl:sendIoctl():N ioctl cmd 24 on device /dev/brq-tarn failed: No such file or directory\n\n
  $ brief lab tarnioctl destroyagent -Override
  (usage)
  [1]

The agent of the host registers itself. No argument is looked at.

  $ lab tarnioctl registeragent
  $ lab tarnioctl registeragent -h
  $ tarnlab log -s -n 2
  firewall 41: register the agent() = ok
  firewall 41: register the agent() = ok
  $ tarnlab fault errno ENOTTY --only 41 --count 1
  $ lab tarnioctl registeragent
  err| ERROR: ioctl failed to set registeragent 195887105
  log| tarnioctl <83> tarnfw: TarnFWIoctl:sendIoctl():N ioctl cmd 41 on device /dev/brq-tarn failed: Inappropriate ioctl for device\n\n

All rules of a rule set are deleted; the system log keeps a notice.

  $ lab tarnioctl deleterules -Override -h
  Delete all rules of a ruleset.
  
  Usage: tarnioctl deleterules <options>
      -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2
      -v<number>  : enable verbose log
      -m <string> : verbose log component name or id
      -r <string> : ruleset to del all rules, e.g., domain-c7
      -h          : this help message
  $ quiet tarnioctl tarnfwcli -Override -f $filter \
  >   -c 'create ruleset "domain-c7" with { rule 7 in protocol tcp from any to any accept; };
  >       set root ruleset "domain-c7" and "";'
  $ quiet tarnioctl getrules -f $filter | grep -v realiz
  ruleset domain-c7 {
    # generation number: 1
    rule 7 at 1 in protocol tcp from any to any accept;
  }
  
  $ lab tarnioctl deleterules -Override -f $filter -r domain-c7
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <85> All rules of ruleset domain-c7 on filter nic-1002672-eth0-kelpco-sfw.2 were deleted.\n
  $ quiet tarnioctl getrules -f $filter | grep -v realiz
  ruleset domain-c7 {
    # generation number: 2
  }
  
  $ quiet tarnioctl deleterules -Override -v -f $filter -r domain-c7
  verbose level : 1
  weirgate agent: kelpco-sfw
  DEBUG: All rules of ruleset domain-c7 on filter nic-1002672-eth0-kelpco-sfw.2 were deleted.
  $ lab tarnioctl deleterules -Override -f $filter -r '%s%n'
  err| ERROR: failed to delete all rules of ruleset %s%n on filter nic-1002672-eth0-kelpco-sfw.2: no ruleset
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n
  log| tarnioctl <86> tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn library\n\n
  log| tarnioctl <84> tarnfw: TarnFWCmd:execute():N failed to execute command ClearRuleSet: no ruleset\n\n
  [1]
  $ brief lab tarnioctl deleterules -Override -f $filter
  (usage)
  err| ERROR: ruleset name is missing.
  [1]
  $ brief lab tarnioctl deleterules -Override -r domain-c7
  (usage)
  err| ERROR: filter is missing.
  [1]
  $ lab tarnioctl deleterules -Override -f $filter -r $(printf 'r%.0s' {1..64})
  err| ERROR: invalid ruleset name rrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrr
  [1]
  $ lab tarnioctl deleterules -f $filter -r domain-c7
  err| ERROR: Command deleterules is dangerous and can cause unintended consequence!
  err| ERROR: Please supply first option -Override in order to override the safety guard and actually run the command.
  [1]

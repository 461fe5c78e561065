What the language can't say, one of each kind, as another program of the host gave it to the kernel.

  $ . "$TESTDIR/setup"
  $ tarnlab init > /dev/null
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ unsaid() {
  >   tarnlab reset
  >   tarnlab run "$TESTDIR/send-record" $filter $1 || return
  >   quiet tarnpolicy save -f $filter | tail -n +4
  >   tarnlab run tarnpolicy save -f $filter > all 2> err; echo status $?
  >   tarnlab run tarnpolicy save -f $filter -o kept 2> err; echo with a file $?; ls kept 2> /dev/null
  >   tarnlab run tarnpolicy save -f $filter --partial --verify > kept 2> err
  >   echo status $? with --partial; cmp all kept; tail -n 1 err; rm kept
  >   # The text is one that loads.
  >   tarnpolicy check all | grep error:
  >   return 0
  > }

  $ unsaid own
  create ruleset "r" with {
      rule 1 in protocol any from 10.0.0.1 to any drop;
      # missing: rule 2 of rule set "r": the kernel made it for itself
      #   rule 2 in inet protocol any from 10.0.0.1 to any drop (the kernel made it for itself)
  };
  err| tarnpolicy save: missing: rule 2 of rule set "r": the kernel made it for itself
  status 3
  with a file 3
  status 0 with --partial
  tarnpolicy save: verified: 1 rule in 1 rule set, 0 members in 0 sets

  $ unsaid range
  create ruleset "r" with {
      rule 1 in protocol any from 10.0.0.1 to any drop;
      # missing: rule 2 of rule set "r": a range in a rule comes back as an address set
      #   rule 2 in protocol any from (a range in a rule comes back as an address set) to any drop
  };
  err| tarnpolicy save: missing: rule 2 of rule set "r": a range in a rule comes back as an address set
  status 3
  with a file 3
  status 0 with --partial
  tarnpolicy save: verified: 1 rule in 1 rule set, 0 members in 0 sets

  $ unsaid attribute
  create ruleset "r" with {
      rule 1 in protocol any from 10.0.0.1 to any drop;
      # missing: rule 2 of rule set "r": it is an attribute in place of an address
      #   rule 2 in protocol any from (it is an attribute in place of an address) to any drop
  };
  err| tarnpolicy save: missing: rule 2 of rule set "r": it is an attribute in place of an address
  status 3
  with a file 3
  status 0 with --partial
  tarnpolicy save: verified: 1 rule in 1 rule set, 0 members in 0 sets

  $ unsaid all-but-one
  create ruleset "r" with {
      # missing: rule 2 of rule set "r": it translates to every address but one
      #   rule 2 in protocol any from 10.0.0.1 to any (it translates to every address but one)
      rule 1 in protocol any from 10.0.0.1 to any drop;
  };
  err| tarnpolicy save: missing: rule 2 of rule set "r": it translates to every address but one
  status 3
  with a file 3
  status 0 with --partial
  tarnpolicy save: verified: 1 rule in 1 rule set, 0 members in 0 sets

  $ unsaid pool
  create ruleset "r" with {
      # missing: rule 2 of rule set "r": its pool option has no word
      #   rule 2 in protocol any from 10.0.0.1 to any (its pool option has no word)
      rule 1 in protocol any from 10.0.0.1 to any drop;
  };
  err| tarnpolicy save: missing: rule 2 of rule set "r": its pool option has no word
  status 3
  with a file 3
  status 0 with --partial
  tarnpolicy save: verified: 1 rule in 1 rule set, 0 members in 0 sets

  $ unsaid pool-of-one
  create ruleset "r" with {
      # missing: rule 2 of rule set "r": its text can't be read again
      #   rule 2 in protocol any from 10.0.0.1 to any dnat ip 10.0.0.9 poolopt random
      rule 1 in protocol any from 10.0.0.1 to any drop;
  };
  err| tarnpolicy save: missing: rule 2 of rule set "r": its text can't be read again
  status 3
  with a file 3
  status 0 with --partial
  tarnpolicy save: verified: 1 rule in 1 rule set, 0 members in 0 sets

  $ unsaid one-port
  create ruleset "r" with {
      # missing: rule 2 of rule set "r": its text can't be read again
      #   rule 2 in protocol any from 10.0.0.1 to any dnat ip 10.0.0.9 port 80-80
      rule 1 in protocol any from 10.0.0.1 to any drop;
  };
  err| tarnpolicy save: missing: rule 2 of rule set "r": its text can't be read again
  status 3
  with a file 3
  status 0 with --partial
  tarnpolicy save: verified: 1 rule in 1 rule set, 0 members in 0 sets

  $ unsaid key-policy
  create ruleset "r" with {
      rule 1 in protocol any from 10.0.0.1 to any drop;
      # missing: rule 2 of rule set "r": its text can't be read again
      #   rule 2 in protocol any from 10.0.0.1 to any pbr keypolicy "no identifier"
  };
  err| tarnpolicy save: missing: rule 2 of rule set "r": its text can't be read again
  status 3
  with a file 3
  status 0 with --partial
  tarnpolicy save: verified: 1 rule in 1 rule set, 0 members in 0 sets

  $ unsaid tag
  create ruleset "r" with {
      rule 1 in protocol any from 10.0.0.1 to any drop;
      # missing: rule 2 of rule set "r": no quotes fit around "it's \x22it\x22"
      #   rule 2 in protocol any from 10.0.0.1 to any drop (no quotes fit around "it's \x22it\x22")
  };
  err| tarnpolicy save: missing: rule 2 of rule set "r": no quotes fit around "it's \x22it\x22"
  status 3
  with a file 3
  status 0 with --partial
  tarnpolicy save: verified: 1 rule in 1 rule set, 0 members in 0 sets

  $ unsaid ranges-in-set
  # missing: address set "s": 10.0.0.1-10.0.0.9 comes back as the blocks that cover it
  create addrset "s" with {
      10.0.0.7,
      10.0.0.1-10.0.0.9
  };
  err| tarnpolicy save: missing: address set "s": 10.0.0.1-10.0.0.9 comes back as the blocks that cover it
  status 3
  with a file 3
  status 0 with --partial
  tarnpolicy save: verified: 0 rules in 0 rule sets, 5 members in 1 set

  $ unsaid excluded-in-set
  # missing: address set "s": not 10.0.0.8 is excluded, which no set can say
  create addrset "s" with 10.0.0.7;
  err| tarnpolicy save: missing: address set "s": not 10.0.0.8 is excluded, which no set can say
  status 3
  with a file 3
  status 0 with --partial
  tarnpolicy save: verified: 0 rules in 0 rule sets, 1 member in 1 set

  $ unsaid any-in-set
  # missing: address set "s": any stands alone in a text only
  create addrset "s" with 10.0.0.7;
  err| tarnpolicy save: missing: address set "s": any stands alone in a text only
  status 3
  with a file 3
  status 0 with --partial
  tarnpolicy save: verified: 0 rules in 0 rule sets, 1 member in 1 set

Whatever request of an apply fails, the filter holds the earlier state or the new one, or it is said what
leads back.

  $ . "$TESTDIR/setup"
  $ tarnlab init > /dev/null
  $ export web=nic-1002672-eth0-kelpco-sfw.2 TARNPOLICY_RUNTIME="$PWD/run"
  $ cat > before.conf << 'END'
  > create addrset "s" 10.0.0.1;
  > create addrset "gone" 10.0.0.9;
  > create ruleset "old" with rule 1 in protocol any from "gone" to any drop;
  > create ruleset "next"; set jumpto of ruleset "old" as "next";
  > set root ruleset "old" and "";
  > END
  $ cat > after.conf << 'END'
  > create addrset "s" 10.0.0.2;
  > create ruleset "next";
  > create ruleset "new" with rule 3 in protocol any from "s" to any accept;
  > set jumpto of ruleset "new" as "next";
  > set root ruleset "new" and "";
  > END
  $ cat > sweep << 'END'
  > # sweep FAULT...: orders it after 0, 1, 2 ... requests, until there are no more to fail
  > holds() { tarnpolicy diff "$1" filter:$web > /dev/null; }
  > passed=0
  > while :; do
  >   tarnpolicy apply -f $web before.conf > /dev/null || { echo "before.conf: $?"; exit 1; }
  >   tarnlab fault "$@" --after $passed
  >   tarnpolicy apply -f $web after.conf > said 2>&1
  >   status=$?
  >   waits=$(tarnlab fault | grep -c ' after ')
  >   tarnlab fault clear
  >   case $status in
  >   0) holds after.conf || echo "$passed: not the new state" ;;
  >   1 | 2) holds before.conf || echo "$passed: not the earlier state" ;;
  >   3) file=$(ls run/*.conf)
  >      grep -qF "$PWD/$file" said || echo "$passed: the file is not named"
  >      sed '1,/still to be done:$/d; /^tarnpolicy apply: [0-9]/,$d' said > rest.conf
  >      tarnioctl tarnfwcli -Override -f $web -l rest.conf
  >      holds before.conf || echo "$passed: the statements do not lead back"
  >      tarnpolicy apply -f $web "$file" > /dev/null && holds before.conf || echo "$passed: nor does the file"
  >      rm "$file" ;;
  >   *) echo "$passed: status $status" ;;
  >   esac
  >   ls run | grep 'conf$'
  >   echo $status >> statuses
  >   [ "$status" = 0 ] && [ "$waits" = 1 ] && break
  >   passed=$((passed + 1))
  > done
  > echo ended with $(sort -u statuses); rm statuses
  > [ $passed -ge 15 ]  # it did come to every request
  > END

One that fails once, and one that is answered with a status once.

  $ quiet bash sweep errno EIO --count 1
  ended with 0 1
  $ quiet bash sweep status kernel-out-of-memory --count 1
  ended with 0 1

Nothing is answered any more, or with a status only.

  $ quiet bash sweep errno EIO --count 1000
  ended with 0 1 3
  $ quiet bash sweep status kernel-out-of-memory
  ended with 0 1 3

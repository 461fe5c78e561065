Configuration text is checked without being sent.

  $ . "$TESTDIR/setup"
  $ examples="$TESTDIR/../../examples"
  $ run tarnpolicy check --help | head -1
  Usage: tarnpolicy check [OPTION]... FILE...

Text without mistakes: nothing is printed, and nothing goes to the system log.

  $ for example in "$examples"/*.conf; do run tarnpolicy check "$example"; done

Each mistake has its place, the line, a mark under the word, and a remedy.

  $ cat > web.conf << 'END'
  > create addrset "web" { 10.0.0.1, 10.0.0.0/33 };
  > create ruleset "web" with {
  > 	rule 10 in protocl tcp from any to "web" port 80 accept;
  >     rule 20 in protocol tcp from any to any port 90-80 accept with log;
  >     rule 30 in protocol any from any to any drop
  > };
  > END
  $ run tarnpolicy check web.conf
  web.conf:1:34: error: invalid value `10.0.0.0/33` [value]
      create addrset "web" { 10.0.0.1, 10.0.0.0/33 };
                                       ^~~~~~~~~~~
      help: a prefix goes from 0 to 32, and each number before it from 0 to 255
  web.conf:3:13: error: unexpected `protocl` [syntax]
      \trule 10 in protocl tcp from any to "web" port 80 accept; (esc)
      \t           ^~~~~~~ (esc)
      expected: `inet`, `inet6`, `not`, `ethertype` or `protocol`
      help: did you mean `protocol`?
  web.conf:4:50: error: invalid port range [value]
          rule 20 in protocol tcp from any to any port 90-80 accept with log;
                                                       ^~~~~
      help: the low end of a range of ports stands first: 80-90
  web.conf:5:49: error: `;` is missing after `drop` [syntax]
          rule 30 in protocol any from any to any drop
                                                      ^
      help: each rule ends with `;`
  4 errors, 0 warnings
  [1]

Standard input, and several files.

  $ echo 'create addrset;' | run tarnpolicy check - | head -1
  <stdin>:1:15: error: unexpected `;` [syntax]
  $ echo 'describe timeout' > timeout.conf
  $ run tarnpolicy check timeout.conf web.conf | tail -1
  5 errors, 0 warnings

Warnings are errors with --strict alone.

  $ echo '+ describe timeout;' > stray.conf
  $ run tarnpolicy check stray.conf
  stray.conf:1:1: warning: `+` belongs to nothing and is skipped [stray-character]
      + describe timeout;
      ^
  0 errors, 1 warning
  $ run tarnpolicy check --strict stray.conf > /dev/null
  [1]

What a terminal would obey is not printed, and a long line is cut.

  $ printf 'describe \033[31m timeout;\n' | run tarnpolicy check - | sed -n 2,3p
      describe ?[31m timeout;
               ^
  $ { printf '%0100d' 0 | tr 0 ' '; echo 'describe;'; } | run tarnpolicy check - | sed -n 2,3p
      ...                                                    describe;
                                                                     ^

For other programs.

  $ run tarnpolicy check --format json timeout.conf
  {
    "version": 1,
    "files": [
      "timeout.conf"
    ],
    "errors": 1,
    "warnings": 0,
    "diagnostics": [
      {
        "check": "syntax",
        "severity": "error",
        "file": "timeout.conf",
        "line": 1,
        "column": 17,
        "endLine": 1,
        "endColumn": 17,
        "message": "`;` is missing after `timeout`",
        "expected": [
          "`;`"
        ],
        "help": "each statement ends with `;`"
      }
    ]
  }
  [1]
  $ run tarnpolicy check --format sarif timeout.conf | sed -n '/"results"/,$p'
        "results": [
          {
            "ruleId": "syntax",
            "ruleIndex": 0,
            "level": "error",
            "message": {
              "text": "`;` is missing after `timeout`; expected `;`; each statement ends with `;`"
            },
            "locations": [
              {
                "physicalLocation": {
                  "artifactLocation": {
                    "uri": "timeout.conf"
                  },
                  "region": {
                    "startLine": 1,
                    "startColumn": 17,
                    "endLine": 1,
                    "endColumn": 17
                  }
                }
              }
            ]
          }
        ]
      }
    ]
  }

With a filter, what it holds is known, and what nobody has is an error.

  $ tarnlab init > /dev/null
  $ filter=nic-1002672-eth0-kelpco-sfw.2
  $ quiet tarnioctl tarnfwcli -Override -f $filter -c 'create addrset "clients" 10.0.0.1;'
  $ cat > clients.conf << 'END'
  > create ruleset "in" with { rule 1 in protocol any from "clients" to "cleints" accept; };
  > END
  $ quiet tarnpolicy check clients.conf | grep warning
  clients.conf:1:56: warning: nothing creates the set `clients` [unknown-set]
  clients.conf:1:69: warning: nothing creates the set `cleints` [unknown-set]
  0 errors, 2 warnings
  $ quiet tarnpolicy check -f $filter clients.conf
  clients.conf:1:69: error: nothing creates the set `cleints`, and the filter does not hold it [unknown-set]
      ...uleset "in" with { rule 1 in protocol any from "clients" to "cleints" accept; };
                                                                     ^~~~~~~~~
      help: did you mean `clients`?
  1 error, 0 warnings
  [1]
  $ quiet tarnpolicy check -f nowhere clients.conf
  err| tarnpolicy check: filter nowhere: * (glob)
  [2]

Called wrongly, and files that can't be read.

  $ run tarnpolicy check
  err| tarnpolicy check: a file is missing
  err| Its usage is shown by: tarnpolicy check --help
  [2]
  $ run tarnpolicy check --format xml web.conf
  err| tarnpolicy check: no format xml: it is human, json or sarif
  err| Its usage is shown by: tarnpolicy check --help
  [2]
  $ run tarnpolicy check nowhere.conf
  err| tarnpolicy check: cannot open nowhere.conf: No such file or directory
  [2]
  $ run tarnpolicy check .
  err| tarnpolicy check: cannot read .: Is a directory
  [2]

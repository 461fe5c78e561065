The scripts that install what is missing, on machines that are made here: a folder of stubs and a few
real tools is the whole PATH. Every machine has all packages until a file takes some away.

  $ mkdir -p tree/.ci bin
  $ cp "$TESTDIR/../../quickstart" "$TESTDIR/../../run-tests" tree
  $ cp "$TESTDIR/../../.ci/run" "$TESTDIR/../../.ci/packages.sh" tree/.ci
  $ for tool in bash cat cut dirname env grep mkdir rm tail; do
  >   ln -s "$(command -v $tool)" bin/$tool
  > done
  $ export STUBS="$PWD"

  $ stub() { rm -f "bin/$1"; { echo '#!/bin/bash'; cat; } > "bin/$1"; chmod +x "bin/$1"; }
  $ machine() {
  >   rm -rf tree/build missing
  >   touch missing
  >   stub dpkg-query << 'STUB'
  > grep -qxF -- "${@: -1}" "$STUBS/missing" || printf 'install ok installed'
  > STUB
  >   stub id <<< 'echo 0'
  >   stub nproc <<< 'echo 2'
  >   stub sudo << 'STUB'
  > echo "sudo $*"
  > "$@"
  > STUB
  >   stub apt-get << 'STUB'
  > echo "apt-get $*" >&2
  > case $1 in install) echo "reading package lists"; : > "$STUBS/missing" ;; esac
  > STUB
  >   stub g++ <<< 'echo 12'
  >   stub cmake << 'STUB'
  > case $1 in
  >   --version) printf 'cmake version 3.25.1\n\nCMake suite\n'; exit ;;
  >   --preset) mkdir -p "build/$2"; : > "build/$2/build.ninja" ;;
  > esac
  > echo "cmake $*" >> build/calls
  > STUB
  >   stub ctest <<< 'printf "ctest"; printf " [%s]" "$@"; echo'
  > }
  $ attempt() {
  >   PATH=$STUBS/bin "$@" 2> err
  >   local status=$?
  >   sed 's/^/err| /' err
  >   return $status
  > }

A machine that has everything. Arguments of run-tests go to ctest as they are, and so does its status
come back.

  $ machine
  $ attempt tree/run-tests
  ==> configuring preset dev
  ==> building preset dev
  ==> running the tests
  ctest [--preset] [dev] [-j] [2]
  $ cat tree/build/calls
  cmake --preset dev
  cmake --build --preset dev
  $ attempt tree/run-tests -R 'cli|docs' --label-exclude "two words" ''
  ==> building preset dev
  ==> running the tests
  ctest [--preset] [dev] [-j] [2] [-R] [cli|docs] [--label-exclude] [two words] []
  $ stub ctest <<< 'echo "1 test failed" >&2; exit 8'
  $ attempt tree/run-tests
  ==> building preset dev
  ==> running the tests
  err| 1 test failed
  [8]

What is missing is installed, as root or by sudo, and nothing else is.

  $ machine
  $ printf 'flex\npython3-cram\n' > missing
  $ attempt tree/run-tests -N
  ==> installing with apt: flex python3-cram
  ==> configuring preset dev
  ==> building preset dev
  ==> running the tests
  ctest [--preset] [dev] [-j] [2] [-N]
  err| apt-get update -qq
  err| apt-get install -y -qq flex python3-cram
  $ machine
  $ echo bison > missing
  $ stub id <<< 'echo 1000'
  $ attempt tree/run-tests
  ==> installing with apt: bison
  sudo apt-get update -qq
  ==> configuring preset dev
  ==> building preset dev
  ==> running the tests
  ctest [--preset] [dev] [-j] [2]
  err| apt-get update -qq
  err| apt-get install -y -qq bison

No apt-get, no network, a package that cannot be had, nobody who may install.

  $ machine
  $ printf 'flex\nbison\nvalgrind\n' > missing
  $ rm bin/apt-get
  $ attempt tree/run-tests
  err| error: apt-get is not on this machine; install these by hand and run again: flex bison valgrind
  [1]
  $ attempt tree/quickstart
  err| error: apt-get is not on this machine; install these by hand and run again: flex bison
  [1]
  $ attempt tree/.ci/run
  err| error: apt-get is not on this machine; install these by hand and run again: flex bison valgrind
  [1]

  $ stub apt-get <<< 'echo "E: Failed to fetch" >&2; exit 100'
  $ attempt tree/run-tests
  ==> installing with apt: flex bison valgrind
  err| E: Failed to fetch
  err| error: apt-get update failed (no network?); these packages are missing: flex bison valgrind
  [1]
  $ attempt tree/quickstart
  ==> installing with apt: flex bison
  err| E: Failed to fetch
  err| error: apt-get update failed (no network?); these packages are missing: flex bison
  [1]

  $ stub apt-get <<< '[ "$1" = update ] || { echo "E: Unable to locate package" >&2; exit 100; }'
  $ attempt tree/run-tests
  ==> installing with apt: flex bison valgrind
  err| E: Unable to locate package
  err| error: apt-get could not install: flex bison valgrind
  [1]

  $ stub id <<< 'echo 1000'
  $ rm bin/sudo
  $ attempt tree/run-tests
  err| error: missing packages and neither root nor sudo to install them: flex bison valgrind
  [1]
  $ attempt tree/quickstart
  err| error: missing packages and neither root nor sudo to install them: flex bison
  [1]
  $ ls tree
  quickstart
  run-tests

Compiler and CMake: none, too old, one that says nothing.

  $ machine
  $ rm bin/g++
  $ attempt tree/run-tests
  err| error: no g++ on this machine; install g++ 12 or later
  [1]
  $ stub g++ <<< 'echo 11.4.0'
  $ attempt tree/run-tests
  err| error: g++ 11.4.0 is too old; g++ 12 or later is needed
  [1]
  $ stub g++ <<< 'echo "cannot execute" >&2; exit 1'
  $ attempt tree/run-tests
  err| error: g++ does not print its version; g++ 12 or later is needed
  [1]
  $ stub g++ <<< 'echo 13.2.0'
  $ attempt tree/run-tests
  ==> configuring preset dev
  ==> building preset dev
  ==> running the tests
  ctest [--preset] [dev] [-j] [2]

  $ machine
  $ rm bin/cmake
  $ attempt tree/quickstart
  err| error: no cmake on this machine; install CMake 3.25 or later
  [1]
  $ for version in 2.8 3.9.6 3.20.5 3.24.0; do
  >   stub cmake <<< "echo cmake version $version"
  >   attempt tree/run-tests
  > done
  err| error: CMake 2.8 is too old; CMake 3.25 or later is needed
  err| error: CMake 3.9 is too old; CMake 3.25 or later is needed
  err| error: CMake 3.20 is too old; CMake 3.25 or later is needed
  err| error: CMake 3.24 is too old; CMake 3.25 or later is needed
  [1]
  $ stub cmake <<< 'exit 1'
  $ attempt tree/run-tests
  err| error: cmake does not print its version; CMake 3.25 or later is needed
  [1]
  $ stub cmake <<< 'case $1 in --version) echo cmake version 4.0.1 ;; esac'
  $ attempt tree/run-tests
  ==> configuring preset dev
  ==> building preset dev
  ==> running the tests
  ctest [--preset] [dev] [-j] [2]

A machine without Debian's package system: the commands show what is there, and CMake looks for the
libraries.

  $ machine
  $ rm bin/dpkg-query bin/apt-get
  $ attempt tree/run-tests
  err| error: apt-get is not on this machine; install these by hand and run again: ninja-build flex bison make python3 python3-cram valgrind pkg-config git
  [1]
  $ for tool in ninja flex bison make python3 cram valgrind pkg-config git; do stub $tool <<< :; done
  $ attempt tree/run-tests
  ==> configuring preset dev
  ==> building preset dev
  ==> running the tests
  ctest [--preset] [dev] [-j] [2]
  $ mv bin/cram bin/cram3
  $ rm bin/flex
  $ attempt tree/quickstart
  err| error: apt-get is not on this machine; install these by hand and run again: flex
  [1]
  $ rm bin/ninja bin/bison bin/make bin/python3 bin/cram3 bin/valgrind bin/pkg-config bin/git

A build shows how far it is, and the log has all of it.

  $ machine
  $ stub cmake << 'STUB'
  > case $1 in
  >   --version) echo cmake version 3.25.1 ;;
  >   --preset) mkdir -p "build/$2"; : > "build/$2/build.ninja" ;;
  >   *) for line in {1..37}; do echo "[$line/37] Building $line.o"; done; echo "a note" >&2 ;;
  > esac
  > STUB
  $ attempt tree/run-tests
  ==> configuring preset dev
  ==> building preset dev
      4 of 37
      8 of 37
      12 of 37
      15 of 37
      19 of 37
      23 of 37
      26 of 37
      30 of 37
      34 of 37
      37 of 37
  ==> running the tests
  ctest [--preset] [dev] [-j] [2]
  $ grep -c . tree/build/dev.log
  38
  $ tail -1 tree/build/dev.log
  a note

What fails names its log.

  $ machine
  $ stub cmake << 'STUB'
  > case $1 in
  >   --version) echo cmake version 3.25.1 ;;
  >   *) echo "Could not find GTest"; exit 1 ;;
  > esac
  > STUB
  $ attempt tree/run-tests
  ==> configuring preset dev
  err| Could not find GTest
  err| error: configuring preset dev failed; the log is build/dev.log
  [1]
  $ stub cmake << 'STUB'
  > case $1 in
  >   --version) echo cmake version 3.25.1 ;;
  >   --preset) mkdir -p "build/$2"; : > "build/$2/build.ninja" ;;
  >   *) for line in {1..100}; do echo "line $line"; done; echo "no such file" >&2; exit 2 ;;
  > esac
  > STUB
  $ attempt tree/run-tests > out
  [1]
  $ head -3 out
  ==> configuring preset dev
  ==> building preset dev
  err| line 42
  $ tail -2 out
  err| no such file
  err| error: the build of preset dev failed; the whole log is build/dev.log
  $ head -1 tree/build/dev.log
  line 1
  $ attempt tree/quickstart | tail -1
  err| error: the build of preset quickstart failed; the whole log is build/quickstart.log

The quickstart takes no arguments, and does nothing when it is given some.

  $ machine
  $ attempt tree/quickstart --help
  err| error: quickstart takes no arguments
  [1]
  $ cat missing tree/build/calls
  cat: tree/build/calls: No such file or directory
  [1]

The quickstart builds what its lab needs and runs the main job, from any folder. It needs none of the
tests' tools.

  $ machine
  $ printf '%s\n' ccache libgtest-dev libbenchmark-dev make python3 python3-cram python3-jsonschema valgrind > missing
  $ rm bin/apt-get
  $ stub tarnlab <<< 'echo "tarnlab ${TARNLAB_HOME#"$STUBS"/} $*"'
  $ mkdir elsewhere
  $ (cd elsewhere && attempt ../tree/quickstart) | sed 's/^\$/shell:/'
  ==> configuring preset quickstart
  ==> building preset quickstart (tarnioctl tarnpolicy tarnlab tarnlab_preload)
  ==> starting a lab: a model kernel whose state lives in build/quickstart-lab
  
  shell: tarnlab init
  tarnlab tree/build/quickstart-lab init
  ==> what the host has
  
  shell: tarnlab run tarnioctl getfilters
  tarnlab tree/build/quickstart-lab run tarnioctl getfilters
  ==> the main job: a configuration goes into a filter and is read back
  
  shell: tarnlab run tarnioctl tarnfwcli -Override -f nic-1002672-eth0-kelpco-sfw.2 -l examples/three-tier.conf
  tarnlab tree/build/quickstart-lab run tarnioctl tarnfwcli -Override -f nic-1002672-eth0-kelpco-sfw.2 -l examples/three-tier.conf
  
  shell: tarnlab run tarnioctl getfwconfig -f nic-1002672-eth0-kelpco-sfw.2
  tarnlab tree/build/quickstart-lab run tarnioctl getfwconfig -f nic-1002672-eth0-kelpco-sfw.2
  ==> ready. Try it yourself:
      export PATH="*/tree/build/quickstart/tool:*/tree/build/quickstart/policy:*/tree/build/quickstart/lab:$PATH" (glob)
      export TARNLAB_HOME="*/tree/build/quickstart-lab" (glob)
      tarnlab run tarnioctl getrules -f nic-1002672-eth0-kelpco-sfw.2 -s
      tarnlab run tarnioctl help
      tarnlab run tarnpolicy save -f nic-1002672-eth0-kelpco-sfw.2
      tarnlab shell
  $ cat tree/build/calls
  cmake --preset quickstart
  cmake --build --preset quickstart --target tarnioctl tarnpolicy tarnlab tarnlab_preload
  $ stub tarnlab <<< 'echo "ERROR: $*" >&2; exit 3'
  $ attempt tree/quickstart | tail -1
  err| ERROR: init

Continuous integration needs clang for the sanitizers and fuzzers when the tests have run.

  $ machine
  $ attempt tree/.ci/run
  ==> configuring preset dev
  ==> building preset dev
  ==> running the tests
  ctest [--preset] [dev] [-j] [2]
  ==> configuring preset fuzz
  ==> building preset fuzz (tarnfw_unit_tests tarnfw_fuzzers)
  ==> running the unit tests under the address and undefined behaviour sanitizers
  ctest [--preset] [fuzz] [-j] [2] [-L] [unit]
  ==> searching with each fuzz target for a few seconds
  ctest [--preset] [fuzz] [-j] [2] [-L] [fuzz]
  $ echo clang-14 > missing
  $ rm bin/apt-get
  $ attempt tree/.ci/run | tail -2
  ctest [--preset] [dev] [-j] [2]
  err| error: apt-get is not on this machine; install these by hand and run again: clang-14
  $ stub ctest <<< 'echo "1 test failed"; exit 8'
  $ attempt tree/.ci/run
  ==> building preset dev
  ==> running the tests
  1 test failed
  [8]

# Shared by ./quickstart, ./run-tests and .ci/run: saying what happens, and installing what is
# missing with apt. Sourced, not run.

say() { printf '==> %s\n' "$*"; }

die() {
  printf 'error: %s\n' "$*" >&2
  exit 1
}

# need_packages PACKAGE... installs those that are missing; nothing happens when all are there.
need_packages() {
  local missing=() package sudo=()
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' ||
      missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0

  say "installing with apt: ${missing[*]}"
  command -v apt-get >/dev/null 2>&1 ||
    die "apt-get is not on this machine; install these by hand and run again: ${missing[*]}"
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null 2>&1 ||
      die "missing packages and neither root nor sudo to install them: ${missing[*]}"
    sudo=(sudo)
  fi
  "${sudo[@]}" apt-get update -qq ||
    die "apt-get update failed (no network?); these packages are missing: ${missing[*]}"
  "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}" >/dev/null ||
    die "apt-get could not install: ${missing[*]}"
}

build_packages=(g++ cmake ninja-build flex bison ccache libgtest-dev libgmock-dev libbenchmark-dev)
test_packages=(python3 python3-cram valgrind pkg-config git)
fuzz_packages=(clang-14 libclang-rt-14-dev)

# need_tools PACKAGE... makes sure of what the build needs: the packages, a compiler of the right
# age and a CMake.
need_tools() {
  need_packages "$@"
  command -v g++ >/dev/null 2>&1 || die "no g++ on this machine; install g++ 12 or later"
  local major
  major=$(g++ -dumpversion | cut -d. -f1)
  [ "$major" -ge 12 ] || die "g++ $major is too old; g++ 12 or later is needed"
  command -v cmake >/dev/null 2>&1 || die "no cmake on this machine; install CMake 3.25 or later"
}

# build PRESET [TARGET...] configures when needed and builds; quiet unless something goes wrong.
build() {
  local preset=$1 log
  shift
  mkdir -p build
  log=build/$preset.log
  if [ ! -f "build/$preset/build.ninja" ]; then
    say "configuring preset $preset"
    cmake --preset "$preset" >"$log" 2>&1 || {
      cat "$log" >&2
      die "cmake --preset $preset failed"
    }
  fi
  say "building preset $preset${*:+ ($*)}"
  cmake --build --preset "$preset" ${*:+--target "$@"} >"$log" 2>&1 || {
    tail -n 60 "$log" >&2
    die "the build of preset $preset failed; the whole log is $log"
  }
}

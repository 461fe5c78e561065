# Shared by ./quickstart, ./run-tests and .ci/run: saying what happens, and installing what is
# missing with apt. Sourced, not run.

say() { printf '==> %s\n' "$*"; }

die() {
  printf 'error: %s\n' "$*" >&2
  exit 1
}

have() { command -v "$1" >/dev/null 2>&1; }

# What the program, the library and the lab are built with; what the tests need besides; what the
# sanitizers and fuzzers need.
build_packages=(g++ cmake ninja-build flex bison)
test_packages=(ccache libgtest-dev make netbase python3 python3-cram python3-jsonschema valgrind pkg-config git)
fuzz_packages=(clang-14 libclang-rt-14-dev)

# is_there PACKAGE. Where the package system cannot be asked, the package's command answers; what has
# none is looked for by CMake, or by the tests that need it.
is_there() {
  if have dpkg-query; then
    dpkg-query -W -f='${Status}' "$1" 2>/dev/null | grep -q 'install ok installed'
    return
  fi
  case $1 in
    lib* | ccache | netbase | python3-jsonschema) ;;
    ninja-build) have ninja ;;
    python3-cram) have cram3 || have cram ;;
    *) have "$1" ;;
  esac
}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# need_packages PACKAGE... installs those that are missing; nothing happens when all are there.
need_packages() {
  local missing=() package
  for package in "$@"; do
    is_there "$package" || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0

  have apt-get ||
    die "apt-get is not on this machine; install these by hand and run again: ${missing[*]}"
  [ "$(id -u)" -eq 0 ] || have sudo ||
    die "missing packages and neither root nor sudo to install them: ${missing[*]}"
  say "installing with apt: ${missing[*]}"
  as_root apt-get update -qq ||
    die "apt-get update failed (no network?); these packages are missing: ${missing[*]}"
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}" >/dev/null ||
    die "apt-get could not install: ${missing[*]}"
}

# need_tools PACKAGE... makes sure of what the build needs: the packages, a compiler and a CMake of
# the right age.
need_tools() {
  need_packages "$@"
  local version major minor
  have g++ || die "no g++ on this machine; install g++ 12 or later"
  version=$(g++ -dumpversion 2>/dev/null) || version=
  major=${version%%.*}
  [[ $major =~ ^[0-9]+$ ]] || die "g++ does not print its version; g++ 12 or later is needed"
  [ "$major" -ge 12 ] || die "g++ $version is too old; g++ 12 or later is needed"

  have cmake || die "no cmake on this machine; install CMake 3.25 or later"
  version=$(cmake --version 2>/dev/null) || version=
  [[ $version =~ version\ ([0-9]+)\.([0-9]+) ]] ||
    die "cmake does not print its version; CMake 3.25 or later is needed"
  major=${BASH_REMATCH[1]} minor=${BASH_REMATCH[2]}
  [ "$major" -gt 3 ] || { [ "$major" -eq 3 ] && [ "$minor" -ge 25 ]; } ||
    die "CMake $major.$minor is too old; CMake 3.25 or later is needed"
}

# progress LOG writes what it reads into the log and shows how far the build is: in place on a
# terminal, otherwise a line for each tenth. ninja begins its lines with [done/all].
progress() {
  local line tenth=0 terminal=
  [ ! -t 1 ] || terminal=yes
  while IFS= read -r line; do
    printf '%s\n' "$line" >&3
    [[ $line =~ ^\[([0-9]+)/([0-9]+)\] ]] || continue
    if [ -n "$terminal" ]; then
      printf '\r    %s of %s' "${BASH_REMATCH[@]:1}"
    elif [ $((BASH_REMATCH[1] * 10 / BASH_REMATCH[2])) -gt "$tenth" ]; then
      tenth=$((BASH_REMATCH[1] * 10 / BASH_REMATCH[2]))
      printf '    %s of %s\n' "${BASH_REMATCH[@]:1}"
    fi
  done 3>"$1"
  [ -z "$terminal" ] || printf '\r\033[K'
}

# build PRESET [TARGET...] configures when needed and builds. Shows the build's progress; what the
# compilers print goes into a log, whose end is shown when something goes wrong.
build() {
  local preset=$1 log
  shift
  mkdir -p build
  log=build/$preset.log
  if [ ! -f "build/$preset/build.ninja" ]; then
    say "configuring preset $preset"
    cmake --preset "$preset" >"$log" 2>&1 || {
      cat "$log" >&2
      die "configuring preset $preset failed; the log is $log"
    }
  fi
  say "building preset $preset${*:+ ($*)}"
  cmake --build --preset "$preset" ${*:+--target "$@"} 2>&1 | progress "$log" || {
    tail -n 60 "$log" >&2
    die "the build of preset $preset failed; the whole log is $log"
  }
}

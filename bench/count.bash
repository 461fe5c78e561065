# Sourced by the scripts that count the instructions of one program by callgrind: their options, the
# program, and the rows that they print beside their limits.
#
# Each takes [--build BUILD] [--times] [FOLDER]. FOLDER holds the programs; it is build/release/bench when
# none is named. A count's limit is what was measured with g++ in a release or in a debug build, as BUILD
# says, with 3 % of room; counts of another build have no limit.

# shellcheck disable=SC2034  # what stands here is for the script
room=3
status=0

# begin PROGRAM ARGUMENT...: sets build, times, built (the program), program (a copy of it) and folder (for
# files of the run).
begin() {
  local name=$1
  shift
  build=release
  times=
  while :; do
    case ${1:-} in
      -h | --help)
        sed -n '2,/^set/{/^set/!s/^# \{0,1\}//p}' "$0"
        exit
        ;;
      --build) build=${2:?--build needs release, debug or other} && shift 2 ;;
      --times) times=yes && shift ;;
      *) break ;;
    esac
  done
  built=${1:-$(dirname "$0")/../build/release/bench}/$name
  [ -x "$built" ] || { echo "${0##*/}: no program at $built; build the release preset" >&2; exit 2; }
  command -v valgrind >/dev/null || { echo "${0##*/}: valgrind is missing" >&2; exit 2; }
  folder=$(mktemp -d)
  trap 'rm -rf "$folder"' EXIT
  # Its lines are left out: not every compiler writes them so that valgrind reads them.
  program=$folder/$name
  objcopy --strip-debug "$built" "$program"
}

# count FUNCTION KERNEL ARGUMENT...: instructions of the function in a run of the program, without those
# of the kernel, which is a function, too, or "" for none.
count() {
  valgrind --tool=callgrind --callgrind-out-file=/dev/null --log-file="$folder/log" \
    --collect-atstart=no --toggle-collect="$1" ${2:+--toggle-collect="$2"} "$program" "${@:3}" >/dev/null
  sed -n 's/^==[0-9]*== Collected : //p' "$folder/log"
}

# row NAME COUNT RELEASE DEBUG [GOAL]: a count beside its limit, from what was measured in the two builds.
row() {
  local measured=
  case $build in
    release) measured=$3 ;;
    debug) measured=$4 ;;
  esac
  printf '%-38s %9d instructions' "$1" "$2"
  if [ -n "$measured" ]; then
    local limit=$((measured * (100 + room) / 100))
    if [ "$2" -le "$limit" ]; then
      printf ' (at most %d)' "$limit"
    else
      printf ' (ABOVE its limit of %d)' "$limit"
      status=1
    fi
  fi
  printf '%s\n' "${5:+, goal $5}"
}

What the documents name is there.

  $ cd "$TESTDIR/../.."
  $ documents="README.md CONTRIBUTING.md CHANGELOG.md $(echo docs/*.md)"

Links from one file to another.

  $ links() { grep -oE '\]\([^)#]+' "$1" | cut -c3- | grep -v '^[a-z]*:'; }
  $ for document in $documents; do
  >   for link in $(links $document); do
  >     [ -e "$(dirname $document)/$link" ] || echo "$document: no $link"
  >   done
  > done
  $ links README.md | head -2
  docs/commands.md
  docs/filters.md

Files and folders in backquotes; what is built, and what stands for several, is not looked for.

  $ named() { grep -ohE '`[^` ]+/[^` ]*`' "$1" | tr -d '`' |
  >   grep -E '^(\./|\.ci/)?(src|tool|policy|lab|tests|bench|docs|examples)/|^\./[a-z-]+$' | grep -v '[<>]'; }
  $ for document in $documents; do
  >   for name in $(named $document); do
  >     ls -d $name $name.h $name.cpp $name.t 2> /dev/null | grep -q . || echo "$document: no $name"
  >   done
  > done
  $ named docs/architecture.md | head -2
  tool/
  policy/

Scripts that the documents have a reader run.

  $ scripts() { grep -ohE '^( {4})?(\./|bench/|tests/|examples/)[a-z./-]+' "$1" | tr -d ' '; }
  $ for document in $documents; do
  >   for script in $(scripts $document); do [ -x $script ] || echo "$document: cannot run $script"; done
  > done
  $ scripts README.md
  ./quickstart
  ./run-tests

Presets.

  $ presets() { sed -n '/"configurePresets"/,/"buildPresets"/s/.*"name": "\(.*\)",/\1/p' CMakePresets.json; }
  $ for preset in $(presets); do
  >   [ $preset = base ] || grep -q "\`$preset\`" CONTRIBUTING.md || echo "no word on $preset"
  > done
  $ presets | head -2
  base
  dev

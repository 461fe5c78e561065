Sources include downwards only, by the table in docs/architecture.md.

  $ layers="$TESTDIR/layers.py"
  $ $layers "$TESTDIR/../.."

What it finds in a tree where they don't.

  $ mkdir docs src tool policy lab
  $ cat > docs/architecture.md << 'END'
  > | Layer | Files in `src/` | `tool/` | What they are for |
  > |---|---|---|---|
  > | top | `flat` | yes | open to tool |
  > | middle | `Rule*`, `*Cmd` | | |
  > | bottom | `RuleRecord`, `Gone` | | |
  > 
  > | Layer | Files in `policy/` | What they are for |
  > |---|---|---|
  > | finding | `Diff*` | what differs |
  > | ground | `State`, `Lost*` | what is there |
  > END
  $ echo '#include "RuleRecord.h"' > src/flat.h
  $ echo '#include "flat.h"' > src/RuleRecord.h
  $ printf '#include "RuleReadCmd.h"\n#include <flat.h>\n' > src/Rule.cpp
  $ printf '  #include "flat.h"\n#include "nowhere.h"\n' > src/RuleReadCmd.h
  $ touch src/Other.cpp lab/LabText.h tool/Records.h
  $ printf '#include "flat.h"\n#include "RuleRecord.h"\n#include "Records.h"\n' > tool/main.cpp
  $ printf '#include "Records.h"\n#include "Rule.h"\n#include "State.h"\n' > policy/Diff.cpp
  $ echo '#include "DiffText.h"' > policy/State.h
  $ touch policy/DiffText.h policy/Other.cpp
  $ printf '#include "LabText.h"\n#include "flat.h"\n' > lab/LabModel.cpp
  $ $layers .
  src/Other: no layer in docs/architecture.md
  src/Rule.cpp (middle) includes flat.h (top), a layer above
  src/RuleReadCmd.h (middle) includes flat.h (top), a layer above
  src/RuleRecord.h (bottom) includes flat.h (top), a layer above
  src/RuleReadCmd.h includes nowhere.h, which is not in src/
  tool/main.cpp includes RuleRecord.h, which is not open to tool/
  policy/Diff.cpp includes Records.h, which is not in policy/ or src/
  policy/Other: no layer in docs/architecture.md
  policy/State.h (ground) includes DiffText.h (finding), a layer above
  lab/LabModel.cpp includes flat.h, which is not in lab/
  docs/architecture.md: no file for Gone
  docs/architecture.md: no file for Lost*
  [1]

And in one where they do.

  $ cat > docs/architecture.md << 'END'
  > | Layer | Files in `src/` | `tool/` | What they are for |
  > | top | `flat` | yes | open to tool |
  > END
  $ rm src/Other.cpp src/Rule* lab/* policy/* tool/*
  $ echo > src/flat.h
  $ $layers .

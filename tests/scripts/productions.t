The numbers in the grammar are those of the generated parser.

  $ productions="$TESTDIR/productions.py"
  $ $productions "$TESTDIR/../../src/tarnfw_parser.y"
  381 productions

A grammar whose numbers are wrong, or that lacks one.

  $ cat > good.y << 'END'
  > %token A "word a"
  > %token B
  > %%
  > 
  > Text:
  >     %empty  /* 2 */
  >   | Text A { int braces = 1; /* 9 */ } B  /* 4; the action is 3 */
  >   | B  /* 5 */  { }
  >     ;
  > %%
  > END
  $ $productions good.y
  3 productions
  $ sed 's|/\* 5 \*/|/* 6 */|; s|/\* 2 \*/||' good.y > bad.y
  $ $productions bad.y
  Text: has None, bison has 2 for Text:
  Text: B has 6, bison has 5 for Text: B
  [1]

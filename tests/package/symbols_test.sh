#!/bin/sh
# Holds the symbols that the shared library exports against the checked-in list. Arguments: library, list.
set -eu
nm --dynamic --defined-only --demangle --format=posix "$1" |
  sed -E 's/ [A-Za-z]( [0-9a-f]+)*$//' | LC_ALL=C sort -u | diff -u "$2" - ||
  { echo "the list is $2; - lines are missing, + lines are new"; exit 1; }

#!/bin/sh
# Runs the recipes of the guide and compares what they print with what it says. Arguments: the directory of the programs, the guide, the
# number of recipes.
set -u
programs=$1 guide=$2 count=$3
recipe=$(cd "$(dirname "$0")" && pwd)/recipe.awk
# shellcheck source=tests/examples/common.sh
. "$(dirname "$0")/common.sh"
suffix=
[ "$host" = posix ] || suffix=.exe

fail() {
  echo "FAILED: recipe $number: $1"
  failures=$((failures + 1))
}

# Several mebibytes, so that there is progress to tell.
yes 'host service: ERROR connection lost' | head -n 200000 >big.log
printf 'teh text\n' >notes.txt
for number in $(seq "$count"); do
  run "$programs/guide_$number$suffix" >printed 2>errors || fail "$(cat errors)"
  tr -d '\r' <printed >said
  awk -v number="$number" -v expected=1 -f "$recipe" "$guide" >expected
  cmp -s expected said || fail "printed $(cat said)"
done
grep -q "the text" notes.txt || fail "notes.txt was not saved"

[ $failures -eq 0 ] && echo "all good"
exit $failures

#!/bin/sh
# Tries lines, tree, filter and words on good and on bad input. Arguments: the programs.
set -u
lines=$1 tree=$2 filter=$3 words=$4
# shellcheck source=tests/examples/common.sh
. "$(dirname "$0")/common.sh"

if only_posix "names that are no UTF-8"; then
  odd=$(printf 'caf\351')
  odd_file=$(printf '\377b')
  top=$(pwd -P)/top
  separator=/
else
  odd=$(printf 'caf\303\251')
  odd_file=$odd
  top="Z:$(pwd -P | tr / '\\')\\top"
  separator='\'
fi

expect() { # NAME STATUS OUTPUT ARGUMENT...
  name=$1 status=$2 output=$3
  shift 3
  said=$(run "$@" 2>errors)
  got=$?
  [ $got -eq "$status" ] || { echo "FAILED: $name: status $got"; failures=$((failures + 1)); }
  [ "$said" = "$output" ] || { echo "FAILED: $name: said $said"; failures=$((failures + 1)); }
}

printf 'one\r\n  two\rthree\n\n    five' >in
expect "a line" 0 "        2   2    two" "$lines" in 2
expect "all lines" 0 "        1   0  one
        2   2    two
        3   0  three
        4   0  
        5   4      five" "$lines" in
expect "lines to the end" 0 "        5   4      five" "$lines" in 5 9
grep -q 'in has 5 lines' errors || { echo "FAILED: the number of lines"; failures=$((failures + 1)); }
expect "no such line" 1 "" "$lines" in 6
expect "no such file" 1 "" "$lines" missing
printf 'un' >"$odd"
expect "a name beyond ASCII" 0 "        1   0  un" "$lines" "$odd" 1
expect "no such file of such a name" 1 "" "$lines" "$odd-2"
grep -q "^lines: $odd-2: " errors || { echo "FAILED: the name in a message"; failures=$((failures + 1)); }
expect "no number" 2 "" "$lines" in x
{ yes 'a line of some length' | head -n 300000; printf 'last'; } >many
expect "the last of many" 0 "   300001   0  last" "$lines" many 300001
head -c 3000000 /dev/zero | tr '\0' 'x' >long
[ "$(run "$lines" long | wc -c)" -eq 3000016 ] || { echo "FAILED: a long line"; failures=$((failures + 1)); }

mkdir -p top/sub "top/$odd"
printf 12345 >top/a
printf 123 >"top/sub/$odd_file"
printf 1 >"top/$odd/c"
ln -s .. top/sub/up
! only_posix "a pipe that has a name" || mkfifo top/pipe
sums="           1  $top$separator$odd
           3  $top${separator}sub
           9  $top"
expect "a tree" 0 "$sums" "$tree" top
truncate -s 3G top/large
expect "a file over the limit" 1 "$sums" "$tree" top
grep -q 'large: over 2147483647 bytes' errors || { echo "FAILED: over the limit"; failures=$((failures + 1)); }
expect "no directory" 1 "" "$tree" top/none
if only_posix "a way through no directory"; then
  expect "a way through no directory" 1 "" "$tree" top/none/..
  grep -q 'top/none/..: no such directory' errors || { echo "FAILED: the reason"; failures=$((failures + 1)); }
fi
expect "a file for a directory" 1 "" "$tree" top/a
if only_posix "an output that takes nothing"; then
  ! run "$lines" in 2>/dev/null >/dev/full || { echo "FAILED: lines into a full device"; failures=$((failures + 1)); }
  ! run "$tree" top/sub 2>/dev/null >/dev/full || { echo "FAILED: tree into a full device"; failures=$((failures + 1)); }
fi

printf 'one two\n\n2two' >source
expect "replaces in each line" 0 "one <two>

2<two>" "$filter" '(two)' '<$1>' <source
expect "nothing to filter" 0 "" "$filter" a b </dev/null
expect "no expression" 1 "" "$filter" '(' b <source
expect "half a call" 2 "" "$filter" a <source
run "$filter" "some length" "a length" <many >filtered
sed 's/some length/a length/' many | cmp -s - filtered || { echo "FAILED: a filter of much"; failures=$((failures + 1)); }
expect "the most frequent words" 0 "300000 a
300000 length
300000 line
300000 of
300000 some
1 last" "$words" many
expect "no such file for words" 1 "" "$words" missing
exit $failures

#!/bin/sh
# Tries lines and tree on good and on bad input. Arguments: the programs.
set -u
lines=$1 tree=$2
scratch=$(mktemp -d)
trap 'chmod -R u+rwx "$scratch"; rm -rf "$scratch"' EXIT
cd "$scratch" || exit 1
failures=0

expect() { # NAME STATUS OUTPUT ARGUMENT...
  name=$1 status=$2 output=$3
  shift 3
  said=$("$@" 2>errors)
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
name=$(printf 'caf\351')
printf 'un' >"$name"
expect "a name that is no UTF-8" 0 "        1   0  un" "$lines" "$name" 1
expect "no number" 2 "" "$lines" in x
{ yes 'a line of some length' | head -n 300000; printf 'last'; } >many
expect "the last of many" 0 "   300001   0  last" "$lines" many 300001
head -c 3000000 /dev/zero | tr '\0' 'x' >long
[ "$("$lines" long | wc -c)" -eq 3000016 ] || { echo "FAILED: a long line"; failures=$((failures + 1)); }

mkdir -p top/sub "top/$(printf 'caf\351')"
printf 12345 >top/a
printf 123 >"top/sub/$(printf '\377b')"
printf 1 >"top/$(printf 'caf\351')/c"
ln -s .. top/sub/up
mkfifo top/pipe
full=$(pwd -P)/top
expect "a tree" 0 "           1  $full/$(printf 'caf\351')
           3  $full/sub
           9  $full" "$tree" top
truncate -s 3G top/large
expect "a file over the limit" 1 "           1  $full/$(printf 'caf\351')
           3  $full/sub
           9  $full" "$tree" top
grep -q 'large: over 2147483647 bytes' errors || { echo "FAILED: over the limit"; failures=$((failures + 1)); }
expect "no directory" 1 "" "$tree" top/none
expect "a way through no directory" 1 "" "$tree" top/none/..
grep -q 'top/none/..: no such directory' errors || { echo "FAILED: the reason"; failures=$((failures + 1)); }
expect "a file for a directory" 1 "" "$tree" top/a
exit $failures

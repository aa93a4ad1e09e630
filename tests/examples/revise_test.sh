#!/bin/sh
# Tries revise and recode on good and on bad input. Arguments: the programs, and on Windows one that has "keep" open.
set -u
revise=$1 recode=$2 hold=${3:-}
# shellcheck source=tests/examples/common.sh
. "$(dirname "$0")/common.sh"

fail() {
  echo "FAILED: $1"
  failures=$((failures + 1))
}

works() { # NAME EXPECTED-FILE OUT ARGUMENT...
  name=$1 expected=$2 out=$3
  shift 3
  run "$revise" "$@" >said 2>&1 || fail "$name: $(cat said)"
  cmp -s "$expected" "$out" || fail "$name: $out differs"
}

refused() { # NAME STATUS PATTERN ARGUMENT...
  name=$1 status=$2 pattern=$3
  shift 3
  run "$revise" "$@" >said 2>errors
  got=$?
  [ $got -eq "$status" ] || fail "$name: status $got"
  [ "$(wc -l <errors)" -eq 1 ] || fail "$name: not one line: $(cat errors)"
  grep -q "$pattern" errors || fail "$name: said $(cat errors)"
  [ "$(cat keep)" = kept ] || fail "$name: a file was lost"
  # shellcheck disable=SC2144
  [ ! -e missing-out ] && ! ls ./*~ >/dev/null 2>&1 || fail "$name: a file was left: $(ls)"
}

printf 'One cat, two Cats, a concat.\n' >in
printf kept >keep

sed 's/cat/tiger/g' in >expected
works "replaces" expected out1 cat tiger in out1
printf 'One dog, two Cats, a concat.\n' >expected
works "whole word" expected out2 --whole-word cat dog in out2
sed 's/[cC]at/dog/g' in >expected
works "ignores case, replaces OUT" expected out2 --ignore-case --force cat dog in out2
works "no match" in out3 --cache 0 zebra x in out3
: >empty
works "empty file" empty out4 a b empty out4
printf -- '--b' >dashes
printf 'ab' >expected
works "behind --" expected out5 -- --b ab dashes out5
if only_posix "modes and links"; then
  chmod 640 out2 && works "keeps the mode of OUT" in out2 --force zebra x in out2
  [ "$(stat -c %a out2)" = 640 ] || fail "the mode is $(stat -c %a out2)"
  ln -s out2 link && works "through a link" in out2 --force zebra x in link
  [ -L link ] || fail "the link is gone"
fi
name=$(printf 'caf\303\251')
cp in "$name"
printf 'One %s, two Cats, a con%s.\n' "$name" "$name" >expected
works "a name and a text beyond ASCII" expected "$name-2" cat "$name" "$name" "$name-2"

printf '\357\273\277Br\303\274cke \345\261\261 \360\235\204\236 B' >text
printf '\357\273\277Br\303\274cke \345\261\261 clef B' >expected
works "text keeps its form" expected out6 --text "$(printf '\360\235\204\236')" clef text out6
printf '\377\376B\000r\000\374\000c\000k\000e\000 \000q\134 \0004\330\036\335 \000b\000' >expected
works "text in another form" expected out7 --text --whole-word --encoding utf16 B b text out7
printf 'Br\303\274cke \345\261\261 \360\235\204\236 b' >expected
works "text without a mark" expected out8 --text --no-bom --encoding utf8 --whole-word B b out7 out8
{ run "$recode" utf16be text out9 && run "$recode" utf16 out9 out10 && run "$recode" utf8 out10 out11; } >said ||
  fail "recode: $(cat said)"
cmp -s text out11 || fail "recode: the text came back different"

told() { # NAME LINES COMMAND...
  name=$1 lines=$2
  shift 2
  run "$@" >said 2>errors || fail "$name: $(cat errors)"
  [ "$(cat errors)" = "$lines" ] || fail "$name: told $(cat errors)"
}

if only_posix "names that are no UTF-8"; then
  odd=$(printf 'caf\351')
  cp in "$odd"
  works "a name that is no UTF-8" in "$odd-2" zebra x "$odd" "$odd-2"
  works "a text of such a name" in "$odd-3" --text zebra x "$odd" "$odd-3"
  told "recoding such a name" "" "$recode" utf16 "$odd" "$odd-4"
fi
mark=$(printf '\357\273\277')
for start in "$mark" ""; do
  [ -n "$start" ] || only_posix "UTF-8 as the code page" || continue
  printf '%sa\377b\303 \357\277\275' "$start" >ill
  told "ill-formed bytes" "ill: 2 characters could not be kept, the first at unit 1" "$revise" --text --force zebra x ill out12
  printf '%sa\357\277\275\377\000\357\277\275' "$start" >"cut"
  rm -f out13
  told "a 0 byte" "cut: 1 characters could not be kept, the first at unit 2
cut: 4 bytes at the end were left out" "$recode" utf16 cut out13
done
# The code page: of the locale, or as the emulator has it.
! only_posix "code pages by LC_ALL" || export LC_ALL=de_DE.ISO-8859-1
told "characters that are not in the code page" "out14: 2 characters could not be kept, the first at unit 7" \
  "$recode" ansi text out14
told "the same over a file" "out14: 2 characters could not be kept, the first at unit 7" \
  "$revise" --text --encoding ansi --force zebra x text out14
unset LC_ALL
told "nothing lost" "" "$recode" utf8 text out15

run "$recode" latin text missing-out >said 2>&1 && fail "recode took an unknown form"
run "$recode" utf8 text out11 >said 2>&1 && fail "recode replaced a file"

refused "no arguments" 2 usage
refused "--bom without --text" 2 usage --bom a b in missing-out
refused "unknown form" 2 "utf16be" --text --encoding latin a b in missing-out
refused "missing text" 1 "nowhere: not found" --text a b nowhere missing-out
refused "unknown option" 2 usage --what a b in missing-out
refused "bad cache size" 2 32767 --cache 40000 a b in missing-out
refused "empty OLD" 2 "OLD is empty" "" b in missing-out
refused "missing IN" 1 "nowhere: not found" a b nowhere missing-out
refused "IN is a directory" 1 "not a file" a b . missing-out
refused "OUT exists" 1 "already exists" a b in keep
refused "OUT is a directory" 1 "is a directory" --force a b in .
refused "OUT in a missing directory" 1 "illegal path" a b in nowhere/out
refused "same file" 1 "same file" --force a b keep ./keep
ln keep twin && refused "same file by another name" 1 "same file" --force a b keep twin
truncate -s 2147483648 huge && refused "over the limit" 1 "over the limit" a b huge missing-out
rm -f huge
if only_posix "a full device, and arguments that are no UTF-8"; then
  refused "OLD is no UTF-8" 1 "not UTF-8" --text "$(printf '\377')" b in missing-out
  refused "full device for a text" 1 "disk full" --text --force a b in /dev/full
  refused "full device" 1 "disk full" --force a b in /dev/full
else
  mkfifo until
  run "$hold" <until &
  exec 3>until
  until [ -e opened ]; do sleep 0.1; done
  refused "OUT is open" 1 "no permission" --force a b in keep
  refused "OUT is open, for a text" 1 "no permission" --text --force a b in keep
  exec 3>&-
  wait
  rm until opened
  works "OUT is open no more" in keep --force zebra x in keep
  printf kept >keep
  # Wine replaces a read-only file.
  echo "left out: OUT is read-only"
fi

# A file-size limit stands for the full disk: of 512-byte blocks here. The text grows beyond it when it is saved.
head -c 30000 /dev/zero | tr '\0' a >letters
head -c 90000 /dev/zero | tr '\0' a >more
! only_posix "limits on the size of files" || (
  ulimit -f 100
  refused "full disk" 1 "disk full" a aaa letters missing-out
  refused "full disk for a text" 1 "disk full" --text --encoding utf16be a aaa letters missing-out
  refused "full disk over OUT by a text" 1 "disk full" --text --force a aaa letters keep
  refused "full disk over OUT" 1 "disk full" --force a aaa letters keep
  # The swap file meets the limit before any file is saved.
  refused "full disk under the swap file" 1 "disk full?" --cache 4 a b more missing-out
  exit $failures
) || failures=$((failures + 1))

[ $failures -eq 0 ] && echo "all good"
exit $failures

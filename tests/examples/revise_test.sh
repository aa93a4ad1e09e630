#!/bin/sh
# Tries revise on good and on bad input. Argument: the program.
set -u
revise=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit 1
failures=0

fail() {
  echo "FAILED: $1"
  failures=$((failures + 1))
}

works() { # NAME EXPECTED-FILE OUT ARGUMENT...
  name=$1 expected=$2 out=$3
  shift 3
  "$revise" "$@" >said 2>&1 || fail "$name: $(cat said)"
  cmp -s "$expected" "$out" || fail "$name: $out differs"
}

refused() { # NAME STATUS PATTERN ARGUMENT...
  name=$1 status=$2 pattern=$3
  shift 3
  "$revise" "$@" >said 2>errors
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
chmod 640 out2 && works "keeps the mode of OUT" in out2 --force zebra x in out2
[ "$(stat -c %a out2)" = 640 ] || fail "the mode is $(stat -c %a out2)"
ln -s out2 link && works "through a link" in out2 --force zebra x in link
[ -L link ] || fail "the link is gone"

refused "no arguments" 2 usage
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
refused "full device" 1 "disk full" --force a b in /dev/full
truncate -s 2147483648 huge && refused "over the limit" 1 "over the limit" a b huge missing-out
rm -f huge

# A file-size limit stands for the full disk: of 512-byte blocks here. The text grows beyond it when it is saved.
head -c 30000 /dev/zero | tr '\0' a >letters
head -c 90000 /dev/zero | tr '\0' a >more
(
  ulimit -f 100
  refused "full disk" 1 "disk full" a aaa letters missing-out
  refused "full disk over OUT" 1 "disk full" --force a aaa letters keep
  # The swap file meets the limit before any file is saved.
  refused "full disk under the swap file" 1 "disk full?" --cache 4 a b more missing-out
  exit $failures
) || failures=$((failures + 1))

[ $failures -eq 0 ] && echo "all good"
exit $failures

#!/bin/sh
# Runs the samples of the README and of the headers, on good and on bad input. Whatever fails, no file may be lost. Argument: the
# directory of the programs.
set -u
programs=$1
# shellcheck source=tests/examples/common.sh
. "$(dirname "$0")/common.sh"
suffix=
[ "$host" = posix ] || suffix=.exe

# Leaves these in the directory: pairs of a name and what it holds.
with() {
  rm -rf "${scratch:?}"/*
  while [ $# -gt 0 ]; do
    printf '%s' "$2" >"$1"
    shift 2
  done
}

# Runs a sample, on POSIX under a file-size limit of 4 blocks of 512 bytes, which stands for a full disk, and looks at what there
# is then: pairs of a name and what it holds, "*" for anything, and nothing else.
expect() { # NAME STATUS SAMPLE [FILE CONTENT]...
  name="$3, $1" status=$2
  (
    if [ "$host" = posix ]; then
      trap '' XFSZ
      ulimit -f 4
    fi
    run "$programs/$3$suffix"
  )
  got=$?
  [ $got -eq "$status" ] || fail "status $got"
  shift 3
  files=$(($# / 2))
  while [ $# -gt 0 ]; do
    [ -e "$1" ] && { [ "$2" = "*" ] || [ "$(cat "$1")" = "$2" ]; } || fail "$1 is not as it should be"
    shift 2
  done
  [ "$(find . -mindepth 1 -maxdepth 1 | wc -l)" -eq $files ] || fail "left $(ls)"
}

fail() {
  echo "FAILED: $name: $1"
  failures=$((failures + 1))
}

text='teh ERROR colour'
long=$(yes "$text" | head -c 3000)
for row in 'readme_1 big.log revised.log' 'vfile big.log revised.log' 'tcharvfile notes.txt revised.txt' \
  'vf_losses notes.txt notes.ansi'; do
  # shellcheck disable=SC2086
  set -- $row
  sample=$1 in=$2 out=$3
  with
  expect "without its input" 1 "$sample"
  with "$out" old
  expect "without its input, over a file" 1 "$sample" "$out" old
  mkdir "$in"
  expect "an input that cannot be read" 1 "$sample" "$in" "*" "$out" old
  with "$in" "$text" "$out" old
  expect "over a file" 1 "$sample" "$in" "$text" "$out" old
  only_posix "$sample, a full disk" || continue
  with "$in" "$long"
  expect "a full disk" 1 "$sample" "$in" "$long" "$out" "*"
done

with big.log "$text"
expect "good input" 0 readme_1 big.log "$text" revised.log "# revised
teh [failure] colour"
with big.log "$text"
expect "good input" 0 vfile big.log "$text" revised.log "teh ERROR color"
with notes.txt "$text"
expect "good input" 0 tcharvfile notes.txt "$text" revised.txt "the ERROR colour"
with notes.txt "$text"
expect "good input" 0 vf_losses notes.txt "$text" notes.ansi "$text"
printf '\357\273\277caf\303' >notes.txt
rm notes.ansi
expect "ill-formed input" 1 vf_losses notes.txt "*"

for sample in readme_2 vf_saving; do
  with
  expect "without its input" 1 $sample
  with notes.txt "$text"
  expect "good input" 0 $sample notes.txt "the ERROR colour"
  with notes.txt "$text"
  chmod 444 notes.txt
  expect "a read-only input" 1 $sample notes.txt "$text"
  only_posix "$sample, a full disk" || continue
  with notes.txt "$long"
  expect "a full disk" 1 $sample notes.txt "$long"
done

with
expect "good" 0 hfile numbers "*"
[ "$(od -An -td4 numbers | tr -s ' ')" = " 1 2 3" ] || fail "wrong numbers"
with numbers old
expect "over a file" 1 hfile numbers old
with
mkdir logs
touch logs/a.txt logs/b
expect "good" 0 hfiledir logs "*"
[ "$(stat -c %A logs/a.txt logs/b | cut -c 3)" = "-
w" ] || fail "wrong attributes"
expect "good" 0 vmem logs "*"

for sample in readme_3 vf_characters vf_movable vf_ranges vf_streams vf_text; do
  with
  expect "good" 0 $sample
done
for sample in vf_names vf_progress; do
  with
  expect "without its input" 1 $sample
  with big.log "$long"
  expect "good input" 0 $sample big.log "$long"
done

[ $failures -eq 0 ] && echo "all good"
exit $failures

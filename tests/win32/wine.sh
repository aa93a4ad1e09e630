#!/bin/sh
# Runs a program for Windows under Wine, in a prefix of the project's own, which the first run makes. Arguments: program, its
# arguments. Root runs it as another user, since the system refuses root nothing.
set -eu
top=$(cd "$(dirname "$0")/../.." && pwd)
prefix=${VFILE_WINEPREFIX:-$top/build/wine}
wine=/usr/lib/wine/wine64
export WINESERVER=/usr/lib/wine/wineserver64

user=
if [ "$(id -u)" -eq 0 ] && setpriv --reuid=nobody --regid=nogroup --clear-groups test -r "$0"; then
  user='setpriv --reuid=nobody --regid=nogroup --clear-groups'
fi

export WINEPREFIX="$prefix/prefix" WINEDEBUG=-all WINEDLLOVERRIDES='mscoree=;mshtml=;winemenubuilder.exe=;winedbg.exe=' LANG=C.UTF-8
unset LC_ALL LC_CTYPE DISPLAY WAYLAND_DISPLAY
export HOME="$prefix"

if [ ! -e "$prefix/ready" ]; then
  mkdir -p "$prefix"
  # Programs may start at the same time.
  (
    flock 9
    [ ! -e "$prefix/ready" ] || exit 0
    [ -z "$user" ] || chown nobody:nogroup "$prefix"
    $user "$wine" wineboot --init </dev/null >/dev/null 2>&1 9>&-
    touch "$prefix/ready"
  ) 9>"$prefix.lock"
fi
# One server for programs that follow each other: one that ends as the next program comes would refuse that. It stays for a minute.
$user "$WINESERVER" --persistent=60 </dev/null >/dev/null 2>&1 || true

# What Wine starts beside the first program lives on with others, and holds the streams of the first. So these are files.
said=$(mktemp -d)
trap 'rm -rf "$said"' EXIT
status=0
$user "$wine" "$@" >"$said/out" 2>"$said/err" || status=$?
cat "$said/out"
cat "$said/err" >&2
exit $status

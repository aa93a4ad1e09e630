#!/bin/sh
# Runs a program for Windows under Wine, in a prefix of the project's own, which the first run makes. Arguments: program, its
# arguments. Root runs it as another user, since the system refuses root nothing.
set -eu
top=$(cd "$(dirname "$0")/../.." && pwd)
prefix=${VFILE_WINEPREFIX:-$top/build/wine}
wine=$(command -v wine64 || echo /usr/lib/wine/wine64)

user=
if [ "$(id -u)" -eq 0 ] && setpriv --reuid=nobody --regid=nogroup --clear-groups test -r "$0"; then
  user='setpriv --reuid=nobody --regid=nogroup --clear-groups'
fi

export WINEPREFIX="$prefix/prefix" WINEDEBUG=-all WINEDLLOVERRIDES='mscoree=;mshtml=;winemenubuilder.exe=' LANG=C.UTF-8
unset LC_ALL LC_CTYPE DISPLAY WAYLAND_DISPLAY
export HOME="$prefix"

if [ ! -e "$prefix/ready" ]; then
  mkdir -p "$prefix"
  # Programs may start at the same time.
  (
    flock 9
    [ ! -e "$prefix/ready" ] || exit 0
    [ -z "$user" ] || chown nobody:nogroup "$prefix"
    $user "$wine" wineboot --init >/dev/null 2>&1
    touch "$prefix/ready"
  ) 9>"$prefix.lock"
fi
exec $user "$wine" "$@"

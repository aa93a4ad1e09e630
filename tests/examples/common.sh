# What the tests of the examples share: to be read by one, which is then in an empty directory, its `$scratch`.
#
# VFILE_HOST: posix (if unset) or win32. VFILE_EMULATOR: what runs programs of the host, if they do not run by themselves.
# shellcheck shell=sh
host=${VFILE_HOST:-posix}
scratch=$(mktemp -d)
trap 'chmod -R u+rwX "$scratch"; rm -rf "$scratch"' EXIT
cd "$scratch" || exit 1
# shellcheck disable=SC2034
failures=0

# An emulator may run programs as another user, to whom the files have to belong.
run() { # PROGRAM ARGUMENT...
  if [ -z "${VFILE_EMULATOR:-}" ]; then
    "$@"
    return
  fi
  [ "$(id -u)" -ne 0 ] || chown -hR nobody:nogroup "$scratch"
  "$VFILE_EMULATOR" "$@"
}

# Whether the tests of what POSIX alone has can run; else names them.
only_posix() { # WHAT
  [ "$host" = posix ] || { echo "left out: $1"; return 1; }
}

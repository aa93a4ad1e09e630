#!/bin/sh
# Builds the consumer against the library. Arguments: source directory, build directory of the library, C++ compiler, and
#   installed: as installed (CMake package and pkg-config) and as part of its own tree, shared and static,
#   packages: as unpacked from the packages of the build.
#
# VFILE_HOST: posix (if unset) or win32, whose programs need VFILE_EMULATOR, and VFILE_TOOLCHAIN, the file that CMake builds them by.
set -eu
source=$1 build=$2 compiler=$3 what=$4
host=${VFILE_HOST:-posix}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
# An emulator may run programs as another user.
chmod 755 "$scratch"
consumer=$source/tests/package/consumer
configure="cmake -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=$compiler"
[ -z "${VFILE_TOOLCHAIN:-}" ] || configure="$configure -DCMAKE_TOOLCHAIN_FILE=$VFILE_TOOLCHAIN"
warnings="-Wall -Wextra -Woverloaded-virtual -Werror"

quietly() { # COMMAND...
  "$@" >"$scratch/said" 2>&1 || { cat "$scratch/said"; exit 1; }
}

run() { # NAME PROGRAM
  program=$2
  [ "$host" = posix ] || program=$2.exe
  said=$(${VFILE_EMULATOR:+"$VFILE_EMULATOR"} "$program" 2>&1) || { echo "$1: failed: $said"; exit 1; }
  [ "$(echo "$said" | tr -d '\r')" = good ] || { echo "$1: said: $said"; exit 1; }
  echo "$1: good"
}

# Where a shared library is found beside or by its program: gives the options that see to it.
take_along() { # PREFIX DIRECTORY
  if [ "$host" = win32 ]; then
    echo "-static"
    dll=$(find "$1" -name '*.dll')
    [ -n "$dll" ] || return 0
    cp "$dll" "$2"
    # An import library is no static one.
    echo "-Wl,-Bdynamic"
  else
    echo "-Wl,-rpath,$(dirname "$(find "$1" -name 'libTarvelo*.so' -o -name 'libTarvelo*.a')")"
  fi
}

use_installed() { # NAME PREFIX [SYSROOT]
  made=$scratch/$1
  quietly $configure -S "$consumer" -B "$made" -DCMAKE_PREFIX_PATH="$2"
  quietly cmake --build "$made"
  options=$(take_along "$2" "$made")
  run "$1, CMake package" "$made/consumer"
  PKG_CONFIG_LIBDIR=$(dirname "$(find "$2" -name TarveloVFile.pc)")
  PKG_CONFIG_SYSROOT_DIR=${3:-}
  export PKG_CONFIG_LIBDIR PKG_CONFIG_SYSROOT_DIR
  # shellcheck disable=SC2046,SC2086
  quietly "$compiler" -std=c++20 $warnings "$consumer/main.cpp" "$consumer/$host/Host.cpp" -o "$made/by-pc$suffix" \
    $options $(pkg-config --cflags --libs TarveloVFile) $behind
  run "$1, pkg-config" "$made/by-pc"
}

suffix=
behind=
if [ "$host" = win32 ]; then
  suffix=.exe
  behind=-Wl,-Bstatic
fi

installed() {
  # The prefix is another than that of the configuration.
  quietly cmake --install "$build" --prefix "$scratch/shared-prefix"
  use_installed shared "$scratch/shared-prefix"

  # The tree of the consumer installs the library that it has built, which saves building another.
  linkage=
  [ "$host" = posix ] || linkage=-DVFILE_SHARED=OFF
  quietly $configure $linkage -S "$consumer" -B "$scratch/tree" -DVFILE_SOURCE_DIR="$source" -DCMAKE_CXX_FLAGS="$warnings"
  quietly cmake --build "$scratch/tree"
  run add_subdirectory "$scratch/tree/consumer"
  if [ "$host" = win32 ]; then
    quietly cmake --install "$scratch/tree" --prefix "$scratch/static-prefix"
    use_installed static "$scratch/static-prefix"
    return
  fi

  quietly $configure -S "$source" -B "$scratch/static-build" -DVFILE_SHARED=OFF -DVFILE_BUILD_EXAMPLES=OFF \
    -DCMAKE_INSTALL_LIBDIR="$scratch/static/lib" -DCMAKE_INSTALL_INCLUDEDIR="$scratch/static/include"
  quietly cmake --build "$scratch/static-build"
  quietly cmake --install "$scratch/static-build" --prefix "$scratch/elsewhere"
  use_installed "static, absolute directories" "$scratch/static"

  quietly $configure -S "$source" -B "$scratch/plain" -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON
  echo "configured without GoogleTest"
}

debian() {
  command -v dpkg-shlibdeps >/dev/null || { echo "left out: Debian's packages, for want of dpkg-shlibdeps"; exit 77; }
  quietly cpack --config "$build/CPackConfig.cmake" -B "$scratch/packages"
  library=$(ls "$scratch"/packages/libtarvelovfile[0-9]*_*.deb)
  development=$(ls "$scratch"/packages/libtarvelovfile-dev_*.deb)
  dpkg-deb -f "$library" Depends | grep -q 'libc6 (>= .*libstdc++6 (>= ' || { echo "the library depends on no other"; exit 1; }
  wanted="$(dpkg-deb -f "$library" Package) (= $(dpkg-deb -f "$library" Version))"
  [ "$(dpkg-deb -f "$development" Depends)" = "$wanted" ] || { echo "the development package does not depend on $wanted"; exit 1; }
  dpkg-deb -x "$library" "$scratch/root"
  # It is what programs run with, and no more.
  [ -z "$(find "$scratch/root" ! -type d ! -name '*.so.*')" ] || { find "$scratch/root"; exit 1; }
  dpkg-deb -x "$development" "$scratch/root"
  use_installed "Debian packages" "$scratch/root/usr" "$scratch/root"
}

archive() {
  quietly cpack --config "$build/CPackConfig.cmake" -B "$scratch/packages"
  mkdir "$scratch/unpacked"
  (cd "$scratch/unpacked" && cmake -E tar x "$scratch"/packages/*.zip)
  use_installed archive "$(echo "$scratch"/unpacked/*)"
}

case $what-$host in
  installed-*) installed ;;
  packages-posix) debian ;;
  packages-win32) archive ;;
esac

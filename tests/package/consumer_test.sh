#!/bin/sh
# Builds the consumer against the library as installed (CMake package and pkg-config) and as part of its own tree, shared and
# static. Arguments: source directory, build directory of the library, C++ compiler.
set -eu
source=$1 build=$2 compiler=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
consumer=$source/tests/package/consumer
configure="cmake -G Ninja -DCMAKE_CXX_COMPILER=$compiler -DCMAKE_BUILD_TYPE=Release"
warnings="-Wall -Wextra -Woverloaded-virtual -Werror"

quietly() { # COMMAND...
  "$@" >"$scratch/said" 2>&1 || { cat "$scratch/said"; exit 1; }
}

run() { # NAME PROGRAM
  said=$("$2" 2>&1) || { echo "$1: failed: $said"; exit 1; }
  [ "$said" = good ] || { echo "$1: said: $said"; exit 1; }
  echo "$1: good"
}

use_installed() { # NAME PREFIX
  quietly $configure -S "$consumer" -B "$scratch/$1-consumer" -DCMAKE_PREFIX_PATH="$2"
  quietly cmake --build "$scratch/$1-consumer"
  run "$1, CMake package" "$scratch/$1-consumer/consumer"
  pc=$(find "$2" -name TarveloVFile.pc)
  PKG_CONFIG_PATH=$(dirname "$pc")
  export PKG_CONFIG_PATH
  # shellcheck disable=SC2046,SC2086
  quietly "$compiler" -std=c++20 $warnings "$consumer/main.cpp" -o "$scratch/$1-pc" \
    $(pkg-config --cflags --libs TarveloVFile) "-Wl,-rpath,$(pkg-config --variable=libdir TarveloVFile)"
  run "$1, pkg-config" "$scratch/$1-pc"
}

# The prefix is another than that of the configuration.
quietly cmake --install "$build" --prefix "$scratch/shared"
use_installed shared "$scratch/shared"

quietly $configure -S "$source" -B "$scratch/static-build" -DVFILE_SHARED=OFF -DVFILE_BUILD_EXAMPLES=OFF \
  -DCMAKE_INSTALL_LIBDIR="$scratch/static/lib" -DCMAKE_INSTALL_INCLUDEDIR="$scratch/static/include"
quietly cmake --build "$scratch/static-build"
quietly cmake --install "$scratch/static-build" --prefix "$scratch/elsewhere"
use_installed "static, absolute directories" "$scratch/static"

quietly $configure -S "$consumer" -B "$scratch/tree" -DVFILE_SOURCE_DIR="$source" -DCMAKE_CXX_FLAGS="$warnings"
quietly cmake --build "$scratch/tree"
run "add_subdirectory" "$scratch/tree/consumer"

quietly $configure -S "$source" -B "$scratch/plain" -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON
echo "configured without GoogleTest"

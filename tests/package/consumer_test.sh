#!/bin/sh
# Builds the consumer against the library as installed (CMake package and pkg-config) and as part of its own tree, shared and
# static. Arguments: source directory, build directory of the library, C++ compiler.
set -eu
source=$1 build=$2 compiler=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
consumer=$source/tests/package/consumer
configure="cmake -G Ninja -DCMAKE_CXX_COMPILER=$compiler -DCMAKE_BUILD_TYPE=Release -DVFILE_BUILD_TESTS=OFF -DVFILE_BUILD_EXAMPLES=OFF"

run() { # NAME PROGRAM
  said=$("$2" 2>&1) || { echo "$1: failed: $said"; exit 1; }
  [ "$said" = good ] || { echo "$1: said: $said"; exit 1; }
  echo "$1: good"
}

use_installed() { # NAME PREFIX
  $configure -S "$consumer" -B "$scratch/$1-consumer" -DCMAKE_PREFIX_PATH="$2" >/dev/null
  cmake --build "$scratch/$1-consumer" >/dev/null
  run "$1, CMake package" "$scratch/$1-consumer/consumer"
  pc=$(find "$2" -name TarveloVFile.pc)
  PKG_CONFIG_PATH=$(dirname "$pc")
  export PKG_CONFIG_PATH
  # shellcheck disable=SC2046
  "$compiler" -std=c++20 "$consumer/main.cpp" -o "$scratch/$1-pc" $(pkg-config --cflags --libs TarveloVFile) \
    "-Wl,-rpath,$(pkg-config --variable=libdir TarveloVFile)"
  run "$1, pkg-config" "$scratch/$1-pc"
}

cmake --install "$build" --prefix "$scratch/shared" >/dev/null
# The prefix of a pkg-config file is that of the configuration; here it moves along.
sed -i "s|^prefix=.*|prefix=$scratch/shared|" "$(find "$scratch/shared" -name TarveloVFile.pc)"
use_installed shared "$scratch/shared"

$configure -S "$source" -B "$scratch/static-build" -DBUILD_SHARED_LIBS=OFF -DCMAKE_INSTALL_PREFIX="$scratch/static" >/dev/null
cmake --build "$scratch/static-build" --target install >/dev/null
use_installed static "$scratch/static"

$configure -S "$consumer" -B "$scratch/tree" -DVFILE_SOURCE_DIR="$source" >/dev/null
cmake --build "$scratch/tree" >/dev/null
run "add_subdirectory" "$scratch/tree/consumer"

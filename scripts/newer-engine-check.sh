#!/usr/bin/env bash
# Builds the library on SQLCipher 4 (Debian 12 has 3.4) and passes the whole suite on that engine. The tool, which reaches
# it only through the plug-in, is the one of build/debug, led to it. Exit code 77: not run, because its source cannot be
# had here.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh

TOVR_WITH_TESTS=1 scripts/install-dependencies.sh
engine=$(scripts/build-sqlcipher-4.sh) || {
  [ $? -eq 77 ] || exit 1
  printf '\n######## Check on SQLCipher 4 not run: its source cannot be fetched\n' >&2
  exit 77
}
requireEngine() {
  [[ $(ldd "$1") == *"$engine/lib/"* ]] || { echo "$1 runs on another engine" >&2; exit 1; }
}

quietly cmake -S . -B build/sqlcipher4 -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_PREFIX_PATH="$engine" -DTOVR_BUILD_TOOL=OFF \
  -DTOVR_BUILD_EXAMPLES=OFF -DTOVR_WARNINGS_AS_ERRORS=ON
cmake --build build/sqlcipher4
requireEngine build/sqlcipher4/tests/tovr_tests
ctest --test-dir build/sqlcipher4 --output-on-failure -j "$(nproc)"

quietly cmake --preset debug
cmake --build --preset debug --target tovrdb_tests
export LD_LIBRARY_PATH="$engine/lib"
requireEngine build/debug/src/libtovrdatabaseservice.so
ctest --preset debug -R '^(ToolTest|FileCommandTest|PictureTest)\.' -j "$(nproc)"

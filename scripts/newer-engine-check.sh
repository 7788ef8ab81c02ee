#!/usr/bin/env bash
# Builds everything on SQLCipher 4 (Debian 12 has 3.4) and passes the whole suite on it. Exit code 77: not run, because
# that engine's source cannot be had here.
set -euo pipefail
cd "$(dirname "$0")/.."

engine=$(scripts/build-sqlcipher-4.sh) || {
  [ $? -eq 77 ] || exit 1
  printf '\n######## Check on SQLCipher 4 not run: its source cannot be fetched\n' >&2
  exit 77
}
cmake -S . -B build/sqlcipher4 -G Ninja -DCMAKE_PREFIX_PATH="$engine" -DTOVR_BUILD_EXAMPLES=OFF >/dev/null
cmake --build build/sqlcipher4
ldd build/sqlcipher4/tests/tovr_tests | grep -qF "$engine/lib/" || { echo "the tests run on another engine" >&2; exit 1; }
ctest --test-dir build/sqlcipher4 --output-on-failure -j "$(nproc)"

#!/usr/bin/env bash
# Builds SQLCipher 4 for this machine, for the checks against that generation of files, and prints the folder, which
# CMake takes as -DCMAKE_PREFIX_PATH. Exit code 77: the source cannot be had here.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh
source scripts/cache.sh

version=4.6.1-2
prefix=$cache/sqlcipher-$version
inputs=(scripts/build-sqlcipher-4.sh scripts/fetch-sqlcipher.sh)
if ! isBuiltFrom "$prefix" "${inputs[@]}"; then
  TOVR_WITH_SOURCES=1 scripts/install-dependencies.sh || exit 77
  rm -rf "$prefix"
  mkdir -p "$prefix/include/sqlcipher" "$prefix/lib"
  scripts/fetch-sqlcipher.sh trixie "$version" "$prefix/source"
  cp "$prefix/source/sqlite3.h" "$prefix/include/sqlcipher/"
  quietly nice cc -O2 -fPIC -shared -Wl,-soname,libsqlcipher.so.0 -DNDEBUG -DSQLITE_HAS_CODEC -DSQLITE_TEMP_STORE=2 \
    "$prefix/source/sqlite3.c" -o "$prefix/lib/libsqlcipher.so.0" -lcrypto -ldl -lpthread -lm
  ln -s libsqlcipher.so.0 "$prefix/lib/libsqlcipher.so"
  rm -rf "$prefix/source"
  stampOf "${inputs[@]}" >"$prefix/stamp"
fi
echo "$prefix"

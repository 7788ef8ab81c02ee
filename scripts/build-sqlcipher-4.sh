#!/usr/bin/env bash
# Builds SQLCipher 4 for this machine, for the checks against that generation of files, and prints the folder, which
# CMake takes as -DCMAKE_PREFIX_PATH. Exit code 77: the source cannot be had here.
set -euo pipefail
version=4.6.1-2
cache=${TOVR_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/tovrdatabaseservice}
prefix=$cache/sqlcipher-$version
cd "$(dirname "$0")/.."
stamp=$(sha256sum <scripts/build-sqlcipher-4.sh)  # another version or another flag makes another build
if [ "$(cat "$prefix/stamp" 2>/dev/null)" = "$stamp" ]; then
  echo "$prefix"
  exit 0
fi

TOVR_WITH_SOURCES=1 scripts/install-dependencies.sh
mkdir -p "$cache"
work=$(mktemp -d -p "$cache")
trap 'rm -rf "$work"' EXIT
scripts/fetch-source.sh trixie sqlcipher "$version" "$work/source"

cd "$work/source"
{
  ./configure --disable-tcl --enable-tempstore=yes CFLAGS=-DSQLITE_HAS_CODEC LIBS=-lcrypto
  make sqlite3.c
} >"$cache/sqlcipher-4.log" 2>&1 || { tail -n 20 "$cache/sqlcipher-4.log" >&2; exit 1; }

rm -rf "$prefix"
mkdir -p "$prefix/include/sqlcipher" "$prefix/lib"
cp sqlite3.h "$prefix/include/sqlcipher/"
cc -O2 -fPIC -shared -Wl,-soname,libsqlcipher.so -DSQLITE_HAS_CODEC -DSQLITE_TEMP_STORE=2 -DNDEBUG \
  sqlite3.c -o "$prefix/lib/libsqlcipher.so" -lcrypto -ldl -lpthread -lm
echo "$stamp" >"$prefix/stamp"
echo "$prefix"

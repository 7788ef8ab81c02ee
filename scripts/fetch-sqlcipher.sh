#!/usr/bin/env bash
# Fetches the source package of SQLCipher, exactly VERSION of the Debian suite SUITE, into FOLDER and makes its one
# source file there, sqlite3.c, with its header. Exit code 77: the source cannot be had here.
set -euo pipefail
[ $# -eq 3 ] || { echo "usage: $0 SUITE VERSION FOLDER" >&2; exit 2; }
scripts=$(cd "$(dirname "$0")" && pwd)
source "$scripts/failures.sh"

"$scripts/fetch-source.sh" "$1" sqlcipher "$2" "$3"
cd "$3"
quietly nice ./configure --disable-tcl --enable-tempstore=yes CFLAGS=-DSQLITE_HAS_CODEC LIBS=-lcrypto
quietly nice make sqlite3.c

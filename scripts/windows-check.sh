#!/usr/bin/env bash
# Cross-builds for 64-bit Windows, passes the tests under Wine, and has that build and the native one of build/debug
# read each other's database files. Exit code 77: not run, because something that it takes cannot be had here.
set -euo pipefail
cd "$(dirname "$0")/.."

notRun() {
  printf '\n######## Windows check not run: %s\n' "$1" >&2
  exit 77
}

TOVR_WITH_WINDOWS=1 scripts/install-dependencies.sh || notRun "the cross compiler or Wine cannot be installed"
dependencies=$(scripts/build-windows-dependencies.sh) || {
  [ $? -eq 77 ] && notRun "the sources of its libraries cannot be fetched"
  exit 1
}
cmake --preset mingw -DCMAKE_FIND_ROOT_PATH="$dependencies" >/dev/null
cmake --build --preset mingw
ctest --preset mingw -j "$(nproc)"
cmake --preset debug >/dev/null
cmake --build --preset debug --target tovrdb

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export TOVRDB_KEY='a key for both'
root=$PWD
cd "$work"
native() { "$root/build/debug/tool/tovrdb" -q "$@"; }
windows() { "$root/scripts/wine-run.sh" "$root/build/mingw/tool/tovrdb.exe" -q "$@"; }

differs() { echo "the native and the Windows build differ: $*" >&2; exit 1; }
write() {  # BUILD TYPE FILE
  "$1" create "$3" --type "$2" --name wall
  local named=(--screen main)
  if [ "$2" = 0 ]; then
    "$1" screen add "$3" --name main --rect 0,0,319,179
    named=()
  fi
  "$1" coef put "$3" --type 1 --rect 0,0,319,179 "${named[@]}" block.npy
  "$1" data put "$3" --type 3 config.bin
}
read_() {  # BUILD FILE FOLDER
  "$1" check "$2" >/dev/null
  "$1" export "$2" "$3"
  local block
  block=$(find "$3" -name 'Coef-1.*')
  cmp <(tail -c 1036800 "$block") <(tail -c 1036800 block.npy) || differs "the block of $2 as $1 reads it"
  cmp "$3/Data-1.bin" config.bin || differs "the data of $2 as $1 reads it"
}

native sample --size 320x180 -o block.npy  # 18 bytes a cell
head -c 5000 /dev/urandom >config.bin
for type in 0 1; do
  for writer in native windows; do
    file=$writer$type.db
    write $writer $type "$file"
    for reader in native windows; do read_ $reader "$file" "$file-$reader"; done
    diff -r "$file-native" "$file-windows" || differs "$file as either exports it"
    echo "a database of type $type, written by the $writer build: both builds read the same"
  done
done

printf 'one\r\ntwo\r\n' >text
export TOVRDB_CIPHER_KEY=kelptarn
windows encrypt text enciphered
native decrypt enciphered text.native
windows decrypt enciphered text.windows
cmp text.native <(printf 'one\ntwo\n') || differs "a text that the Windows build has enciphered"
cmp text.windows text || differs "a text, through the Windows build and back"
echo "a text, enciphered by the windows build: both builds read the same lines"

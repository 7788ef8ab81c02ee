#!/usr/bin/env bash
# Has the native build (build/debug) and the Windows build (build/mingw, under Wine) read each other's database files and
# enciphered texts. scripts/windows-check.sh makes what this takes.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh

[ -e build/mingw/tool/tovrdb.exe ] || { echo "build for Windows first: scripts/windows-check.sh" >&2; exit 1; }
quietly cmake --preset debug
quietly cmake --build --preset debug --target tovrdb

root=$PWD
work=$(mktemp -d)
trap 'cd "$root"; rm -rf "$work"; scripts/wine-end.sh' EXIT
cd "$work"
export TOVRDB_KEY='a key for both'

native() { quietly "$root/build/debug/tool/tovrdb" "$@"; }
windows() { quietly "$root/scripts/wine-run.sh" "$root/build/mingw/tool/tovrdb.exe" "$@"; }

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
  "$1" check "$2"
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

#!/usr/bin/env bash
# Installs what is missing, builds, and shows the library at work: a wall of three screens is stored in databases of
# both types, and rectangles are read back and compared to the byte. Leaves its files in demo-output/.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh

scripts/install-dependencies.sh
quietly cmake --preset release -DTOVR_BUILD_TESTS=OFF -DTOVR_BUILD_PYTHON=OFF
quietly cmake --build --preset release

tovrdb=$PWD/build/release/tool/tovrdb
out=demo-output
rm -rf "$out"
mkdir "$out"
export TOVRDB_KEY=${TOVRDB_KEY:-demonstration}

screens=(main left right)
declare -A rect=([main]=0,0,1919,1079 [left]=1920,0,2559,359 [right]=1920,360,2559,719)
region=600,400,855,527  # 256 x 128 cells in the middle of the main screen

db() {  # its messages go to a file, and are shown when it fails
  "$tovrdb" "$@" 2>>"$out/messages.log" || { echo "exit code $? from: tovrdb $*"; cat "$out/messages.log"; exit 1; } >&2
}
sample() { db sample --size 2560x1080 "$@"; }

echo "A wall of three screens, each cell a 3x3 matrix of 16-bit numbers: 18 bytes."
for screen in "${screens[@]}"; do
  sample --rect "${rect[$screen]}" -o "$out/$screen.npy"
  echo "  $screen ${rect[$screen]}: $(stat -c %s "$out/$screen.npy") bytes of synthetic coefficients"
done
sample --rect "$region" --raw -o "$out/expected.bin"

compare() {  # FILE EXPECTED WHAT
  cmp "$1" "$2" || { echo "  $3 DIFFERS"; exit 1; }
  echo "  $3: exact to the byte ($(stat -c %s "$1") bytes)"
}

for type in 0 1; do
  file=$out/wall-type$type.db
  echo
  echo "A database of type $type: screens are found by $([ $type = 0 ] && echo rectangle || echo name)."
  db create "$file" --type $type --name wall
  for screen in "${screens[@]}"; do
    named=()
    if [ $type = 0 ]; then
      db screen add "$file" --name "$screen" --rect "${rect[$screen]}"
    else
      named=(--screen "$screen")  # storing a block makes the screen
    fi
    db coef put "$file" --type 1 --rect "${rect[$screen]}" "${named[@]}" "$out/$screen.npy"
  done
  named=()
  [ $type = 0 ] || named=(--screen main)
  db coef get "$file" --type 1 --rect "$region" "${named[@]}" --raw -o "$out/region.bin" --force
  compare "$out/region.bin" "$out/expected.bin" "rectangle $region of screen main"
  db coef get "$file" --type 1 --rect "${rect[main]}" "${named[@]}" --dtype uint16 -o "$out/whole.npy" --force
  cmp <(tail -c 37324800 "$out/whole.npy") <(tail -c 37324800 "$out/main.npy") || { echo "  screen main DIFFERS"; exit 1; }
  echo "  the whole of screen main: exact to the byte (37324800 bytes)"

  head -c 5000 /dev/urandom | base64 >"$out/config.txt"
  db data put "$file" --type 3 "$out/config.txt"
  db data get "$file" --type 3 -o "$out/config.back" --force
  compare "$out/config.back" "$out/config.txt" "a configuration blob"
done

echo
db info "$out/wall-type0.db"

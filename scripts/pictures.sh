#!/usr/bin/env bash
# Makes the pictures of docs/pictures.md from SYNTHETIC data (nothing was measured). TOVRDB names another program than
# that of the release build.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh

tovrdb=${TOVRDB:-$PWD/build/release/tool/tovrdb}
[ -x "$tovrdb" ] || { echo "build the tool first: scripts/demo.sh" >&2; exit 1; }
out=$PWD/docs/pictures
mkdir -p "$out"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
export TOVRDB_KEY=pictures

cabinet() {  # FILE SEED L T: stores the cells of a cabinet of 32 x 45
  local rect=$3,$4,$(($3 + 31)),$(($4 + 44))
  "$tovrdb" -q sample --size 192x90 --cabinet 32x45 --seed "$2" --rect "$rect" -o cabinet.npy --force
  "$tovrdb" -q coef put "$1" --type 1 --rect "$rect" cabinet.npy
}

# A wall of two screens, one area per cabinet.
"$tovrdb" -q create wall.db --type 0
"$tovrdb" -q screen add wall.db --name main --rect 0,0,127,89
"$tovrdb" -q screen add wall.db --name side --rect 128,0,191,44
for left in 0 32 64 96; do
  for top in 0 45; do cabinet wall.db 1 $left $top; done
done
for left in 128 160; do cabinet wall.db 1 $left 0; done

# The same wall after one cabinet of each screen was exchanged.
cp wall.db later.db
cabinet later.db 2 64 45
cabinet later.db 2 160 0

"$tovrdb" heatmap wall.db -o "$out/cabinet.png" --force --type 1 --component 0 \
  --rect 0,0,31,44 --unit 'red of red, 1/16384' --title 'One cabinet'
"$tovrdb" heatmap wall.db -o "$out/wall.png" --force --type 1 --component 0 \
  --wall --unit 'red of red, 1/16384'
"$tovrdb" diff wall.db later.db --component 0 --heatmap "$out/difference.png" --force \
  --unit 'red of red, 1/16384' || [ $? -eq 1 ]

for picture in "$out"/*.png; do
  size=$(stat -c %s "$picture")
  echo "$(basename "$picture"): $size bytes"
  [ "$size" -lt 150000 ] || { echo "$(basename "$picture") is too large for the documents" >&2; exit 1; }
done

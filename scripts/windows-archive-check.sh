#!/usr/bin/env bash
# Makes the archive for Windows from the build that scripts/windows-check.sh has made, and tries it under Wine as users
# unpack it: in a folder with blanks and letters outside ASCII in its name, and by a project that finds its CMake package.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh
source scripts/tool-trial.sh

[ -e build/mingw/tool/tovrdb.exe ] || { echo "build for Windows first: scripts/windows-check.sh" >&2; exit 1; }

# The licences of what the binaries have in them, as Debian's packages tell them.
licences=build/mingw/licences
rm -rf $licences build/mingw/packages
mkdir -p $licences
for package in libsqlcipher-dev libssl-dev libcli11-dev libfmt-dev libeigen3-dev nlohmann-json3-dev libutfcpp-dev \
  gcc-mingw-w64-base mingw-w64-common; do
  cp "/usr/share/doc/$package/copyright" "$licences/$package.txt"
done
cp /usr/share/common-licenses/{Apache-2.0,GPL-3,MPL-2.0} $licences/
quietly cmake --preset mingw -DTOVR_LICENCES="$PWD/$licences"
quietly cmake --build --preset mingw --target package

work=$(mktemp -d)
trap 'rm -rf "$work"; scripts/wine-end.sh' EXIT
place="$work/Größe der Wand 壁"
mkdir "$place"
archive=$(ls "$PWD"/build/mingw/packages/*.zip)
(cd "$place" && quietly cmake -E tar xf "$archive")
folder=$(ls -d "$place"/*)

export TOVRDB_KEY='a key for the trial'
root=$PWD
tovrdb() { quietly "$root/scripts/wine-run.sh" "$folder/bin/tovrdb.exe" "$@"; }
cd "$place"
tryTool 左
echo "the archive works in '$(basename "$place")'"

# The narrow paths of a program of one's own have the letters of the process's code page only, so elsewhere.
cd "$root"
mv "$folder" "$work/the package"
folder="$work/the package"
quietly cmake -S "$folder/share/doc/tovrdatabaseservice/examples/consumer" -B "$work/consumer" -G Ninja \
  -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64.cmake" -DCMAKE_FIND_ROOT_PATH="$folder"
quietly cmake --build "$work/consumer"
quietly ctest --test-dir "$work/consumer" --output-on-failure
echo "its CMake package serves a project"

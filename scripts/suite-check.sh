#!/usr/bin/env bash
# Builds everything by the preset $1, passes all tests, and looks for secrets and for what was left behind.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh
[ $# -eq 1 ] || { echo "usage: $0 PRESET" >&2; exit 2; }
preset=$1

TOVR_WITH_TESTS=1 scripts/install-dependencies.sh
quietly cmake --preset "$preset" -DTOVR_BUILD_TESTS=ON
cmake --build --preset "$preset"
left="$PWD/build/$preset/left-behind"
rm -rf "$left"
mkdir -p "$left"
TMPDIR="$left" ctest --preset "$preset" -j "$(nproc)"
scripts/find-secrets.sh "build/$preset" "$left"

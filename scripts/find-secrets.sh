#!/usr/bin/env bash
# After a run of CTest in the build folder $1 with TMPDIR=$2: fails where anything that was printed holds a key of the
# tests, or anything is left in the folder for temporary files. (What the tests find in the files while they are there,
# and payloads, they look for themselves: tests/support/SecretWatch.h.)
set -euo pipefail
source "$(dirname "$0")/failures.sh"
log="$1/Testing/Temporary/LastTest.log"
left="$2"

keys=('the test key' brimstoquelvard kelptarn 000102030405060708090A0B0C0D0E0F)
arguments=()
for key in "${keys[@]}"; do arguments+=(-e "$key"); done

grep -qa 'DataTableOperateBase::exec sql' "$log" || { echo "$log does not hold what the tests print" >&2; exit 1; }
if grep -anF "${arguments[@]}" "$log" >&2; then
  echo "a key was printed: see above, lines of $log" >&2
  exit 1
fi
if find "$left" -mindepth 1 | grep . >&2; then
  echo "the tests left these behind" >&2
  exit 1
fi
echo "no key was printed, and nothing is left behind"

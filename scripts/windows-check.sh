#!/usr/bin/env bash
# Cross-builds for 64-bit Windows, passes the tests under Wine, has that build and the native one exchange files,
# and tries the archive that users get.
# Exit code 77: not run, because something that it takes cannot be had here.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh

notRun() {
  printf '\n######## Windows check not run: %s\n' "$1" >&2
  exit 77
}

TOVR_WITH_TESTS=1 TOVR_WITH_WINDOWS=1 scripts/install-dependencies.sh || notRun "the cross compiler or Wine cannot be installed"
dependencies=$(scripts/build-windows-dependencies.sh) || {
  [ $? -eq 77 ] && notRun "the sources of its libraries cannot be fetched"
  exit 1
}
quietly cmake --preset mingw -DCMAKE_FIND_ROOT_PATH="$dependencies"
cmake --build --preset mingw
trap scripts/wine-end.sh EXIT
ctest --preset mingw -j "$(nproc)"
scripts/exchange-check.sh
scripts/windows-archive-check.sh

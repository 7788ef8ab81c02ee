#!/usr/bin/env bash
# Runs clang-tidy over the sources of the debug build. Exit code 77: not run, because clang-tidy 14, whose checks are the
# chosen ones, cannot be had here (Debian 12 has it).
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh

TOVR_WITH_TESTS=1 TOVR_WITH_TIDY=1 scripts/install-dependencies.sh || {
  printf '\n######## clang-tidy not run: there is no clang-tidy-14 here\n' >&2
  exit 77
}
quietly cmake --preset debug
log=build/clang-tidy.log
run-clang-tidy-14 -p build/debug -quiet -j "$(nproc)" "^$PWD/(src|host|client|tool|python|examples)/" >"$log" 2>&1 || {
  code=$?
  grep -E 'error:|warning:' "$log" >&2 || tail -n 100 "$log" >&2
  echo "run-clang-tidy-14: exit code $code, all it printed is in $log" >&2
  exit 1
}
echo "clang-tidy finds nothing"

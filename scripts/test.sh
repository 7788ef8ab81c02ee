#!/usr/bin/env bash
# Installs what is missing, builds, and passes all tests of the build that users get.
#   scripts/test.sh          that, in about five minutes on two cores
#   scripts/test.sh --all    and every other check of the project; one that takes what cannot be had here is left out,
#                            loudly, and never counts as passed
# A step that fails does not keep the others from running. Ends with one line per step: what came of it, and what it took.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh

case $* in
  '' | --all) ;;
  *) echo "usage: $0 [--all]" >&2; exit 2 ;;
esac

steps=()
failed=0
step() {  # NAME SCRIPT [ARGUMENT...]; exit code 77 of the script: left out
  printf '\n== %s\n' "$1"
  local start=$SECONDS code=0 result=passed
  "${@:2}" || code=$?
  [ $code -eq 0 ] || result="FAILED, exit code $code"
  [ $code -ne 77 ] || result='NOT RUN, see above'
  steps+=("$(printf '%6d s  %s: %s' $((SECONDS - start)) "$1" "$result")")
  [ $code -eq 0 ] || [ $code -eq 77 ] || failed=1
}
tellSteps() { printf '\n== steps\n'; printf '%s\n' "${steps[@]}" "$(printf '%6d s  in all' $SECONDS)"; }
trap tellSteps EXIT

if [ "$*" != --all ]; then
  step "tests of the release build" scripts/suite-check.sh release
  exit $failed
fi

# Compiled objects are kept from run to run.
source scripts/cache.sh
TOVR_WITH_CCACHE=1 scripts/install-dependencies.sh
export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
export CCACHE_DIR=${CCACHE_DIR:-$cache/ccache} CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1

step "formatting" scripts/format-check.sh
step "tests of the debug build" scripts/suite-check.sh debug
step "tests under AddressSanitizer and UndefinedBehaviorSanitizer" scripts/suite-check.sh sanitize
step "the library's tests under memcheck" scripts/memcheck.sh
step "the installed package, used by a project of its own" scripts/consumer-check.sh
step "the reference, without warnings" scripts/reference.sh
step "clang-tidy" scripts/tidy-check.sh
step "reports in a browser" scripts/report-check.sh
step "Microsoft's layout" scripts/layout-check.sh
step "all tests on SQLCipher 4" scripts/newer-engine-check.sh
step "the Windows build, under Wine" scripts/windows-check.sh
step "the Debian packages, in a system that has nothing else of ours" scripts/package-check.sh
step "fresh Debian 13, as a user with sudo" scripts/fresh-system-check.sh trixie user scripts/demo.sh scripts/test.sh
step "fresh Debian 12, as root" scripts/fresh-system-check.sh bookworm root scripts/demo.sh
exit $failed

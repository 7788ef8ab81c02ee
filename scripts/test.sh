#!/usr/bin/env bash
# Installs what is missing, builds, and passes every check: formatting, the tests in the plain build, the tests under
# AddressSanitizer and UndefinedBehaviorSanitizer, what they leave behind, memcheck, a project that uses the installed
# package, the reference, clang-tidy, SQLCipher 4, the Windows build under Wine. The last two are left out, and loudly
# so, where their sources cannot be fetched.
set -euo pipefail
cd "$(dirname "$0")/.."

step() { printf '\n== %s\n' "$*"; }

step "dependencies"
scripts/install-dependencies.sh

step "formatting"
find src host tool examples tests bench fuzz -name '*.h' -o -name '*.cpp' | xargs clang-format-14 --dry-run --Werror

for preset in debug sanitize; do
  step "tests, $preset build"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset"
  left="$PWD/build/$preset/left-behind"
  rm -rf "$left"
  mkdir -p "$left"
  TMPDIR="$left" ctest --preset "$preset" -j "$(nproc)"
  scripts/find-secrets.sh "build/$preset" "$left"
done

# The tests that repeat themselves thousands of times would take hours.
step "the library's tests under memcheck"
valgrind -q --error-exitcode=9 --leak-check=full --show-leak-kinds=definite,possible \
  --errors-for-leak-kinds=definite,possible --child-silent-after-fork=yes \
  build/debug/tests/tovr_tests --gtest_brief=1 --gtest_filter='-*Fault*:Kill*:BlobCipher*:RegionCrop*' >build/memcheck.log 2>&1 || {
  tail -n 60 build/memcheck.log
  exit 1
}
echo "memcheck finds nothing"

step "the installed package, used by a project of its own"
rm -rf build/installed build/consumer
cmake --install build/debug --prefix "$PWD/build/installed" >/dev/null
cmake -S examples/consumer -B build/consumer -G Ninja -DCMAKE_PREFIX_PATH="$PWD/build/installed" >/dev/null
cmake --build build/consumer
ctest --test-dir build/consumer --output-on-failure

step "the reference, without warnings"
scripts/reference.sh

step "clang-tidy"
run-clang-tidy-14 -p build/debug -quiet -j "$(nproc)" '/(src|host|tool|examples)/' >build/clang-tidy.log 2>&1 || {
  grep -E 'error:|warning:' build/clang-tidy.log
  exit 1
}
echo "clang-tidy finds nothing"

# Checks of what is fetched as source. They are left out where it cannot be had (77), which never counts as passed.
left_out=""
check() {  # NAME SCRIPT
  step "$1"
  local code=0
  "$2" || code=$?
  case $code in
    0) ;;
    77) left_out+="; $1: NOT RUN" ;;
    *) exit 1 ;;
  esac
}
check "the whole suite on SQLCipher 4" scripts/newer-engine-check.sh
check "the Windows build, under Wine" scripts/windows-check.sh
step "every check that could be made passed$left_out"

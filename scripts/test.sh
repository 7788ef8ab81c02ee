#!/usr/bin/env bash
# Installs what is missing, builds, and passes every check: formatting, the tests in the plain build, the tests under
# AddressSanitizer and UndefinedBehaviorSanitizer, a project that uses the installed package, the
# reference, clang-tidy.
set -euo pipefail
cd "$(dirname "$0")/.."

step() { printf '\n== %s\n' "$*"; }

step "dependencies"
scripts/install-dependencies.sh

step "formatting"
find src host tool examples tests bench -name '*.h' -o -name '*.cpp' | xargs clang-format-14 --dry-run --Werror

for preset in debug sanitize; do
  step "tests, $preset build"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset"
  ctest --preset "$preset" -j "$(nproc)"
done

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

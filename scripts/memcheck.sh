#!/usr/bin/env bash
# Runs the library's tests of the debug build under memcheck, but for those that repeat themselves thousands of times:
# they would take hours.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh

TOVR_WITH_TESTS=1 TOVR_WITH_MEMCHECK=1 scripts/install-dependencies.sh
quietly cmake --preset debug
quietly cmake --build --preset debug --target tovr_tests tovrdatabaseservice
quietly valgrind -q --error-exitcode=9 --leak-check=full --show-leak-kinds=definite,possible \
  --errors-for-leak-kinds=definite,possible --child-silent-after-fork=yes \
  build/debug/tests/tovr_tests --gtest_brief=1 --gtest_filter='-*Fault*:Kill*:PowerCut*:RegionCrop*'
echo "memcheck finds nothing"

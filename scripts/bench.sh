#!/usr/bin/env bash
# Builds the benchmarks and prints their tables: the library beside the bare calls of its two engines, and the Python
# package beside the same readings in C++.
#   scripts/bench.sh [--sqlcipher4] [OPTIONS OF GOOGLE BENCHMARK...]
# --sqlcipher4: on SQLCipher 4, built from source, in place of the engine that is installed.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh

TOVR_WITH_BENCH=1 TOVR_WITH_PYTHON=1 scripts/install-dependencies.sh
build=build/bench
engine=
if [ "${1:-}" = --sqlcipher4 ]; then
  shift
  build=build/bench4
  engine=$(scripts/build-sqlcipher-4.sh)
fi
quietly cmake --preset release -DTOVR_BUILD_BENCH=ON -DTOVR_BUILD_TESTS=OFF -DTOVR_BUILD_TOOL=OFF \
  -DCMAKE_PREFIX_PATH="$engine" -B "$build"
quietly cmake --build "$build"
"$build/bench/tovr_bench" "$build/src/libtovrdatabaseservice.so" "$@"
echo
PYTHONPATH="$build/python" /usr/bin/python3 bench/python_reading.py "$PWD/$build/bench/libtovr_reading_call.so"

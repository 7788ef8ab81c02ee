#!/usr/bin/env bash
# Builds the benchmarks and prints their tables: the library beside the bare calls of its two engines.
set -euo pipefail
cd "$(dirname "$0")/.."

TOVR_WITH_BENCH=1 scripts/install-dependencies.sh
cmake --preset release -DTOVR_BUILD_BENCH=ON -DTOVR_BUILD_TESTS=OFF -DTOVR_BUILD_TOOL=OFF -B build/bench >/dev/null
cmake --build build/bench >build/bench-build.log || { cat build/bench-build.log; exit 1; }
exec build/bench/bench/tovr_bench build/bench/src/libtovrdatabaseservice.so "$@"

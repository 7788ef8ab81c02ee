#!/usr/bin/env bash
# Builds the benchmarks and prints their tables: the library beside the bare calls of its two engines.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh

TOVR_WITH_BENCH=1 scripts/install-dependencies.sh
quietly cmake --preset release -DTOVR_BUILD_BENCH=ON -DTOVR_BUILD_TESTS=OFF -DTOVR_BUILD_TOOL=OFF -B build/bench
quietly cmake --build build/bench
build/bench/bench/tovr_bench build/bench/src/libtovrdatabaseservice.so "$@"

#!/usr/bin/env bash
# Installs the debug build into an empty folder, builds and tests there a project that uses the package, and imports the
# Python package from there.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh

TOVR_WITH_TESTS=1 scripts/install-dependencies.sh
quietly cmake --preset debug
quietly cmake --build --preset debug
rm -rf build/installed build/consumer
quietly cmake --install build/debug --prefix "$PWD/build/installed"
quietly cmake -S examples/consumer -B build/consumer -G Ninja -DCMAKE_PREFIX_PATH="$PWD/build/installed"
cmake --build build/consumer
ctest --test-dir build/consumer --output-on-failure
PYTHONPATH=$(echo "$PWD"/build/installed/lib/python3*/dist-packages) /usr/bin/python3 -c '
import tovrdb
with tovrdb.create(":memory:", type=0) as wall:
    print("the installed Python package works:", wall)'

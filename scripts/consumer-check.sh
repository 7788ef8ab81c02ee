#!/usr/bin/env bash
# Installs the debug build into an empty folder and moves that. There a project that uses the CMake package is built and
# tested, a program compiled by what pkg-config says, and the tool and the Python package are started.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh

TOVR_WITH_TESTS=1 scripts/install-dependencies.sh
quietly cmake --preset debug
quietly cmake --build --preset debug
rm -rf build/installed build/moved build/consumer
quietly cmake --install build/debug --prefix "$PWD/build/installed"
mv build/installed build/moved
place=$PWD/build/moved

quietly cmake -S examples/consumer -B build/consumer -G Ninja -DCMAKE_PREFIX_PATH="$place"
cmake --build build/consumer
ctest --test-dir build/consumer --output-on-failure

export PKG_CONFIG_PATH=$place/lib/pkgconfig
read -ra flags <<<"$(pkg-config --cflags --libs tovrdatabaseservice)"
c++ -std=c++17 examples/store_and_read.cpp "${flags[@]}" -o build/consumer/by_pkg_config
rm -f build/consumer/by_pkg_config.db
quietly build/consumer/by_pkg_config "$(pkg-config --variable=plugin tovrdatabaseservice)" build/consumer/by_pkg_config.db
echo "what pkg-config says of the moved folder compiles and runs"

quietly "$place/bin/tovrdb" inspect
PYTHONPATH=$(echo "$place"/lib/python3*/dist-packages) /usr/bin/python3 -c '
import tovrdb
with tovrdb.create(":memory:", type=0) as wall:
    print("the installed Python package works:", wall)'

#!/usr/bin/env bash
# Installs what is missing and makes the Debian packages: build/packages/packages/*.deb.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh

TOVR_WITH_PACKAGES=1 TOVR_WITH_PYTHON=1 scripts/install-dependencies.sh
build=build/packages
rm -rf $build/packages
quietly cmake --preset release -B $build -DTOVR_BUILD_TESTS=OFF -DTOVR_BUILD_EXAMPLES=OFF
quietly cmake --build $build --target package
ls $build/packages/*.deb

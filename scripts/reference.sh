#!/usr/bin/env bash
# Builds the reference of the host-facing headers into build/reference/html; any warning is an error.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh

TOVR_WITH_DOCS=1 scripts/install-dependencies.sh
mkdir -p build
doxygen docs/Doxyfile
echo "build/reference/html/index.html"

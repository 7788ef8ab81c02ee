#!/usr/bin/env bash
# Has clang lay out, as Microsoft's compiler does, what crosses the edge between host and library, and compares it with
# the host guide: slots, fields of records, pointers that the class records take and give. Compiles for 64-bit Windows,
# links and runs nothing. docs/building-on-windows.md says what this shows. Exit code 77: not run, no clang to be had.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh

notRun() {
  printf '\n######## Layout check not run: %s\n' "$1" >&2
  exit 77
}
tools() { clang=$(command -v clang || command -v clang-19 || command -v clang-14) && command -v python3 >/dev/null; }

tools || {
  TOVR_WITH_LAYOUT=1 scripts/install-dependencies.sh || notRun "clang and python3 cannot be installed"
  tools || notRun "neither clang, clang-19 nor clang-14 is there with python3"
}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

compile() {
  "$clang" --target=x86_64-pc-windows-msvc -std=c++17 -O1 -fexceptions -fcxx-exceptions -fdiscard-value-names \
    -nostdinc -isystem tests/windows/msvc-stubs -I src \
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror "$@"
}

headers=$(sed -n '/^set(TOVR_CONTRACT_HEADERS$/,/)/s/^ *\([a-z]*\/[A-Za-z]*\.h\).*/\1/p' src/CMakeLists.txt)
for header in $headers; do
  compile -fsyntax-only -include "$header" -x c++ /dev/null
done
echo "OK  host-facing headers: $(wc -w <<<"$headers") compile alone"

compile -fsyntax-only src/manager/RecordLayout.cpp
echo "OK  records: $(grep -c '^TOVR_' src/manager/RecordLayout.cpp) facts of src/manager/RecordLayout.cpp"

compile -c tests/windows/Layout.cpp -o "$work/Layout.o" -Xclang -fdump-vtable-layouts >"$work/tables"
compile -S -emit-llvm src/plugin/Plugin.cpp -o "$work/Plugin.ll"
python3 tests/windows/compare_layout.py docs/host-guide.md "$work/tables" "$work/Plugin.ll"

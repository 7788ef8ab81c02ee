#!/usr/bin/env bash
# Opens reports in a browser, headless: values, clicks, keys, sorting, printing, both colour schemes, no request, nothing
# in the console; and lints their HTML. Exit code 77: not run, because no browser can be had here.
#   scripts/report-check.sh [FOLDER]    FOLDER keeps the pages, their pictures and the print
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh

notRun() {
  printf '\n######## Reports not opened in a browser: %s\n' "$1" >&2
  exit 77
}
TOVR_WITH_BROWSER=1 scripts/install-dependencies.sh || notRun "chromium and its driver cannot be installed"
quietly cmake --preset release
quietly cmake --build --preset release --target tovrdb
work=${1:-$(mktemp -d)}
mkdir -p "$work"
[ $# -gt 0 ] || trap 'rm -rf "$work"' EXIT

code=0
/usr/bin/python3 tests/report/browser_test.py build/release/tool/tovrdb "$work" || code=$?
[ $code -ne 77 ] || notRun "chromium does not start"
[ $code -eq 0 ] || { echo "exit code $code from: tests/report/browser_test.py" >&2; exit 1; }

# What it does not know are the policy's words and drawings.
sed 's/<svg.*//; /^<rect/d; /^<a href/d; /^<g>/d; /^<\/svg>/d; s/\(id="data">\).*\(<\/script>\)/\1{}\2/' "$work/wall.html" >"$work/lint.html"
quietly tidy -errors -quiet --drop-empty-elements no --show-warnings yes "$work/lint.html"
echo "reports do in a browser what they should"

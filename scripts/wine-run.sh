#!/usr/bin/env bash
# Runs a Windows program under Wine, in a Wine prefix of the project's own, for at most TOVR_WINE_SECONDS (300).
set -euo pipefail
source "$(dirname "$0")/cache.sh"

export WINEPREFIX=$cache/wine WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" LC_ALL=C.UTF-8
unset DISPLAY
PATH=$PATH:/usr/lib/wine
run() { timeout --kill-after=10 "${TOVR_WINE_SECONDS:-300}" wine64 "$@"; }

# Wine's own processes start beforehand, once for all programs that run side by side: they would hold the output of
# the program that started them open.
(
  flock 9
  wineserver64 --persistent=10 9>&- || exit 0  # one is running
  run wineboot --init 9>&-
) 9>"$cache/wine.lock" >/dev/null 2>&1

run "$@"

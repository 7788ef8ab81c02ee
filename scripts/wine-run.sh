#!/usr/bin/env bash
# Runs a Windows program under Wine, in a Wine prefix of the project's own, for at most TOVR_WINE_SECONDS (120).
set -euo pipefail
source "$(dirname "$0")/cache.sh"

export WINEPREFIX=$cache/wine WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" LC_ALL=C.UTF-8
unset DISPLAY
run() { timeout --kill-after=10 "${TOVR_WINE_SECONDS:-120}" "$(command -v wine64 || echo /usr/lib/wine/wine64)" "$@"; }

if [ ! -e "$WINEPREFIX/complete" ]; then  # tests start side by side: one of them makes the prefix
  exec 9>"$cache/wine.lock"
  flock 9
  if [ ! -e "$WINEPREFIX/complete" ]; then
    rm -rf "$WINEPREFIX"
    run wineboot --init >/dev/null 2>&1 9>&-
    touch "$WINEPREFIX/complete"
  fi
  exec 9>&-
fi
run "$@"

#!/usr/bin/env bash
# Runs a Windows program under Wine, in a Wine prefix of the project's own, for at most TOVR_WINE_SECONDS (300). The Wine
# server that it starts stays, for the next program too, until scripts/wine-end.sh ends it.
set -euo pipefail
source "$(dirname "$0")/failures.sh"
source "$(dirname "$0")/wine.sh"

# The server is not ended while a program runs, and no program starts while it ends.
exec 8>"${cache:?}/wine-use.lock"
flock --shared 8

# Wine's own processes start beforehand, once for all programs that run side by side: they would hold the output of
# the program that started them open.
startServer() {
  local code=0 log=$cache/wineserver.log
  if [ ! -e "$cache/wineserver.start" ]; then  # one that is running is not ours, and may end when it likes
    wineserver64 --kill >"$log" 2>&1 || true
    wineserver64 --wait >"$log" 2>&1 || true
  fi
  wineserver64 --persistent >"$log" 2>&1 || code=$?
  [ $code -ne 2 ] || return 0  # one is running
  [ $code -eq 0 ] || { cat "$log" >&2; return $code; }
  quietly runWine wineboot --init || { code=$?; wineserver64 --kill; return $code; }
  date +%s.%N >"$cache/wineserver.start"
}
(
  flock 9
  startServer 8>&- 9>&-
) 9>"$cache/wine-start.lock"

# A program whose server goes ends at once, with exit code 0 and without a word: that is no success.
server() { wineserver64 -k0 && cat "$cache/wineserver.start"; }  # which one is running
before=$(server)
code=0
runWine "$@" 8>&- || code=$?
[ "$(server)" = "$before" ] || { echo "wine-run.sh: the Wine server ended under $*" >&2; exit 1; }
if [ $code -eq 124 ] || [ $code -eq 137 ]; then
  echo "wine-run.sh: ended after ${TOVR_WINE_SECONDS:-300} seconds, or killed: $*" >&2
fi
exit $code

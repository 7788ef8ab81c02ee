#!/usr/bin/env bash
# Runs a Windows program under Wine, in a Wine prefix of the project's own, for at most TOVR_WINE_SECONDS (300). The Wine
# server that it starts stays for the next program until scripts/wine-end.sh ends it. A server that ends by itself, some
# time after its last program, takes seconds to do so: it still answers as running, but refuses who comes, or takes a
# program down with it, and that without a word.
set -euo pipefail
source "$(dirname "$0")/failures.sh"
source "$(dirname "$0")/wine.sh"

# The server is not ended while a program runs, and none starts while it ends.
exec 8>"${cache:?}/wine-use.lock"
flock --shared 8

# Wine's own processes start beforehand, once for all programs that run side by side: they would hold the output of
# the program that started them open.
startServer() {
  local code=0
  wineserver64 --persistent || code=$?
  [ $code -ne 2 ] || return 0  # one is running
  [ $code -eq 0 ] || return $code
  quietly runWine wineboot --init
}
(
  flock 9
  startServer 8>&- 9>&-
) 9>"$cache/wine-start.lock"

code=0
runWine "$@" 8>&- || code=$?
if [ $code -eq 124 ] || [ $code -eq 137 ]; then
  echo "wine-run.sh: ended after ${TOVR_WINE_SECONDS:-300} seconds, or killed: $*" >&2
fi
exit $code

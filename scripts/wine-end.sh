#!/usr/bin/env bash
# Ends the Wine server that scripts/wine-run.sh has started, once no program of ours runs any more, and waits until it is
# gone. Nothing happens when there is none.
set -euo pipefail
source "$(dirname "$0")/failures.sh"
source "$(dirname "$0")/wine.sh"

exec 8>"${cache:?}/wine-use.lock"
flock 8
code=0
wineserver64 --kill 8>&- || code=$?
[ $code -le 1 ] || { echo "exit code $code from: wineserver64 --kill" >&2; exit 1; }  # 1: none is running
wineserver64 --wait 8>&-
rm -f "$cache/wineserver.start"

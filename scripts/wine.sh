# shellcheck shell=bash
# Sourced: the project's own Wine prefix, and how a program runs in it.
source "$(dirname "${BASH_SOURCE[0]}")/cache.sh"

prefix=${cache:?}/wine
mkdir -p "$prefix"
export WINEPREFIX=$prefix WINEDEBUG=${WINEDEBUG:-fixme-all} WINEDLLOVERRIDES="mscoree,mshtml=" LC_ALL=C.UTF-8
unset DISPLAY
PATH=$PATH:/usr/lib/wine

runWine() { timeout --kill-after=10 "${TOVR_WINE_SECONDS:-300}" wine64 "$@"; }

# shellcheck shell=bash
# Sourced: where builds of other projects' sources are kept, outside the tree.
cache=${TOVR_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/tovrdatabaseservice}
mkdir -p "$cache"
cache=$(cd "$cache" && pwd)

# Whether FOLDER holds a build of exactly these inputs (scripts, with the versions pinned in them).
isBuiltFrom() { [ "$(cat "$1/stamp" 2>/dev/null)" = "$(stampOf "${@:2}")" ]; }
stampOf() { cat "$@" | sha256sum; }

# Runs a command with its output in a log, which is shown where it fails.
logged() {
  local log=$cache/build.log
  nice "$@" >"$log" 2>&1 || { tail -n 40 "$log" >&2; return 1; }
}

# shellcheck shell=bash
# Sourced: the folder outside the tree that keeps, from run to run, what takes long to make: builds of other projects'
# sources, bases of fresh systems, compiled objects.
cache=${TOVR_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/tovrdatabaseservice}
mkdir -p "$cache"
cache=$(cd "$cache" && pwd)

# Whether FOLDER holds what was made by exactly these inputs (scripts, with the versions pinned in them).
isBuiltFrom() { [ "$(cat "$1/stamp" 2>/dev/null)" = "$(stampOf "${@:2}")" ]; }
stampOf() { cat "$@" | sha256sum; }

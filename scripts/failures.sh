# shellcheck shell=bash
# Sourced by every script: a command that fails ends the script, and is told with its place and its exit code. What it
# printed itself stands above.
set -Eeuo pipefail
trap 'printf "%s:%d: exit code %d from: %s\n" "${BASH_SOURCE[0]}" "$LINENO" "$?" \
  "${BASH_COMMAND/#return */the command above}" >&2' ERR

# Runs a program whose output matters only where it fails: then the command and its last 200 lines are shown.
quietly() {
  local output code=0
  output=$(mktemp)
  "$@" >"$output" 2>&1 || code=$?
  if [ $code -ne 0 ]; then
    tail -n 200 "$output" >&2
    printf 'exit code %d from: %s\n' $code "$*" >&2
  fi
  rm -f "$output"
  return $code
}

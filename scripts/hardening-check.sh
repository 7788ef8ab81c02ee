#!/usr/bin/env bash
# Fails unless each of the binaries that are named is hardened as release builds are (cmake/TovrTargets.cmake).
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh

# Reads all input: grep -q would end its writer early.
has() { grep -E -- "$1" >/dev/null; }

weaknesses() {
  local -r headers=$(readelf --wide --file-header --program-headers "$1") dynamic=$(readelf --wide --dynamic "$1")
  local -r symbols=$(readelf --wide --dyn-syms "$1")
  has '^ *Type: +DYN' <<<"$headers" || echo "is not position-independent"
  has 'GNU_RELRO' <<<"$headers" || echo "is linked without -z relro"
  has 'BIND_NOW|FLAGS_1.*NOW' <<<"$dynamic" || echo "is linked without -z now"
  has '__stack_chk_fail' <<<"$symbols" || echo "is compiled without -fstack-protector-strong"
  has ' __[a-z]+_chk(@|$)' <<<"$symbols" || echo "is compiled without _FORTIFY_SOURCE"
}

failed=0
for binary in "$@"; do
  while read -r weakness; do
    printf '%s %s\n' "$binary" "$weakness" >&2
    failed=1
  done < <(weaknesses "$binary")
done
[ $# -gt 0 ]
[ $failed -eq 0 ]
echo "$# binaries are hardened"

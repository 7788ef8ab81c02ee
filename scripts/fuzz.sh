#!/usr/bin/env bash
# Builds the fuzz targets and runs each, under AddressSanitizer and UndefinedBehaviorSanitizer, on its kept corpus and
# on what libFuzzer makes of it: RUNS inputs (10000 unless told otherwise), with new ones kept in build/fuzz/found.
#   scripts/fuzz.sh [RUNS [TARGET...]]
# A finding stays in build/fuzz/findings; replay it with build/fuzz/fuzz/<Target>Fuzz FILE.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/failures.sh

runs=${1:-10000}
targets=("${@:2}")
[ ${#targets[@]} -gt 0 ] || targets=(Blob Crop Window Des FileCipher Npy Manifest Database)

TOVR_WITH_FUZZ=1 scripts/install-dependencies.sh
quietly cmake --preset fuzz
quietly cmake --build --preset fuzz

findings=0
for target in "${targets[@]}"; do
  found=build/fuzz/found/$target
  log=build/fuzz/$target.log
  mkdir -p "$found" build/fuzz/findings
  result="no findings"
  "build/fuzz/fuzz/${target}Fuzz" "$found" "fuzz/corpus/$target" -runs="$runs" -max_len=2048 -len_control=0 \
    -malloc_limit_mb=256 -print_final_stats=1 -artifact_prefix="build/fuzz/findings/$target-" >"$log" 2>&1 || {
    result="a FINDING (exit code $?), see $log"
    tail -n 60 "$log" >&2
    findings=$((findings + 1))
  }
  echo "$target: $(sed -n 's/^stat::number_of_executed_units: *//p' "$log") runs, $result"
done
exit $((findings > 0))

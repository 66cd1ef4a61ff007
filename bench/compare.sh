#!/usr/bin/env bash
# Times the benchmark programs in this interpreter and, when they are installed,
# in other BASIC interpreters from Debian's packages (yabasic, bwbasic), which run
# the same programs unchanged. Usage: compare.sh path/to/basic
set -u
basic=$(realpath "${1:-build/basic}")
here=$(cd "$(dirname "$0")" && pwd)
seconds() {  # command... -> wall seconds, output discarded
  local start end
  start=$(date +%s.%N)
  "$@" >/dev/null 2>&1 </dev/null
  end=$(date +%s.%N)
  echo "$end - $start" | bc
}
printf '%-16s %10s %10s %10s\n' program basic yabasic bwbasic
for bas in "$here"/programs/*.bas; do
  name=$(basename "$bas" .bas)
  ours=$(seconds "$basic" "$bas")
  yab=-; bwb=-
  command -v yabasic >/dev/null && yab=$(seconds yabasic "$bas")
  command -v bwbasic >/dev/null && bwb=$(seconds timeout 120 bwbasic "$bas")
  printf '%-16s %10s %10s %10s\n' "$name" "$ours" "$yab" "$bwb"
done

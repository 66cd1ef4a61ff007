#!/usr/bin/env bash
# Replays the kept findings of every fuzz target, then fuzzes each for a while.
# Usage: run_fuzz.sh BUILD-DIR SECONDS-PER-TARGET [TARGET...]
# The corpus grows in BUILD-DIR/corpus/TARGET from run to run; new findings land
# in BUILD-DIR/findings and make the script fail.
set -u
build=$(realpath "$1")
seconds=${2:-15}
shift 2
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  for bin in "$build"/*_fuzz; do [ -x "$bin" ] && targets+=("$(basename "$bin")"); done
fi
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1}
failed=0

# Seeds from the test programs and sessions, rebuilt each time.
seed() {  # target folder
  rm -rf "$2" && mkdir -p "$2"
  case $1 in
    shell_fuzz)
      cp "$root"/tests/sessions/*.in "$2"/ 2>/dev/null
      for bas in "$root"/tests/programs/*.bas; do
        { cat "$bas"; printf 'RUN\nLIST\nSAVE x.bas\nGET x.bas\nLIST\n'; } >"$2/$(basename "$bas").in"
      done ;;
    program_fuzz)
      cp "$root"/tests/programs/*.bas "$2"/
      for bas in "$root"/tests/sessions/files/*.bas; do cp "$bas" "$2/files-$(basename "$bas")"; done ;;
    input_fuzz) cp "$root"/tests/programs/*.stdin "$here"/seeds/input/* "$2"/ ;;
    escape_fuzz) cp "$here"/seeds/escape/* "$2"/ ;;
    mat_fuzz) cp "$here"/seeds/mat/* "$2"/ ;;
    gdi_statement_fuzz) cp "$here"/seeds/gdi_statement/* "$2"/ ;;
    using_format_fuzz)
      cp "$here"/seeds/using_format/* "$2"/
      # The formats of the test programs' IMAGE lines, one file each.
      grep -h '^[0-9]* *IMAGE ' "$root"/tests/programs/*.bas | sed 's/^[0-9]* *IMAGE //' | {
        n=0
        while IFS= read -r line; do n=$((n + 1)) && printf '%s' "$line" >"$2/image-$n"; done
      } ;;
    data_file_fuzz) cp "$here"/seeds/data_file/* "$2"/ ;;
    data_journal_fuzz) cp "$here"/seeds/data_journal/* "$2"/ ;;
    text_file_fuzz) cp "$here"/seeds/text_file/* "$2"/ ;;
  esac
}

for target in "${targets[@]}"; do
  bin=$build/$target
  [ -x "$bin" ] || { echo "FAIL: $bin is missing"; failed=1; continue; }
  regress=("$here"/regress/"$target"/*)
  if [ -e "${regress[0]}" ]; then
    if ! "$bin" -timeout=20 "${regress[@]}" >"$build/$target.replay.log" 2>&1; then
      echo "FAIL: $target: a kept finding fails again (see $build/$target.replay.log)"
      failed=1
      continue
    fi
  fi
  [ "$seconds" -gt 0 ] || continue
  mkdir -p "$build/corpus/$target" "$build/findings"
  seed "$target" "$build/seeds/$target"
  "$bin" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
    -dict="$here/basic.dict" -artifact_prefix="$build/findings/$target-" \
    "$build/corpus/$target" "$build/seeds/$target" >"$build/$target.log" 2>&1
  status=$?
  runs=$(grep -o 'stat::number_of_executed_units: [0-9]*' "$build/$target.log" | grep -o '[0-9]*$')
  cov=$(grep -o 'cov: [0-9]* ft: [0-9]*' "$build/$target.log" | tail -n 1)
  if [ $status -ne 0 ]; then
    echo "FAIL: $target found a fault (see $build/$target.log and $build/findings)"
    grep -E '^(==[0-9]+==ERROR|SUMMARY|.*runtime error)' "$build/$target.log" | head -n 5
    failed=1
  else
    echo "$target: ${runs:-?} runs in ${seconds}s, $cov"
  fi
done
exit $failed

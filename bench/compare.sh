#!/usr/bin/env bash
# Runs every benchmark program in this interpreter and in its twins for the other
# interpreters (yabasic, brandy, bwbasic, lua5.4, LuaJIT with its JIT off and on) and in C,
# checks that all print the same result, and prints two tables: CPU time (median of RUNS
# runs) and peak memory.
#   compare.sh path/to/basic [name-filter]
# Environment: RUNS (default 5), RESULTS (file to write the tables to; default
# bench/RESULTS.md when no filter is given, none otherwise).
set -u
basic=$(realpath "${1:-build/basic}")
filter=${2:-}
here=$(cd "$(dirname "$0")" && pwd)
progs=$here/programs
work=$(dirname "$basic")/bench-work
runs=${RUNS:-5}
limit=60   # seconds: a slower run is stopped and shown as "timeout"
once=5     # seconds: a first run slower than this is not repeated
results=${RESULTS-}
[ -z "$filter" ] && [ -z "${RESULTS+set}" ] && results=$here/RESULTS.md
mkdir -p "$work/c" "$work/out"

# The measuring tool and the C versions are built here, outside the interpreter's build.
cxx=${CXX:-c++}
cc=${CC:-cc}
"$cxx" -O2 -std=c++20 -Wall -Wextra -o "$work/measure" "$here/tools/measure.cpp" || exit 1
for c in "$progs"/*.c; do
  "$cc" -O2 -Wall -Wextra -o "$work/c/$(basename "$c" .c)" "$c" -lm || exit 1
done

# Implementations: column label, twin file extension, command (the file is appended).
# LuaJIT runs the Lua twins twice: its interpreter alone (-joff), then with its compiler.
labels=(ours yabasic brandy bwbasic lua luajit-joff luajit C)
exts=(bas yab bbc bwb lua lua lua c)
present=()
for i in "${!labels[@]}"; do
  case ${labels[$i]} in
    ours) present[$i]=1 ;;
    C) present[$i]=1 ;;
    lua) command -v lua5.4 >/dev/null && present[$i]=1 || present[$i]=0 ;;
    luajit*) command -v luajit >/dev/null && present[$i]=1 || present[$i]=0 ;;
    *) command -v "${labels[$i]}" >/dev/null && present[$i]=1 || present[$i]=0 ;;
  esac
  [ "${present[$i]}" = 1 ] || echo "note: ${labels[$i]} is not installed; its column stays empty"
done
command_for() {  # index file -> the command words in array cmd
  case ${labels[$1]} in
    ours) cmd=("$basic" "$2") ;;
    yabasic) cmd=(yabasic "$2") ;;
    # brandy draws its text with SDL: the dummy driver draws nowhere, and the programs
    # spool their output to standard output.
    brandy) cmd=(env SDL_VIDEODRIVER=dummy brandy -quit "$2") ;;
    bwbasic) cmd=(bwbasic "$2") ;;
    lua) cmd=(lua5.4 "$2") ;;
    luajit-joff) cmd=(luajit -joff "$2") ;;
    luajit) cmd=(luajit "$2") ;;
    C) cmd=("$work/c/$(basename "$2" .c)") ;;
  esac
}

# Output made comparable: control characters (carriage returns, brandy's VDU codes) and
# the bwbasic banner dropped, blanks squeezed, empty lines dropped, and the "." that this
# interpreter prints after integers of 32768 and more ("40000.") removed.
normalize() {
  tr -d '\000-\010\013-\037' <"$1" | awk '/Bywater BASIC|^Copyright \(c\)/ { next }
    { out = ""
      for (i = 1; i <= NF; i++) { f = $i; if (f ~ /^-?[0-9]+\.$/) f = substr(f, 1, length(f) - 1)
                                  out = out (i > 1 ? " " : "") f }
      if (out != "") print out }'
}

median() { sort -g | awk '{ v[NR] = $1 } END { print (NR ? v[int((NR + 1) / 2)] : "") }'; }

declare -A cpu wall rss note
order=(float_loop array2d sieve strings search gosub deffn branch readdata print_numbers
       print_using mandelbrot matmul matinv startup memory file_write data_file text_file)
mismatches=""
for name in "${order[@]}"; do
  [ -n "$filter" ] && [[ $name != *$filter* ]] && continue
  ref=""
  for i in "${!labels[@]}"; do
    file=$progs/$name.${exts[$i]}
    [ "${present[$i]}" = 1 ] && [ -f "$file" ] || continue
    command_for "$i" "$file"
    out=$work/out/$name.${labels[$i]}
    times=()
    walls=()
    mems=()
    status=0
    for ((r = 1; r <= runs; r++)); do
      read -r wall used peak status < <("$work/measure" "$out.$r" "$limit" "${cmd[@]}")
      : "${status:=failed}"  # the measuring tool itself could not run it
      times+=("$used")
      walls+=("$wall")
      mems+=("$peak")
      [ "$status" = 0 ] || break
      awk -v w="$wall" -v o="$once" 'BEGIN { exit !(w > o) }' && break
    done
    key=$name,$i
    normalize "$out.1" >"$out"
    if [ "$status" != 0 ]; then
      note[$key]=$status
      continue
    fi
    if [ "${labels[$i]}" = ours ] && grep -qE '^ERROR |not supported' "$out"; then
      note[$key]="n/a"  # a statement this interpreter does not run yet
      echo "note: $name: ours refused it: $(head -1 "$out")"
      continue
    fi
    cpu[$key]=$(printf '%s\n' "${times[@]}" | median)
    wall[$key]=$(printf '%s\n' "${walls[@]}" | median)
    rss[$key]=$(printf '%s\n' "${mems[@]}" | median)
    ((${#times[@]} < runs)) && note[$key]="1 run"
    if [ -z "$ref" ]; then
      ref=$out
    elif ! cmp -s "$ref" "$out"; then
      note[$key]="MISMATCH"
      line=$(diff "$ref" "$out" | grep -m2 '^[<>]' | tr '\n' ' ')
      mismatches+="- $name: ${labels[$i]} differs from $(basename "$ref" | cut -d. -f2): $line"$'\n'
    fi
  done
done

# Tables, in Markdown: times in CPU seconds, ratios as our time over theirs.
fmt_time() { awk -v t="$1" 'BEGIN { printf(t < 0.1 ? "%.4f" : "%.3f", t) }'; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { if (a != "" && b > 0) printf("%.2f", a / b) }'; }
index_of() { for i in "${!labels[@]}"; do [ "${labels[$i]}" = "$1" ] && echo "$i"; done; }
ratio_heads=("ours/best BASIC" "ours/Lua" "ours/LuaJIT -joff" "ours/LuaJIT" "ours/C")
ratio_of=(best lua luajit-joff luajit C)  # the column each ratio divides by
table=$(
  echo "| program | $(IFS='|'; echo "${labels[*]}" | sed 's/|/ | /g') | $(IFS='|'; echo "${ratio_heads[*]}" | sed 's/|/ | /g') |"
  echo "|---|$(printf -- '---:|%.0s' "${labels[@]}" "${ratio_heads[@]}")"
  for name in "${order[@]}"; do
    [ -n "$filter" ] && [[ $name != *$filter* ]] && continue
    row="| $name |"
    best=""
    for i in "${!labels[@]}"; do
      key=$name,$i
      cell=""
      [ -n "${cpu[$key]:-}" ] && cell=$(fmt_time "${cpu[$key]}")
      [ -n "${note[$key]:-}" ] && cell="$cell ${note[$key]}"
      row+=" ${cell# } |"
      case ${labels[$i]} in yabasic | brandy | bwbasic)
        t=${cpu[$key]:-}
        [ -n "$t" ] && [ "${note[$key]:-}" != MISMATCH ] &&
          { [ -z "$best" ] || awk -v t="$t" -v b="$best" 'BEGIN { exit !(t < b) }'; } && best=$t ;;
      esac
    done
    ours=${cpu[$name,0]:-}
    for of in "${ratio_of[@]}"; do
      if [ "$of" = best ]; then theirs=$best; else theirs=${cpu[$name,$(index_of "$of")]:-}; fi
      row+=" $(ratio "$ours" "$theirs") |"
    done
    echo "$row"
  done
)
# Geometric means of the ratios over the workloads (start-up and memory are shown apart;
# matinv is left out too: there our MAT statements face the peers' loops).
geo=$(echo "$table" | awk -F'|' -v k="${#ratio_heads[@]}" -v l="${#labels[@]}" \
  'NR > 2 && $2 !~ /startup|memory|matinv/ {
    for (c = 0; c < k; c++) { v = $(NF - k + c) + 0; if (v > 0) { s[c] += log(v); n[c]++ } } }
  END { printf("| geometric mean |"); for (c = 0; c < l; c++) printf("|")
        for (c = 0; c < k; c++) printf(" %s |", n[c] ? sprintf("%.2f", exp(s[c] / n[c])) : "")
        print "" }')
# Start-up is also wanted as the wall-clock time a user waits for.
startline=$(
  printf 'Start-up of a one-line program, wall-clock milliseconds (median):'
  for i in "${!labels[@]}"; do
    t=${wall[startup,$i]:-}
    [ -n "$t" ] && awk -v l="${labels[$i]}" -v t="$t" 'BEGIN { printf(" %s %.1f;", l, t * 1000) }'
  done
)
memtable=$(
  echo "| program | $(IFS='|'; echo "${labels[*]}" | sed 's/|/ | /g') |"
  echo "|---|$(printf -- '---:|%.0s' "${labels[@]}")"
  for name in "${order[@]}"; do
    [ -n "$filter" ] && [[ $name != *$filter* ]] && continue
    row="| $name |"
    for i in "${!labels[@]}"; do
      m=${rss[$name,$i]:-}
      row+=" $( [ -n "$m" ] && awk -v m="$m" 'BEGIN { printf("%.1f", m / 1024) }') |"
    done
    echo "$row"
  done
  row="| array cost (memory - startup) |"
  for i in "${!labels[@]}"; do
    a=${rss[memory,$i]:-}
    b=${rss[startup,$i]:-}
    row+=" $( [ -n "$a" ] && [ -n "$b" ] && awk -v a="$a" -v b="$b" 'BEGIN { printf("%.1f", (a - b) / 1024) }') |"
  done
  echo "$row"
)

report=$(
  echo "CPU seconds (user + system), median of $runs runs; ratios are our time over theirs:"
  echo
  echo "$table"
  echo "$geo"
  echo
  [ -n "${wall[startup,0]:-}" ] && echo "${startline%;}." && echo
  echo "Peak memory (max RSS, MB):"
  echo
  echo "$memtable"
  if [ -n "$mismatches" ]; then
    echo
    echo "Results that differ (the run's output against the first one's, normalized):"
    echo
    printf '%s' "$mismatches"
  fi
)
echo "$report"

if [ -n "$results" ]; then
  peer_version() { dpkg-query -W -f '${Version}' "$1" 2>/dev/null || echo "not installed"; }
  {
    echo "# Benchmark results"
    echo
    echo "Written by \`make bench\` (bench/compare.sh); bench/README.md says what each program"
    echo "does and how the versions are made to print the same result."
    echo
    echo "Measured $(date -u '+%Y-%m-%d %H:%M UTC') on:"
    echo
    echo "- CPU: $(grep -m1 'model name' /proc/cpuinfo | cut -d: -f2- | sed 's/^ *//'), $(nproc) cores"
    echo "  (shared with other work; load average $(cut -d' ' -f1-3 /proc/loadavg) when the run ended)"
    echo "- System: $(uname -sr), Debian $(cat /etc/debian_version 2>/dev/null)"
    echo "- Compilers: $("$cxx" --version | head -1); C versions (single precision) with \`$cc -O2\`"
    echo "- Peers: yabasic $(peer_version yabasic), brandy $(peer_version brandy)," \
      "bwbasic $(peer_version bwbasic), lua5.4 $(peer_version lua5.4), luajit $(peer_version luajit)"
    echo
    echo "$report"
    echo
    echo "An empty cell has no twin: bwbasic runs only the programs it finishes in under a"
    echo "minute; the data file programs have none. \"1 run\" marks a program whose first run took"
    echo "over ${once} s, \"timeout\" one stopped after ${limit} s; \"n/a\" one that this"
    echo "interpreter does not run yet."
  } >"$results"
  echo
  echo "Written to $results"
fi
[ -z "$mismatches" ]

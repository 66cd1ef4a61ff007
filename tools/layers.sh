#!/usr/bin/env bash
# The layering check: the folders of src/ stand in one order, lowest first, and
# a file may include only files of its own folder or of a folder below it, so
# no include runs upward and no two folders include each other in a circle.
# Files directly in src/ (main.cpp) stand on the top floor, "main". Prints the
# include edges between folders and each folder's share of the source lines;
# exits 1 on an include that runs upward, a folder missing from the order, or a
# README "Source layout" table whose src/ rows are not in this order.
# Usage: tools/layers.sh
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
# Keep in step with the README's "Source layout" section.
order="base platform console gdi lex value expr format stmt matrix files program help shell main"
cd "$root/src"

bad=0
floor_of() {  # folder -> its position in the order, or empty
  local i=0
  for f in $order; do
    [ "$f" = "$1" ] && { echo $i; return; }
    i=$((i + 1))
  done
}

for dir in $(find . -mindepth 1 -maxdepth 1 -type d | sed 's#^\./##' | sort); do
  if [ -z "$(floor_of "$dir")" ]; then
    echo "src/$dir is in no floor of the order in tools/layers.sh"
    bad=1
  fi
done

# One line per #include "folder/...": the including folder, the included one, the file.
edges=$(grep -rHE '^#include "[a-z_]+/' --include='*.h' --include='*.cpp' --include='*.def' . |
  sed -E 's#^\./(([a-z_]+)/)?([^:]*):\#include "([a-z_]+)/.*#\2 \4 \1\3#' |
  awk '{ if ($1 == $3 || NF == 2) { print "main", $1, $2 } else print }')

echo "include edges between folders (from -> to: #include lines), lowest floor first:"
for from in $order; do
  for to in $order; do
    n=$(awk -v f="$from" -v t="$to" '$1 == f && $2 == t' <<<"$edges" | wc -l)
    [ "$from" != "$to" ] && [ "$n" -gt 0 ] && printf '  %-8s -> %-8s %3d\n' "$from" "$to" "$n"
  done
done

while read -r from to file; do
  [ -z "$from" ] && continue
  f=$(floor_of "$from")
  t=$(floor_of "$to")
  if [ -z "$t" ]; then
    echo "UP: src/$file includes $to/, which is in no floor"
    bad=1
  elif [ -n "$f" ] && [ "$t" -gt "$f" ]; then
    echo "UP: src/$file ($from) includes $to/, a higher floor"
    bad=1
  fi
done <<<"$edges"

total=$(find . -type f \( -name '*.h' -o -name '*.cpp' -o -name '*.def' \) -exec cat {} + | wc -l)
echo "source lines per folder (of $total):"
for dir in $order; do
  if [ "$dir" = main ]; then
    n=$(find . -maxdepth 1 -type f -exec cat {} + | wc -l)
  else
    [ -d "$dir" ] || continue
    n=$(find "$dir" -type f -exec cat {} + | wc -l)
  fi
  awk -v d="$dir" -v n="$n" -v t="$total" 'BEGIN { printf "  %-8s %6d  %4.1f%%\n", d, n, 100 * n / t }'
done

# The README's table of folders must name the src/ folders in the order checked here.
readme=$(sed -n '/^## Source layout/,/^## /p' "$root/README.md" |
  sed -nE 's#^\| `src/([a-z_]+)/?` .*#\1#p; s#^\| `src/main\.cpp` .*#main#p' | tr '\n' ' ')
if [ "${readme% }" != "$order" ]; then
  echo "README \"Source layout\" lists: ${readme% }"
  echo "tools/layers.sh orders:        $order"
  bad=1
fi

[ "$bad" = 0 ] && echo "layers: every include goes to its own floor or one below"
exit $bad

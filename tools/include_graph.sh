#!/usr/bin/env bash
# Prints which src/ folders include which, with the number of #include lines
# behind each edge, then the groups of folders that include each other in a
# circle. Exits 1 when such a circle passes through one of the folders named
# (by default base, console and value, which must stay below everything else).
# Usage: tools/include_graph.sh [folder...]
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
guarded=${*:-base console value}
cd "$root/src"
grep -rHE '^#include "[a-z_]+/' --include='*.h' --include='*.cpp' --include='*.def' . |
  sed -E 's#^\./([a-z_]+)/[^:]*:\#include "([a-z_]+)/.*#\1 \2#' |
  awk -v guarded="$guarded" '
    $1 != $2 { count[$1 " " $2]++; node[$1]; node[$2] }
    END {
      n = 0
      for (e in count) { split(e, p, " "); adj[p[1]] = adj[p[1]] " " p[2] }
      printf "include edges (from -> to: #include lines)\n"
      m = 0
      for (e in count) lines[++m] = e
      for (i = 2; i <= m; i++) for (j = i; j > 1 && lines[j-1] > lines[j]; j--) {
        t = lines[j]; lines[j] = lines[j-1]; lines[j-1] = t
      }
      for (i = 1; i <= m; i++) { split(lines[i], p, " "); printf "  %-9s -> %-9s %3d\n", p[1], p[2], count[lines[i]] }
      # Tarjan: strongly connected components.
      idx = 0; sp = 0; ncomp = 0
      for (v in node) if (!(v in index_)) strong(v)
      bad = 0
      printf "folders that include each other in a circle:\n"
      for (c = 1; c <= ncomp; c++) {
        if (size[c] < 2) continue
        printf "  %s\n", comp[c]
        split(guarded, g, " ")
        for (k in g) if ((" " comp[c] " ") ~ (" " g[k] " ")) { bad = 1; printf "    ^ passes through %s\n", g[k] }
      }
      exit bad
    }
    function strong(v,    w, list, i, k) {
      index_[v] = idx; low[v] = idx; idx++
      stack[++sp] = v; on[v] = 1
      k = split(adj[v], list, " ")
      for (i = 1; i <= k; i++) {
        w = list[i]
        if (!(w in index_)) { strong(w); if (low[w] < low[v]) low[v] = low[w] }
        else if (on[w] && index_[w] < low[v]) low[v] = index_[w]
      }
      if (low[v] == index_[v]) {
        ncomp++; comp[ncomp] = ""; size[ncomp] = 0
        do { w = stack[sp--]; on[w] = 0; comp[ncomp] = comp[ncomp] (size[ncomp]++ ? " " : "") w } while (w != v)
      }
    }'

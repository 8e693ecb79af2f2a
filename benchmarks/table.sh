#!/bin/bash
# Puts the figures of a run into docs/performance.md: benchmarks/table.sh WIRE.json WORKBENCH.json, the files that
# wire_benchmark and workbench_benchmark have written with --json.
set -euo pipefail
(($# == 2)) || { sed -n '2,3s/^# //p' "$0" >&2; exit 2; }

# rows JSON: a line of a table for each measured row. The limit is one of the ratio, or without a ratio of the value.
rows() {
  sed -nE 's/^ *\{"name": "(.*)", "value": (.*), "unit": "(.*)", "floor": (.*), "ratio": (.*), "limit": (.*)\},?$/\1\t\2\t\3\t\4\t\5\t\6/p' "$1" |
    awk -F '\t' '
      function shown(number) { return number == "null" ? "" : number >= 100 ? sprintf("%.0f", number) : sprintf("%.3g", number) }
      function united(number) { return number == "null" ? "" : shown(number) " " unit }
      {
        unit = $3
        limit = $6 == "null" ? "" : $5 == "null" ? united($6) : $6 " x"
        gsub(/\\"/, "\"", $1)
        printf "| %s | %s | %s | %s | %s |\n", $1, united($2), united($4), $5 == "null" ? "" : sprintf("%.2f x", $5), limit
      }'
}

# fill NAME TEXT: puts the text between the marks of that name.
fill() {
  local page=docs/performance.md
  TEXT=$2 awk -v name="$1" '
    $0 == "<!-- " name " -->" { print; print ENVIRON["TEXT"]; inside = 1; next }
    $0 == "<!-- end -->" { inside = 0 }
    !inside' "$page" >"$page.new"
  mv "$page.new" "$page"
}

# table NAME JSON
table() {
  local lines
  lines=$(rows "$2")
  [[ -n $lines ]] || { echo "$2 holds no rows" >&2; exit 1; }
  fill "$1" "| work | measured | floor | ratio | limit |
|---|--:|--:|--:|--:|
$lines"
}

wire=$(realpath "$1") workbench=$(realpath "$2")
cd "$(dirname "$0")/.."
table wire "$wire"
table workbench "$workbench"
fill machine "On $(nproc) cores of$(sed -n 's/^model name.*://p;T;q' /proc/cpuinfo), on $(date -r "$workbench" +%F)."

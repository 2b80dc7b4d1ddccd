#!/bin/sh
# Runs the language benchmarks in swiftgate and in CPython, one after the other, side by side.
# Milliseconds, the best of five.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
swiftgate=${SWIFTGATE:-$here/../../build/release/bin/swiftgate}
ours=$(mktemp)
theirs=$(mktemp)
trap 'rm -f "$ours" "$theirs"' EXIT
"$swiftgate" run "$here/language.lsp" 2>/dev/null >"$ours"
if command -v python3 >/dev/null; then
    python3 "$here/language.py" >"$theirs"
    python3 --version | sed 's/^/peer: /'
    paste -d' ' "$ours" "$theirs" |
        awk '{ printf "%-14s swiftgate %8.1f ms   python %8.1f ms   %5.2f times as fast\n",
                      $1, $2, $4, $4 / ($2 > 0 ? $2 : 0.5) }'
else
    echo "peer: python3 is not installed"
    cat "$ours"
fi

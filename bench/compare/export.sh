#!/bin/sh
# Exports a table of 200,000 rows and 6 columns with swiftgate and with mdb-export, one after the
# other. Seconds of wall time, the best of five.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=$here/../../build/release
swiftgate=${SWIFTGATE:-$build/bin/swiftgate}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$build/bench/jet_bench" "$folder/parts.mdb"

best() {
    for _ in 1 2 3 4 5; do
        start=$(date +%s%N)
        "$@" >"$folder/out.csv"
        end=$(date +%s%N)
        echo $(((end - start) / 1000))
    done | sort -n | head -1
}

ours=$(best "$swiftgate" db export "$folder/parts.mdb" tblPart)
awk -v t="$ours" 'BEGIN { printf "swiftgate  %.3f s, %.0f rows a second\n", t/1e6, 2e11/t }'
if command -v mdb-export >/dev/null; then
    theirs=$(best mdb-export "$folder/parts.mdb" tblPart)
    awk -v t="$theirs" -v o="$ours" \
        'BEGIN { printf "mdb-export %.3f s; swiftgate is %.2f times as fast\n", t/1e6, t/o }'
else
    echo "mdb-export is not installed"
fi

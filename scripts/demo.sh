#!/bin/sh
# Runs the examples through the built program; their files go to build/demo.
set -eu
cd "$(dirname "$0")/.."
bin=build/release/bin/swiftgate
office=examples/office
out=build/demo
rm -rf "$out"
mkdir -p "$out"

# What goes to standard error is shown when something fails.
run() {
    "$bin" "$@" 2>"$out/errors" || { cat "$out/errors" >&2; exit 1; }
    rm "$out/errors"
}

echo "== Values between AutoLISP and native code: examples/marshalling/marshalling.lsp"
run run examples/marshalling/marshalling.lsp --path build/release/examples

echo
echo "== An office floor: examples/office"
run run $office/make_floor.lsp --save $out/floor.dxf
run run $office/make_project.lsp -- $out/project.mdb
run run $office/office.lsp --drawing $out/floor.dxf --path $office --save $out/office.dwg \
    -- $out/project.mdb
run convert $out/office.dwg $out/plain.dxf --flatten
run convert $out/office.dwg $out/ducts.step
run render $out/office.dwg -o $out/plan.pdf
run render $out/office.dwg -o $out/office.png --view iso --size 2000x1400
echo
echo "Air by room, from the schedule:"
run db sql $out/project.mdb \
    "SELECT sRoom AS Room, Count(*) AS Pieces, Sum(dAirflow) AS Air FROM tblSchedule
     WHERE dAirflow > 0 GROUP BY sRoom"
echo
echo "Files made:"
ls -1 $out/*

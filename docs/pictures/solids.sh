#!/bin/sh
# Makes the pictures of docs/functions/solids.md.
#
#   solids.sh BUILD
#
# BUILD is the build folder that holds bin/swiftgate.
set -eu
swiftgate=$(cd "$1" && pwd)/bin/swiftgate
here=$(cd "$(dirname "$0")" && pwd)
temp=$(mktemp -d)
trap 'rm -rf "$temp"' EXIT

for name in getTripleCoord drawTripleCenter drawTripleElbow drawTripleTakeoff drawTripleWye \
    drawTripleTransition drawTripleSkin drawHanger tripleUnion explodeSolid; do
    "$swiftgate" run "$here/solids.lsp" --eval "($name)" --save "$temp/$name.dxf"
    "$swiftgate" render "$temp/$name.dxf" -o "$here/$name.png" --view iso --size 900x450
done
"$swiftgate" run "$here/../../examples/ducts.lsp" --save "$temp/ducts.dxf"
"$swiftgate" render "$temp/ducts.dxf" -o "$here/ducts.png" --view iso --size 1200x800

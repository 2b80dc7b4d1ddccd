#!/bin/sh
# Runs the examples through the built program.
set -eu
cd "$(dirname "$0")/.."
bin=build/release/bin/swiftgate
echo "== Values between AutoLISP and native code: examples/marshalling/marshalling.lsp"
"$bin" run examples/marshalling/marshalling.lsp --path build/release/examples

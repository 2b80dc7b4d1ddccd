#!/bin/sh
# Runs every benchmark: our own, then the comparisons with peers that are installed.
set -eu
cd "$(dirname "$0")/.."
for program in build/release/bench/*; do
    if [ -f "$program" ] && [ -x "$program" ]; then "$program"; fi
done
for comparison in bench/compare/*.sh; do
    echo "== $comparison"
    "$comparison"
done

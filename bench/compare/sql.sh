#!/bin/sh
# Runs Jet SQL and SQLite over the same 200,000 rows, each in its own file, side by side.
# Milliseconds, the best of several runs. Arguments choose the cases whose names hold one of them.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
"$here/../../build/release/bench/compare/sql_compare" "$@"

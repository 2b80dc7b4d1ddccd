#!/bin/sh
# Coverage-guided fuzzing of every target, with the checked-in corpus as its start. Findings are
# left in build/fuzz/findings, and do not end the run.
set -eu
cd "$(dirname "$0")/.."
seconds=${FUZZ_SECONDS:-300}
command -v clang++ >/dev/null || { echo "fuzzing needs clang++ (packages clang and libclang-rt-14-dev)" >&2; exit 1; }
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
rm -rf build/fuzz/findings
mkdir -p build/fuzz/findings
for target in build/fuzz/fuzz/fuzz_*; do
    name=$(basename "$target")
    seeds=tests/fuzz/corpus/${name#fuzz_}
    work=build/fuzz/corpus/$name
    case $name in
        fuzz_jet_file) longest=262144 ;;  # whole files of a few dozen pages
        fuzz_jet_page) longest=4099 ;;  # three bytes that choose, and a page
        fuzz_dwg) longest=32768 ;;  # whole files too
        *) longest=4096 ;;
    esac
    words=tests/fuzz/${name#fuzz_}.dict
    [ -f "$words" ] && words=-dict=$words || words=
    mkdir -p "$work"
    echo "== $name for $seconds seconds"
    # Each process in turn is a child, so that a finding ends it alone.
    "$target" -fork=1 -ignore_crashes=1 -ignore_timeouts=1 -ignore_ooms=1 \
        -max_total_time="$seconds" -max_len="$longest" -timeout=20 -rss_limit_mb=4096 $words \
        -artifact_prefix=build/fuzz/findings/"$name"- "$work" "$seeds" 2>&1 |
        grep -E 'cov:|SUMMARY' | tail -n 12
done
findings=$(ls build/fuzz/findings)
[ -z "$findings" ] || { echo "findings in build/fuzz/findings:" >&2; echo "$findings" >&2; exit 1; }

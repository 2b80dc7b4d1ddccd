#!/bin/sh
# Coverage-guided fuzzing of every target, with the checked-in corpus as its start. Findings are
# left in build/fuzz/findings.
set -eu
cd "$(dirname "$0")/.."
seconds=${FUZZ_SECONDS:-300}
command -v clang++ >/dev/null || { echo "fuzzing needs clang++ (packages clang and libclang-rt-14-dev)" >&2; exit 1; }
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
mkdir -p build/fuzz/findings
for target in build/fuzz/fuzz/fuzz_*; do
    name=$(basename "$target")
    seeds=tests/fuzz/corpus/${name#fuzz_}
    work=build/fuzz/corpus/$name
    case $name in
        fuzz_jet_file) longest=262144 ;;  # whole files of a few dozen pages
        fuzz_jet_page) longest=4099 ;;  # three bytes that choose, and a page
        *) longest=4096 ;;
    esac
    mkdir -p "$work"
    echo "== $name for $seconds seconds"
    "$target" -max_total_time="$seconds" -max_len="$longest" -timeout=20 -rss_limit_mb=4096 \
        -print_final_stats=1 -artifact_prefix=build/fuzz/findings/"$name"- "$work" "$seeds" 2>&1 |
        tail -n 12
done

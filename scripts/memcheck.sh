#!/bin/sh
# Runs unit tests under valgrind: memory that is used wrongly, or lost. Without names, every unit test.
#
#   scripts/memcheck.sh [test_base test_dwg ...]
#
# Reports stand in build/memcheck.
set -u
cd "$(dirname "$0")/.."
command -v valgrind >/dev/null || { echo "this needs valgrind (package valgrind)" >&2; exit 1; }
out=build/memcheck
mkdir -p $out
export QT_QPA_PLATFORM=offscreen
failed=0
[ $# -gt 0 ] || set -- $(cd build/release/tests && ls -d test_*)
for test in "$@"; do
    valgrind -q --leak-check=full --show-leak-kinds=definite,indirect \
        --errors-for-leak-kinds=definite,indirect --error-exitcode=99 --num-callers=30 \
        --suppressions=tests/valgrind.supp --gen-suppressions=no --log-file=$out/"$test.log" \
        build/release/tests/"$test" --gtest_brief=1 >$out/"$test.out" 2>&1
    code=$?
    findings=$(grep -cE '^==[0-9]+== (Invalid|Conditional|Use of|Syscall|Mismatched|.* lost in)' \
        $out/"$test.log")
    if [ "$findings" != 0 ]; then
        echo "$test: $findings findings, see $out/$test.log"
        failed=1
    elif [ $code -ge 128 ]; then
        echo "$test: ended by a signal, see $out/$test.out"
        failed=1
    elif [ $code != 0 ]; then
        # valgrind has no long double of 80 bits, and starts what the system would not.
        echo "$test: clean, but tests fail there, see $out/$test.out"
    else
        echo "$test: clean"
    fi
done
exit $failed

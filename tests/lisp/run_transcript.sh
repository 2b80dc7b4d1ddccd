#!/bin/sh
# Runs one program of this folder and compares what it prints with its transcript.
#
#   run_transcript.sh BUILD NAME.lsp
#
# BUILD is the build folder that holds bin/swiftgate. Beside the program stand
#   NAME.out   what it prints to standard output
#   NAME.err   what it prints to standard error, nothing by default; blank lines and the line that
#              tells that the module is loading do not count
#   NAME.args  further options, read as a shell would; $BUILD, $SOURCE and $TEMP may be used
#   NAME.code  the exit code, 0 by default
#   NAME.in    the input script
#
# The program runs in this folder; it may write to the folder that (getenv "TEMP") names. In what
# it prints, that folder reads <temp>, this one <here> and the build folder <build>.
# With UPDATE=1 in the environment the transcripts are written anew.
set -eu
BUILD=$(cd "$1" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
SOURCE=$(cd "$here/../.." && pwd)
name=$(basename "$2" .lsp)
cd "$here"

TEMP=$(mktemp -d)
trap 'rm -rf "$TEMP"' EXIT
mkdir "$TEMP/files" "$TEMP/home"
actual=$TEMP
TEMP=$TEMP/files
export TEMP TMPDIR="$TEMP" HOME="$actual/home" LANG=C.UTF-8 SWIFTGATE_SHELL=false \
    COMPUTERNAME=DRAFTING QT_QPA_PLATFORM=offscreen
unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_STATE_HOME XDG_CACHE_HOME LC_ALL LC_TIME TMP || true
trap 'rm -rf "$actual"' EXIT

set --
if [ -f "$name.in" ]; then set -- --input "$name.in"; fi
if [ -f "$name.args" ]; then eval "set -- \"\$@\" $(cat "$name.args")"; fi

code=0
"$BUILD/bin/swiftgate" run "$name.lsp" "$@" </dev/null \
    >"$actual/out.raw" 2>"$actual/err.raw" || code=$?

shown() {
    sed -e "s|$TEMP|<temp>|g" -e "s|$BUILD|<build>|g" -e "s|$here|<here>|g" "$1"
}
shown "$actual/out.raw" >"$actual/out"
shown "$actual/err.raw" |
    sed -e '/^Loading Quillon Swift Gate (Direct)$/d' -e '/^$/d' >"$actual/err"

if [ "${UPDATE:-}" = 1 ]; then
    cp "$actual/out" "$name.out"
    rm -f "$name.err" "$name.code"
    if [ -s "$actual/err" ]; then cp "$actual/err" "$name.err"; fi
    if [ $code != 0 ]; then echo $code >"$name.code"; fi
    exit 0
fi

failed=0
compare() {
    expected=$1
    [ -f "$expected" ] || expected=/dev/null
    diff -u --label "expected $1" --label "actual $1" "$expected" "$2" || failed=1
}
compare "$name.out" "$actual/out"
compare "$name.err" "$actual/err"
wanted=0
if [ -f "$name.code" ]; then wanted=$(cat "$name.code"); fi
if [ $code != "$wanted" ]; then
    echo "exit code $code, expected $wanted"
    failed=1
fi
exit $failed

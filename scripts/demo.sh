#!/bin/sh
# Runs the examples through the built program and checks what they have made.
#
#   demo.sh [BUILD [OUT]]
#
# BUILD is the build folder that holds bin/swiftgate, OUT the folder for the files; it is made anew.
# The sales example takes its database and its drawing from the folder that SWIFTGATE_REAL_DATA
# names, and is skipped where they are not there. On a terminal a bar shows how far the work is. The
# exit code is 1 when a program fails or a check finds a difference.
set -eu
cd "$(dirname "$0")/.."
build=$(cd "${1:-build/release}" && pwd)
out=${2:-build/demo}
data=${SWIFTGATE_REAL_DATA:-../shared/data}
examples=$PWD/examples
rm -rf "$out"
mkdir -p "$out"
out=$(cd "$out" && pwd)
data=$(cd "$data" 2>/dev/null && pwd) || data=""
export QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 PYTHONDONTWRITEBYTECODE=1 SWIFTGATE="$build/bin/swiftgate"
steps=$(grep -c '^ *\(run\|check\) "' scripts/demo.sh)
cd "$out"

# --- Steps

step=0
differs=0

# On a terminal: how many of the steps are done, and what is being done.
show_bar() {
    [ -t 2 ] || return 0
    full=$((step * 30 / steps))
    printf '\r\033[K[%s%s] %d of %d: %s' "$(printf '%*s' $full '' | tr ' ' '#')" \
        "$(printf '%*s' $((30 - full)) '' | tr ' ' '-')" $step "$steps" "$1" >&2
}
erase_bar() { [ ! -t 2 ] || printf '\r\033[K' >&2; }

# One step: a title, and a command. What the command prints is shown when it is done; what it says
# on standard error only when it fails.
attempt() {
    show_bar "$1"
    step=$((step + 1))
    title=$1
    shift
    code=0
    "$@" >.printed 2>.errors </dev/null || code=$?
    erase_bar
    echo "$title"
    sed -e '/^$/d' -e 's/^ */  /' -e '$a\' .printed
    if [ $code != 0 ]; then
        sed -e '/^$/d' -e '/^Loading /d' .errors >&2
    fi
    rm -f .printed .errors
    return $code
}

# A step without which the next ones make no sense, and one that looks for differences.
run() { attempt "$@" || exit 1; }
check() { attempt "$@" || differs=1; }

# --- Programs

swiftgate() { "$SWIFTGATE" "$@"; }

# A program of the office, or of the sales example: its name, further options, --, its arguments.
office() {
    program=$1
    shift
    swiftgate run "$examples/office/$program.lsp" --path "$examples/office" "$@"
}
sales() {
    program=$1
    shift
    swiftgate run "$examples/sales/$program.lsp" --path "$examples/office" \
        --path "$examples/sales" "$@"
}
with_python() {
    if [ -x /usr/bin/python3 ]; then /usr/bin/python3 "$@"; else echo "skipped: no python3"; fi
}
checksum() { sha256sum job.zip >job.sha256; }

# --- The office floor

echo "== An office floor"
run "Drawing the floor" office make_floor --save floor.dxf
run "Making the project's database" office make_project -- project.mdb
run "Changing its layers in the dialog" office layers --input "$examples/office/layers.in" \
    -- project.mdb
run "Equipping the floor" office office --drawing floor.dxf --save office.dwg -- project.mdb
run "Flattening the drawing" swiftgate convert office.dwg plain.dxf --flatten
run "Writing the ducts as solids" swiftgate convert office.dwg ducts.step
run "Printing the plan" swiftgate render office.dwg -o plan.pdf --size 2400x900
run "Making a picture of the plan" swiftgate render office.dwg -o plan.png --size 2400x900
run "Making a picture of the ducts" swiftgate render office.dwg -o office.png --view iso \
    --size 2000x1250 --layers 'A-*,M-D*'
run "Packing the job" office archive -- job.zip unpacked floor.dxf project.mdb office.dwg \
    ducts.step plan.pdf plan.png office.png
run "Computing the archive's checksum" checksum
run "Signing the checksum" office signature -- sign job.sha256

echo
echo "== The same files, opened again"
check "The database" office check --drawing floor.dxf -- project.mdb
check "The drawing" office check --drawing floor.dxf -- project.mdb office.dwg
check "The plain drawing" office check --drawing floor.dxf -- project.mdb plain.dxf
check "The ducts as solids" office check --drawing floor.dxf -- project.mdb ducts.step
check "The signature" office signature -- verify job.sha256
check "The pages of the database" swiftgate db check project.mdb
check "By other programs" with_python "$examples/office/other_readers.py" .

# --- The sales of a trading company, where there is one

echo
echo "== Sales by category"
given=$data/mdb/nwind.mdb
plan=$data/dwg/sample_2018.dwg
if [ -r "$given" ] && [ -r "$plan" ]; then
    run "Compacting the database" swiftgate db compact "$given" nwind.mdb
    run "Drawing the sales" sales sales --drawing "$plan" --save sales.dwg -- nwind.mdb
    run "Writing the drawing as DXF" swiftgate convert sales.dwg sales.dxf
    run "Printing it" swiftgate render sales.dwg -o sales.pdf
    check "The drawing, opened again" sales check_sales --drawing "$plan" \
        -- "$given" nwind.mdb sales.dwg
    check "By other programs" with_python "$examples/sales/other_readers.py" "$given" nwind.mdb \
        sales.dxf
else
    echo "skipped: SWIFTGATE_REAL_DATA names no folder with mdb/nwind.mdb and dwg/sample_2018.dwg"
fi

# --- A module of one's own

echo
echo "== Values between AutoLISP and native code"
run "Calling a sample module" swiftgate run "$examples/marshalling/marshalling.lsp" \
    --path "$build/examples"

# --- What there is now

echo
echo "== Files made, in $out"
find . -maxdepth 1 -type f -printf '%f %s\n' | sort |
    awk '{ printf "  %-22s %9.1f KB\n", $1, $2 / 1024 }'
echo
if [ $differs != 0 ]; then
    echo "Something differs: see above." >&2
    exit 1
fi
echo "All of it is as it should be."

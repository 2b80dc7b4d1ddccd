#!/bin/sh
# Makes an archive of 1,000 files and 200 MB with swiftgate and with zip at the same level, one after
# the other, and unpacks it with swiftgate and with unzip. Half of the files are texts, a quarter
# shrinks to a half and a quarter does not shrink. Seconds of wall time, the best of five.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
swiftgate=${SWIFTGATE:-$here/../../build/release/bin/swiftgate}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/in"
python3 - "$folder/in" <<'PYTHON'
import random
import sys

random.seed(1)
words = ["".join(random.choices("abcdefghijklmnopqrstuvwxyz", k=random.randint(2, 9))) + " "
         for _ in range(4000)]
size = 200_000
for number in range(1000):
    if number % 4 < 2:
        data = "".join(random.choices(words, k=size // 3)).encode()[:size]
    elif number % 4 == 2:
        data = b"".join(random.randbytes(50) + bytes(50) for _ in range(size // 100))
    else:
        data = random.randbytes(size)
    with open(f"{sys.argv[1]}/file{number:03}.dat", "wb") as file:
        file.write(data)
PYTHON
cd "$folder"

best() {
    for _ in 1 2 3 4 5; do
        rm -rf out "$1"
        start=$(date +%s%N)
        "$2" >/dev/null 2>&1
        end=$(date +%s%N)
        echo $(((end - start) / 1000))
    done | sort -n | head -1
}
compare() {
    awk -v name="$1" -v ours="$2" -v peer="$3" -v theirs="$4" 'BEGIN {
        printf "%-7s swiftgate %.2f s   %-5s %.2f s   %.2f times its time\n",
               name, ours / 1e6, peer, theirs / 1e6, ours / theirs }'
}
ours_make() { "$swiftgate" run --eval '(CreateZip "ours.zip" (list "in/*"))'; }
theirs_make() { zip -6 -q -j theirs.zip in/*; }
ours_take() { "$swiftgate" run --eval '(ExtractZip "ours.zip" "out")'; }
theirs_take() { unzip -q ours.zip -d out; }

if command -v zip >/dev/null && command -v unzip >/dev/null; then
    compare "making" "$(best ours.zip ours_make)" zip "$(best theirs.zip theirs_make)"
    ls -l ours.zip theirs.zip | awk '{ printf "        %s has %d bytes\n", $NF, $5 }'
    compare "taking" "$(best none ours_take)" unzip "$(best none theirs_take)"
else
    echo "zip or unzip is not installed"
fi

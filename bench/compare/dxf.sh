#!/bin/sh
# Loads and saves a drawing of 300,000 lines and circles (28 MB) with swiftgate and with python3-ezdxf,
# one after the other. Seconds of processor time, the best of three.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
swiftgate=${SWIFTGATE:-$here/../../build/release/bin/swiftgate}
python=${PYTHON:-/usr/bin/python3}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
"$python" - <<'PYTHON'
with open("plan.dxf", "w", encoding="ascii") as file:
    file.write("  0\nSECTION\n  2\nENTITIES\n")
    for i in range(300_000):
        x = i * 1.2503 + 0.3271
        if i % 3 == 0:
            file.write(f"  0\nCIRCLE\n  8\nLayer{i % 20}\n 62\n     3\n 10\n{x}\n 20\n{x / 3:.4f}\n"
                       f" 30\n0.0\n 40\n{x / 100 + 1:.4f}\n")
        else:
            file.write(f"  0\nLINE\n  8\nLayer{i % 20}\n 10\n{x}\n 20\n{x / 3:.4f}\n 30\n0.0\n"
                       f" 11\n{x + 1:.4f}\n 21\n{x / 7:.4f}\n 31\n0.0\n")
    file.write("  0\nENDSEC\n  0\nEOF\n")
PYTHON
best() {
    for _ in 1 2 3; do
        /usr/bin/env time -f "%U %S %M" -o time "$@" >/dev/null 2>&1 || true
        awk '{ printf "%.2f s, %d MB\n", $1 + $2, $3 / 1024 }' time
    done | sort -n | head -1
}
echo "swiftgate  load            $(best "$swiftgate" info plan.dxf)   (with the start and the counting)"
echo "swiftgate  load and save   $(best "$swiftgate" convert plan.dxf ours.dxf --release 2018)"
if "$python" -c "import ezdxf" 2>/dev/null; then
    echo "ezdxf      load            $(best "$python" -c 'import ezdxf; ezdxf.readfile("plan.dxf")')"
    echo "ezdxf      load and save   $(best "$python" -c \
        'import ezdxf; ezdxf.readfile("plan.dxf").saveas("theirs.dxf")')"
else
    echo "python3-ezdxf is not installed"
fi

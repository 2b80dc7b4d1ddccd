"""Turns a Hershey font file into a C++ table of strokes.

Usage: stroke_font.py FONT.jhf OUT.inc

The file has a glyph a line (long ones go on in the next): a number of five columns, a count of three
columns, and as many pairs of characters, each a coordinate as its distance from "R". The first pair
is the glyph's left and right edge, " R" lifts the pen. Glyphs stand for the characters from the
blank on. y grows downwards; capital letters reach from -12 to 9.
"""

import sys


def glyphs(text):
    lines = text.split("\n")
    at = 0
    while at < len(lines):
        line = lines[at]
        at += 1
        if not line.strip():
            continue
        count = int(line[5:8])
        body = line[8:]
        while len(body) < 2 * count:
            body += lines[at]
            at += 1
        yield body[: 2 * count]


def table(text):
    points, starts = [], []
    for body in glyphs(text):
        pairs = [(ord(a) - ord("R"), ord(b) - ord("R")) for a, b in zip(body[::2], body[1::2])]
        starts.append((pairs[0][0], pairs[0][1], len(points)))
        for pair, raw in zip(pairs[1:], zip(body[2::2], body[3::2])):
            points.append((127, 127) if raw == (" ", "R") else pair)
    return points, starts


def main():
    with open(sys.argv[1], encoding="ascii") as source:
        points, starts = table(source.read())
    with open(sys.argv[2], "w", encoding="ascii") as out:
        out.write("constexpr int8_t kPoints[][2] = {\n")
        out.writelines(f"    {{{x}, {y}}},\n" for x, y in points)
        out.write("};\nconstexpr RawGlyph kGlyphs[] = {\n")
        ends = [start for _, _, start in starts[1:]] + [len(points)]
        out.writelines(
            f"    {{{left}, {right}, {start}, {end}}},\n"
            for (left, right, start), end in zip(starts, ends)
        )
        out.write("};\n")


main()

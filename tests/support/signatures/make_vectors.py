#!/usr/bin/env python3
"""Makes vectors.txt: keys and signatures in the encodings of the legacy cryptographic service, by
the openssl command and the published layouts alone, so that they check our code from outside.

    openssl genrsa -traditional -out key1024.pem 1024     (and 2048, 520: a size with an odd byte)
    python3 make_vectors.py >vectors.txt

Key blobs are put together from the numbers that `openssl rsa -text` prints, each with its least
significant byte first. A signature is `openssl dgst -md5 -sign` with its bytes in reverse order. The
file has pairs of lines: a name, and bytes as their count and their decimal values.
"""

import os
import re
import struct
import subprocess

HERE = os.path.dirname(os.path.abspath(__file__))
RSA_SIGN, RSA_KEYX = 0x2400, 0xA400
MESSAGES = {
    "plain": "The quick brown fox jumps over the lazy dog".encode(),
    "empty": b"",
    "latin": "Größe 42 m²".encode("latin-1"),
    "clipped": b"\xff\xff \xff",  # of any text like "Ωμ €": each character above 255 is 255
}


def openssl(*words, given=None):
    return subprocess.run(["openssl", *words], input=given, check=True,
                          capture_output=True).stdout


def numbers(pem):
    text = openssl("rsa", "-in", pem, "-text", "-noout").decode()
    found = {}
    for name, digits in re.findall(r"^(\w+):\n((?:    [0-9a-f:]+\n)+)", text, re.M):
        found[name] = int(re.sub(r"[\s:]", "", digits), 16)
    found["publicExponent"] = int(re.search(r"publicExponent: (\d+)", text)[1])
    return found


def blob(key, bits, private, algorithm):
    size, half = bits // 8, (bits // 8 + 1) // 2
    out = struct.pack("<BBHI4sII", 7 if private else 6, 2, 0, algorithm,
                      b"RSA2" if private else b"RSA1", bits, key["publicExponent"])
    out += key["modulus"].to_bytes(size, "little")
    if private:
        for name in ["prime1", "prime2", "exponent1", "exponent2", "coefficient"]:
            out += key[name].to_bytes(half, "little")
        out += key["privateExponent"].to_bytes(size, "little")
    return out


def show(name, data):
    print(name)
    print(",".join(str(number) for number in [len(data), *data]))


for bits in [1024, 2048, 520]:
    pem = os.path.join(HERE, f"key{bits}.pem")
    key = numbers(pem)
    show(f"public{bits}", blob(key, bits, False, RSA_SIGN))
    show(f"private{bits}", blob(key, bits, True, RSA_SIGN))
    for name, message in MESSAGES.items():
        show(f"{name}{bits}", openssl("dgst", "-md5", "-sign", pem, given=message)[::-1])
show("exchange1024", blob(numbers(os.path.join(HERE, "key1024.pem")), 1024, True, RSA_KEYX))

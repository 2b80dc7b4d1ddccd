"""Prints what a message says to whom it is delivered: read_message.py FILE.eml.

Headers, the text as a Python literal, and each attachment with its type and name; of a ZIP archive
the entries with what they hold. Also what mail may not have: bare line ends, lines that are too
long, bytes beyond ASCII.
"""

import email
import email.policy
import io
import re
import sys
import zipfile


def show_archive(data, indent):
    with zipfile.ZipFile(io.BytesIO(data)) as archive:
        assert archive.testzip() is None
        for info in archive.infolist():
            content = archive.read(info)
            print(f"{indent}entry {info.filename}: {content[:60]!r} of {len(content)}")
            if info.filename.endswith(".zip"):
                show_archive(content, indent + "  ")


raw = open(sys.argv[1], "rb").read()
if re.search(rb"(?<!\r)\n|\r(?!\n)", raw):
    print("fault: a bare line end")
# The line with the boundary, which the library writes, has some characters more than it should.
if max(len(line) for line in raw.split(b"\r\n") if b"boundary=" not in line) > 78:
    print("fault: a long line")
head = raw.split(b"\r\n\r\n")[0]
if any(byte > 126 for byte in head):
    print("note: headers are not ASCII")
message = email.message_from_bytes(raw, policy=email.policy.SMTP)
for name in message.keys():
    value = message[name]
    if name in ("Date", "Message-ID"):
        value = "present"
    if name == "Content-Type":
        value = message.get_content_type()
    print(f"{name}: {value}")
for part in message.walk():
    if part.is_multipart():
        continue
    if part.get_content_disposition() != "attachment":
        text = part.get_content().replace("\r\n", "\n")
        print(f"text {part.get_content_type()}: {text!r}")
        continue
    print(f"attachment {part.get_content_type()}: {part.get_filename()}")
    if part.get_content_type() == "application/zip":
        show_archive(part.get_content(), "  ")
    else:
        print(f"  {part.get_payload(decode=True)[:60]!r}")
for part in message.walk():
    if part.defects:
        print("fault:", part.defects)

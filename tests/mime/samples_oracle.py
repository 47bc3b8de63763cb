"""Reference data for the sample messages, from Python's email package.

Usage: samples_oracle.py FILE...
Prints one tab-separated line per leaf part, depth first:
  <file> <part number> <media type> <disposition type or -> <filename or -> <content id or ->
  <hex of the decoded body>
A file without CR is read with each LF taken as CR LF, as the wire form has it."""
import email
import email.utils
import sys


def leaves(message, number):
    if message.is_multipart():
        for i, part in enumerate(message.get_payload(), 1):
            yield from leaves(part, f"{number}.{i}" if number else str(i))
        return
    disposition = message.get("Content-Disposition")
    cid = message.get("Content-Id")
    yield (number, message.get_content_type(),
           disposition.split(";")[0].strip().lower() if disposition else "-",
           email.utils.collapse_rfc2231_value(message.get_param("filename", "-", "Content-Disposition")),
           cid.strip().strip("<>") if cid else "-",
           (message.get_payload(decode=True) or b"").hex())


for path in sys.argv[1:]:
    raw = open(path, "rb").read()
    if b"\r" not in raw:
        raw = raw.replace(b"\n", b"\r\n")
    for leaf in leaves(email.message_from_bytes(raw), ""):
        print("\t".join((path,) + leaf))

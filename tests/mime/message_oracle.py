"""Reference trees for the tolerant message reader, from Python's email package.

Usage: message_oracle.py FILE...
Prints one tab-separated line per part, depth first (a message/rfc822 part is
followed by the message inside it):
  <file> <depth> <media type> <parameters or -> <transfer encoding or -> <filename or -> <body>
Parameters are "key=hex(utf-8 value)" joined by ";" in key order, "-" when the
type is implied (no Content-Type, or one without a single "/"). The transfer
encoding is one of the five RFC 2045 names or "-". The filename is that of the
Content-Disposition, else the Content-Type name, RFC 2047 words decoded. The
body is the hex of the decoded bytes, "-" for multipart and message types.

With --corpus DIR instead of files, prints the message files of DIR (the mail
test messages that ship with the interpreter: DIR is 'stdlib'). With --words
HEX..., prints for each header text given as the hex of its UTF-8 form that hex
and the hex of the text with its RFC 2047 words decoded."""
import email
import email.header
import email.utils
import os
import sys

ENCODINGS = {"7bit", "8bit", "binary", "base64", "quoted-printable"}


def hexed(value):
    return value.encode("utf-8", "surrogateescape").hex()


def parameters(part):
    value = part.get("content-type")
    if value is None or str(value).split(";")[0].strip().count("/") != 1:
        return "-"
    pairs = []
    for key, val in (part.get_params() or [])[1:]:
        if key:  # a ";" at the end gives an empty key: no parameter
            pairs.append((key.lower(), email.utils.collapse_rfc2231_value(val)))
    # a later duplicate key replaces an earlier one, as in a dictionary
    return ";".join(f"{k}={hexed(v)}" for k, v in sorted(dict(pairs).items()))


def filename(part):
    name = part.get_filename()
    if name is None:
        return "-"
    if "=?" in name:
        name = str(email.header.make_header(email.header.decode_header(name)))
    return hexed(name)


def walk(part, depth):
    kind = part.get_content_type()
    cte = str(part.get("content-transfer-encoding", "")).strip().lower()
    container = kind.startswith("multipart/") or kind.startswith("message/")
    body = "-" if container else (part.get_payload(decode=True) or b"").hex()
    yield (str(depth), kind, parameters(part), cte if cte in ENCODINGS else "-", filename(part), body)
    if part.is_multipart():
        for sub in part.get_payload():
            yield from walk(sub, depth + 1)


def corpus(directory):
    if directory == "stdlib":
        directory = os.path.join(os.path.dirname(email.__file__), "..", "test", "test_email", "data")
    if os.path.isdir(directory):
        for name in sorted(os.listdir(directory)):
            if name.startswith("msg_") and name.endswith(".txt"):
                print(os.path.realpath(os.path.join(directory, name)))


def main():
    if sys.argv[1:2] == ["--corpus"]:
        corpus(sys.argv[2])
        return
    if sys.argv[1:2] == ["--words"]:
        for argument in sys.argv[2:]:
            text = bytes.fromhex(argument).decode("utf-8")
            header = email.header.make_header(email.header.decode_header(text))
            print(argument + "\t" + str(header).encode("utf-8").hex())
        return
    for path in sys.argv[1:]:
        message = email.message_from_bytes(open(path, "rb").read())
        for line in walk(message, 0):
            print("\t".join((path,) + line))


main()

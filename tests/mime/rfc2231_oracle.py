"""Reference decodings of RFC 2231 parameters, from Python's email package.

Prints tab-separated lines
  CASE <Content-Type value> <hex of the UTF-8 of the decoded "title">
for generated well-formed parameter sets: plain values, single extended
values, and continuations mixing encoded and plain segments, cut at random
places between escapes (so the bytes of one character may be split across
segments). Only cases where the format leaves no room for two readings.
"""
import email.message
import email.utils
import random

ATTRIBUTE_CHARS = set(b"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789!#$&+-.^_`|~")
ALPHABET = "abcXYZ09 -_.!*'%()<>@,;:/?={}\u00e9\u00fc\u20ac\u4e2d\U0001F600"


def escaped(value):
    """The value as UTF-8 percent escapes, one item per byte."""
    return [chr(b) if b in ATTRIBUTE_CHARS else "%%%02X" % b for b in value.encode("utf-8")]


def header(rng, value):
    kind = rng.randrange(3)
    if kind == 0:
        return 'title*=utf-8\'\'%s' % "".join(escaped(value))
    items = escaped(value)
    segments, current = [], "utf-8''"
    for item in items:
        current += item
        if rng.random() < 0.2:
            segments.append(current)
            current = ""
    segments.append(current)
    parts = []
    for n, segment in enumerate(segments):
        plain = n > 0 and "%" not in segment and kind == 2 and segment != ""
        if plain:
            parts.append('title*%d="%s"' % (n, segment))
        else:
            parts.append("title*%d*=%s" % (n, segment))
    return "; ".join(parts)


def python_title(value):
    message = email.message.Message()
    message["Content-Type"] = "text/plain; " + value
    title = message.get_param("title")
    return email.utils.collapse_rfc2231_value(title)


def main():
    rng = random.Random(2231)
    for _ in range(2000):
        value = "".join(rng.choice(ALPHABET) for _ in range(rng.randrange(1, 25)))
        content_type = "text/plain; " + header(rng, value)
        decoded = python_title(content_type[len("text/plain; "):])
        if decoded != value:
            continue  # a reading Python takes differently: not a case for comparison
        print("CASE", content_type, decoded.encode("utf-8").hex(), sep="\t")


if __name__ == "__main__":
    main()

"""Reference decodings of RFC 2231 parameters, from Python's email package.

Prints tab-separated lines
  CASE <Content-Type value> <name>:<hex of the UTF-8 of its value>;...
for generated well-formed parameter sets: plain values, single extended
values, and continuations mixing encoded and plain segments, cut at random
places between escapes (so the bytes of one character may be split across
segments); one parameter or many, their segments in order or shuffled
together. Only cases where the format leaves no room for two readings.
"""
import email.message
import email.utils
import random

ATTRIBUTE_CHARS = set(b"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789!#$&+-.^_`|~")
ALPHABET = "abcXYZ09 -_.!*'%()<>@,;:/?={}\u00e9\u00fc\u20ac\u4e2d\U0001F600"


def escaped(value):
    """The value as UTF-8 percent escapes, one item per byte."""
    return [chr(b) if b in ATTRIBUTE_CHARS else "%%%02X" % b for b in value.encode("utf-8")]


def header(rng, name, value):
    """The parameter's parts as written, in order."""
    kind = rng.randrange(3)
    if kind == 0:
        return ['%s*=utf-8\'\'%s' % (name, "".join(escaped(value)))]
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
            parts.append('%s*%d="%s"' % (name, n, segment))
        else:
            parts.append("%s*%d*=%s" % (name, n, segment))
    return parts


def python_values(content_type):
    message = email.message.Message()
    message["Content-Type"] = content_type
    return {name: email.utils.collapse_rfc2231_value(value) for name, value in message.get_params()[1:]}


def main():
    rng = random.Random(2231)
    for _ in range(2000):
        names = ["title"] + ["p%d" % k for k in range(rng.choice([0, 0, 0, 2, 40]))]
        values, parts = {}, []
        for name in names:
            values[name] = "".join(rng.choice(ALPHABET) for _ in range(rng.randrange(1, 25)))
            parts += header(rng, name, values[name])
        if rng.random() < 0.5:
            rng.shuffle(parts)
        content_type = "text/plain; " + "; ".join(parts)
        if python_values(content_type) != values:
            continue  # a reading Python takes differently: not a case for comparison
        expected = ";".join("%s:%s" % (name, value.encode("utf-8").hex()) for name, value in values.items())
        print("CASE", content_type, expected, sep="\t")


if __name__ == "__main__":
    main()

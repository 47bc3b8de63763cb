#!/usr/bin/env python3
"""The peer comparison's program for Python's email package:
    bench.py WORKLOAD DATADIR COUNT
prints "RESULT WORKLOAD UNIT AMOUNT SECONDS NOTE" (UNIT bytes or ops), or FAIL
or SKIP with a reason. COUNT 0: passes until PEERS_MIN_TIME seconds (0.3) have
passed. The first pass is checked, outside the time."""
import binascii
import email
import email.policy
import os
import sys
import time
from email import base64mime
from email.message import EmailMessage
from email.mime.application import MIMEApplication
from email.mime.multipart import MIMEMultipart
from email.parser import BytesParser

WORKLOAD = sys.argv[1] if len(sys.argv) > 1 else "?"


def fail(why):
    print(f"FAIL {WORKLOAD} {why}")
    sys.exit(1)


def load(directory, name):
    with open(os.path.join(directory, name), "rb") as f:
        return f.read()


def timed(unit, amount_per_pass, count, note, run):
    minimum = float(os.environ.get("PEERS_MIN_TIME", "0.3"))
    passes, start = 0, time.perf_counter()
    while True:
        run()
        passes += 1
        seconds = time.perf_counter() - start
        if (count > 0 and passes >= count) or (count <= 0 and seconds >= minimum):
            break
    print(f"RESULT {WORKLOAD} {unit} {amount_per_pass * passes} {seconds:.6f} {note}")


def parts_of(content_type, body):
    message = BytesParser(policy=email.policy.compat32).parsebytes(b"Content-Type: " + content_type + b"\r\n\r\n" + body)
    return message.get_payload()


def split_total(content_type, body):
    parts = parts_of(content_type, body)
    return len(parts), sum(len(p.get_payload(decode=False).encode("latin-1", "surrogateescape")) for p in parts)


def canonical(value):
    message = EmailMessage()
    message["Content-Type"] = value
    params = []
    for key, raw in message.get_params(failobj=[])[1:]:
        params.append((key.lower(), email.utils.collapse_rfc2231_value(raw)))
    return ";".join([message.get_content_type()] + [f"{k}={v}" for k, v in sorted(params)])


def leaves(message):
    count = total = 0
    for part in message.walk():
        if not part.is_multipart():
            count += 1
            total += len(part.get_payload(decode=True) or b"")
    return count, total


def main():
    directory, count = sys.argv[2], int(sys.argv[3])
    if WORKLOAD in ("b64-enc", "b64-dec"):
        raw, text = load(directory, "b64.raw"), load(directory, "b64.txt")
        if WORKLOAD == "b64-enc":
            encode = lambda: base64mime.body_encode(raw, maxlinelen=76, eol="\r\n")
            if encode().encode() != text:
                fail("encoded text differs from b64.txt")
            timed("bytes", len(raw), count, "email.base64mime", encode)
        else:
            if binascii.a2b_base64(text) != raw:
                fail("decoded bytes differ from b64.raw")
            timed("bytes", len(raw), count, "binascii (email.base64mime.decode)", lambda: base64mime.decode(text))
    elif WORKLOAD in ("qp-enc", "qp-dec"):
        raw, text = load(directory, "qp.txt"), load(directory, "qp.enc")
        if WORKLOAD == "qp-enc":
            encode = lambda: binascii.b2a_qp(raw, istext=True)
            if binascii.a2b_qp(encode()) != raw:
                fail("encoded text does not decode to qp.txt")
            timed("bytes", len(raw), count, "binascii (quopri)", encode)
        else:
            if binascii.a2b_qp(text) != raw:
                fail("decoded bytes differ from qp.txt")
            timed("bytes", len(raw), count, "binascii (quopri)", lambda: binascii.a2b_qp(text))
    elif WORKLOAD in ("mp-sip", "mp-big"):
        name = "sip" if WORKLOAD == "mp-sip" else "big"
        content_type, body = load(directory, name + ".ct"), load(directory, name + ".body")
        want = tuple(int(x) for x in load(directory, name + ".meta").split())
        if split_total(content_type, body) != want:
            fail(f"parts and bytes {split_total(content_type, body)}, want {want}")
        if WORKLOAD == "mp-sip":
            timed("ops", 1, count, "email.parser", lambda: parts_of(content_type, body))
        else:
            timed("bytes", len(body), count, "email.parser", lambda: parts_of(content_type, body))
    elif WORKLOAD == "ct-parse":
        values = load(directory, "ct.txt").decode().splitlines()
        expected = load(directory, "ct.expected").decode().splitlines()
        matches = sum(canonical(v) == e for v, e in zip(values, expected))
        timed("ops", len(values), count, f"match={matches}/{len(values)}", lambda: [canonical(v) for v in values])
    elif WORKLOAD == "mp-pack":
        pieces = [(load(directory, f"pack{i}.ct").decode(), load(directory, f"pack{i}.body")) for i in range(3)]

        def pack():
            outer = MIMEMultipart("mixed")
            for content_type, body in pieces:
                part = MIMEApplication(body, content_type.split("/")[1], _encoder=email.encoders.encode_noop)
                outer.attach(part)
            return outer.as_bytes(policy=email.policy.SMTP)

        back = BytesParser(policy=email.policy.compat32).parsebytes(pack()).get_payload()
        if [p.get_payload(decode=True) for p in back] != [b for _, b in pieces]:
            fail("packed output does not unpack into the same bodies")
        timed("ops", 1, count, "email.mime, fresh boundary", pack)
    elif WORKLOAD == "msg-read":
        want_leaves, want_bytes, messages, size = (int(x) for x in load(directory, "msgs.meta").split())
        inputs = [load(directory, "msgs/%04d.eml" % i) for i in range(messages)]
        parser = BytesParser(policy=email.policy.compat32)

        def read():
            got = [0, 0]
            for data in inputs:
                c, b = leaves(parser.parsebytes(data))
                got[0] += c
                got[1] += b
            return got

        if read() != [want_leaves, want_bytes]:
            fail(f"leaves and bytes {read()}, want {[want_leaves, want_bytes]}")
        timed("bytes", size, count, "email.parser, leaves decoded", read)
    else:
        print(f"SKIP {WORKLOAD} not measured for this library")


if __name__ == "__main__":
    main()

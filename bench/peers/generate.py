#!/usr/bin/env python3
"""The inputs of the peer comparison, the same bytes on every machine (fixed
seeds).

usage: generate.py DATADIR

  b64.raw, b64.txt     32 MiB of random bytes; their base64 form, 76 columns, CR LF
  qp.txt, qp.enc       32 MiB of text (CR LF lines, about 2 % of the bytes >= 128);
                       its quoted-printable form
  sip.body, sip.ct     a 3-part SIP body (SDP, PIDF-LO, provider XML) and its
  sip.meta             Content-Type; "PARTS BODYBYTES"
  big.body, big.ct,    a 4-part body of 32 MiB, one part a 30 MiB base64
  big.meta             attachment
  ct.txt, ct.expected  8 Content-Type values, one a line, and their canonical
                       reading: type/subtype;key=value... (keys in lower case and
                       in order, values decoded, UTF-8)
  packN.ct, packN.body the 3 SIP parts, for packing (N = 0, 1, 2)
  msgs/NNNN.eml        2,000 mail messages (CR LF): 40 % text/plain, 25 %
                       multipart/alternative, 20 % multipart/mixed with base64
                       attachments, 10 % mixed holding an alternative, 5 % a
                       forwarded message/rfc822 holding a multipart
  msgs.meta            "LEAVES DECODEDBYTES MESSAGES MESSAGEBYTES", counted as the
                       messages are written
  box.mbox             the 2,000 messages five times as one mbox file (LF lines,
                       ">From " quoted): 10,000 messages for mimetool
"""
import base64
import binascii
import os
import random
import sys

MiB = 1 << 20
CRLF = b"\r\n"
WORDS = ("the call was placed from the third floor and the location was sent by reference so that "
         "the dispatcher could see it before the first ring message body header value part report "
         "meeting agenda invoice quarterly numbers attached please find below regards thanks").split()
ACCENTED = ["é", "ü", "ß", "ñ", "ø", "€"]


def base64_lines(data):
    text = base64.b64encode(data)
    return b"".join(text[i:i + 76] + CRLF for i in range(0, len(text), 76))


def text_lines(rng, size, eight_bit=0.0):
    """CR LF lines of words, about size bytes; eight_bit: share of words with an accent."""
    out, length = [], 0
    while length < size:
        words = []
        for _ in range(rng.randrange(6, 13)):
            word = rng.choice(WORDS)
            if rng.random() < eight_bit:
                word += rng.choice(ACCENTED)
            words.append(word)
        line = " ".join(words).encode() + CRLF
        out.append(line)
        length += len(line)
    return b"".join(out)[:size] if size >= MiB else b"".join(out)


def quoted_printable(data):
    return binascii.b2a_qp(data, istext=True).replace(b"\r\n", b"\n").replace(b"\n", CRLF)


def codecs(files):
    rng = random.Random(1)
    raw = rng.randbytes(32 * MiB)
    files["b64.raw"], files["b64.txt"] = raw, base64_lines(raw)
    text = text_lines(random.Random(2), 32 * MiB, eight_bit=0.08)
    text = text[:text.rfind(CRLF) + 2]  # whole lines
    text += b"x" * (32 * MiB - len(text))  # and the rest on a last, unterminated line
    files["qp.txt"], files["qp.enc"] = text, quoted_printable(text)
    assert binascii.a2b_qp(files["qp.enc"]) == text


SDP = (b"v=0\r\no=caller 2890844526 2890844526 IN IP4 192.0.2.10\r\ns=call\r\nc=IN IP4 192.0.2.10\r\n"
       b"t=0 0\r\nm=audio 49170 RTP/AVP 0 8 97\r\na=rtpmap:0 PCMU/8000\r\na=rtpmap:8 PCMA/8000\r\n"
       b"a=rtpmap:97 telephone-event/8000\r\na=sendrecv\r\n")


def pidf(rng):
    points = "".join(f"<gml:pos>{rng.uniform(-90, 90):.6f} {rng.uniform(-180, 180):.6f}</gml:pos>\r\n"
                     for _ in range(12))
    return ('<?xml version="1.0" encoding="UTF-8"?>\r\n<presence xmlns="urn:ietf:params:xml:ns:pidf" '
            'xmlns:gp="urn:ietf:params:xml:ns:pidf:geopriv10" xmlns:gml="http://www.opengis.net/gml" '
            'entity="pres:caller@example.net">\r\n<tuple id="loc"><status><gp:geopriv><gp:location-info>\r\n'
            f'<gml:Polygon srsName="urn:ogc:def:crs:EPSG::4326">\r\n{points}</gml:Polygon>\r\n'
            '</gp:location-info></gp:geopriv></status></tuple>\r\n</presence>\r\n').encode()


PROVIDER = (b'<?xml version="1.0" encoding="UTF-8"?>\r\n<EmergencyCallData.ProviderInfo '
            b'xmlns="urn:ietf:params:xml:ns:EmergencyCallData:providerinfo">\r\n'
            b'<DataProviderReference>provider-7c2f@example.net</DataProviderReference>\r\n'
            b'<DataProviderString>Example Telecom</DataProviderString>\r\n'
            b'<ProviderID>4711</ProviderID>\r\n<ProviderIDSeries>NENA</ProviderIDSeries>\r\n'
            b'<TypeOfProvider>Telecom Provider</TypeOfProvider>\r\n'
            b'<ContactURI>sip:noc@example.net</ContactURI>\r\n<Language>en</Language>\r\n'
            b'</EmergencyCallData.ProviderInfo>\r\n')


def multipart(boundary, parts):
    """A multipart body of (header lines, body) parts."""
    out = b""
    for header, body in parts:
        out += b"--" + boundary + CRLF + header + CRLF + body + CRLF
    return out + b"--" + boundary + b"--" + CRLF


def bodies(files):
    sip = [(b"application/sdp", SDP), (b"application/pidf+xml", pidf(random.Random(3))),
           (b"application/EmergencyCallData.ProviderInfo+xml", PROVIDER)]
    for n, (ctype, body) in enumerate(sip):
        files[f"pack{n}.ct"], files[f"pack{n}.body"] = ctype, body
    boundary = b"sip-boundary-7c2f"
    files["sip.ct"] = b'multipart/mixed; boundary="' + boundary + b'"'
    files["sip.body"] = multipart(boundary, [(b"Content-Type: " + t + CRLF, b) for t, b in sip])
    files["sip.meta"] = b"%d %d" % (len(sip), sum(len(b) for _, b in sip))

    rng = random.Random(4)
    attachment = base64_lines(rng.randbytes(29 * MiB // 4 * 3))[:-2]
    parts = [(b"Content-Type: text/plain; charset=utf-8\r\n", text_lines(rng, 600 * 1024)[:-2]),
             (b"Content-Type: text/html; charset=utf-8\r\n", text_lines(rng, 900 * 1024)[:-2]),
             (b"Content-Type: application/octet-stream\r\nContent-Transfer-Encoding: base64\r\n"
              b'Content-Disposition: attachment; filename="archive.bin"\r\n', attachment)]
    rest = 32 * MiB - sum(len(h) + len(b) for h, b in parts) - 200
    parts.append((b"Content-Type: text/plain\r\n", text_lines(rng, rest)[:rest]))
    files["big.ct"] = b'multipart/mixed; boundary="=_big_5e1d"'
    files["big.body"] = multipart(b"=_big_5e1d", parts)
    files["big.meta"] = b"%d %d" % (len(parts), sum(len(b) for _, b in parts))


# Content-Type values: plain, quoted, comments, RFC 2231 continuations and charset'language'.
CONTENT_TYPES = [
    ("application/sdp", "application/sdp"),
    ("text/plain; charset=ISO-8859-1", "text/plain;charset=ISO-8859-1"),
    ('multipart/alternative; boundary="=_alt_0042.1700000000"', "multipart/alternative;boundary==_alt_0042.1700000000"),
    ('text/html (rendered) ; charset="utf-8" (checked) ; delsp=yes',
     "text/html;charset=utf-8;delsp=yes"),
    ('multipart/related; type="application/pidf+xml"; start="<loc@example.net>"; boundary=rel-1',
     "multipart/related;boundary=rel-1;start=<loc@example.net>;type=application/pidf+xml"),
    ('application/octet-stream; name*0="quarterly-"; name*1="numbers-"; name*2="2026.xlsx"',
     "application/octet-stream;name=quarterly-numbers-2026.xlsx"),
    ("text/plain; charset=utf-8; title*=utf-8'fr'%C3%A9t%C3%A9%20%C3%A0%20Paris",
     "text/plain;charset=utf-8;title=été à Paris"),
    ("application/x-report; title*0*=us-ascii'en'Final%20figures%2C%20; title*1*=%2A%2Aconfirmed%2A%2A%20; "
     'title*2="(see notes)"', "application/x-report;title=Final figures, **confirmed** (see notes)"),
]


class Messages:
    """Mail messages, with their leaves and decoded bytes counted as they are made."""

    def __init__(self, rng):
        self.rng, self.leaves, self.decoded, self.serial = rng, 0, 0, 0

    def boundary(self):
        self.serial += 1
        return b"=_part_%d_%08x" % (self.serial, self.rng.getrandbits(32))

    def leaf(self, kind):
        """(header lines, body) of a leaf part."""
        rng = self.rng
        if kind == "plain":
            text = text_lines(rng, rng.randrange(300, 4000), eight_bit=0.05)
            self.leaves, self.decoded = self.leaves + 1, self.decoded + len(text)
            return (b"Content-Type: text/plain; charset=utf-8\r\nContent-Transfer-Encoding: quoted-printable\r\n",
                    quoted_printable(text))
        if kind == "html":
            text = b"<html><body>\r\n" + text_lines(rng, rng.randrange(800, 8000)) + b"</body></html>\r\n"
            self.leaves, self.decoded = self.leaves + 1, self.decoded + len(text)
            return b"Content-Type: text/html; charset=us-ascii\r\nContent-Transfer-Encoding: 7bit\r\n", text
        data = rng.randbytes(rng.randrange(1000, 20000))
        name = b"file-%d.%s" % (self.serial, rng.choice([b"pdf", b"png", b"zip"]))
        self.leaves, self.decoded = self.leaves + 1, self.decoded + len(data)
        return (b"Content-Type: application/octet-stream; name=\"" + name + b"\"\r\n"
                b"Content-Transfer-Encoding: base64\r\nContent-Disposition: attachment; filename=\"" + name + b"\"\r\n",
                base64_lines(data))

    def container(self, subtype, parts):
        boundary = self.boundary()
        return b"Content-Type: multipart/" + subtype + b"; boundary=\"" + boundary + b"\"\r\n", multipart(boundary, parts)

    def alternative(self):
        return self.container(b"alternative", [self.leaf("plain"), self.leaf("html")])

    def mixed(self, inner=None):
        parts = [inner or self.leaf("plain")] + [self.leaf("file") for _ in range(self.rng.randrange(1, 4))]
        return self.container(b"mixed", parts)

    def envelope(self, subject):
        rng = self.rng
        return (b"From: Sender %d <sender%d@example.com>\r\nTo: someone@example.net\r\n"
                b"Subject: " % (rng.randrange(1000), rng.randrange(1000)) + subject + b"\r\n"
                b"Date: Tue, 24 Nov 2026 07:%02d:00 +0000\r\nMessage-ID: <%d@example.com>\r\nMIME-Version: 1.0\r\n"
                % (rng.randrange(60), self.serial))

    def message(self):
        kind = self.rng.random()
        subject = " ".join(self.rng.choice(WORDS) for _ in range(5)).encode()
        if kind < 0.40:
            header, body = self.leaf("plain")
        elif kind < 0.65:
            header, body = self.alternative()
        elif kind < 0.85:
            header, body = self.mixed()
        elif kind < 0.95:
            header, body = self.mixed(inner=self.alternative())
        else:
            inner_header, inner_body = self.mixed()
            forwarded = self.envelope(b"the original") + inner_header + CRLF + inner_body
            header, body = self.container(b"mixed", [self.leaf("plain"), (b"Content-Type: message/rfc822\r\n", forwarded)])
        return self.envelope(subject) + header + CRLF + body


def mail(files):
    made = Messages(random.Random(5))
    total, count = 0, 2000
    for i in range(count):
        message = made.message()
        files["msgs/%04d.eml" % i] = message
        total += len(message)
    files["msgs.meta"] = b"%d %d %d %d\n" % (made.leaves, made.decoded, count, total)
    box = []
    for _ in range(5):
        for i in range(count):
            lines = files["msgs/%04d.eml" % i].split(CRLF)
            lines = [b">" + l if l.lstrip(b">").startswith(b"From ") else l for l in lines]
            box.append(b"From sender@example.com Tue Nov 24 07:00:00 2026\n" + b"\n".join(lines).rstrip(b"\n") + b"\n\n")
    files["box.mbox"] = b"".join(box)


def main():
    out = sys.argv[1]
    files = {}
    codecs(files)
    bodies(files)
    files["ct.txt"] = "".join(v + "\n" for v, _ in CONTENT_TYPES).encode()
    files["ct.expected"] = "".join(e + "\n" for _, e in CONTENT_TYPES).encode()
    mail(files)
    os.makedirs(os.path.join(out, "msgs"), exist_ok=True)
    for name, data in files.items():
        with open(os.path.join(out, name), "wb") as f:
            f.write(data)


if __name__ == "__main__":
    main()

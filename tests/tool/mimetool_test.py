"""End-to-end tests of mimetool: the real binary, run as a user runs it.

Usage: mimetool_test.py MIMETOOL SAMPLE
"""
import base64
import json
import re
import os
import random
import subprocess
import sys
import tempfile
import unittest

TOOL = None
SAMPLE = None


def run(*args, stdin=None):
    result = subprocess.run([TOOL, *args], input=stdin, capture_output=True, timeout=60)
    return result.returncode, result.stdout.decode(), result.stderr.decode()


def crlf(text):
    return text.replace("\n", "\r\n").encode()


def multipart(*parts, boundary="b"):
    body = "".join(f"--{boundary}\n{part}\n" for part in parts) + f"--{boundary}--\n"
    return crlf(f"Content-Type: multipart/mixed; boundary={boundary}\n\n{body}")


def nested(depth):
    """A multipart entity with depth levels of multipart inside."""
    text = "Content-Type: text/plain\r\n\r\nx"
    for level in range(depth):
        text = f"Content-Type: multipart/mixed; boundary=b{level}\r\n\r\n--b{level}\r\n{text}\r\n--b{level}--"
    return text.encode()


def walk(node):
    yield node
    for child in node.get("parts", []):
        yield from walk(child)


class ToolTest(unittest.TestCase):
    def setUp(self):
        self.dir = tempfile.TemporaryDirectory()
        self.addCleanup(self.dir.cleanup)

    def path(self, name):
        return os.path.join(self.dir.name, name)

    def write(self, name, data):
        with open(self.path(name), "wb") as f:
            f.write(data)
        return self.path(name)

    def show_json(self, *args, stdin=None):
        status, out, err = run("show", "--json", *args, stdin=stdin)
        self.assertEqual((status, err), (0, ""))
        return json.loads(out)


class Show(ToolTest):
    def test_sample_is_shown_without_arguments(self):
        status, out, err = run()
        self.assertEqual((status, err), (0, ""))
        self.assertEqual(out, run("show")[1])
        self.assertEqual(out, run("show", SAMPLE)[1])
        self.assertIn("1.3 application/EmergencyCallData.ProviderInfo+xml\n", out)
        self.assertIn("      base64, 537 bytes\n", out)
        self.assertIn("  1.1 application/sdp\n      172 bytes\n      first line: v=0\n", out)

    def test_json_agrees_with_the_sample_bytes(self):
        tree = self.show_json(SAMPLE)
        with open(SAMPLE, "rb") as f:
            raw = f.read()
        self.assertEqual([n["part"] for n in walk(tree)], ["1", "1.1", "1.2", "1.3", "1.4"])
        self.assertEqual(tree["parameters"], {"boundary": "sos-7c2f"})
        # The oracle for each leaf: the bytes between its empty line and the next delimiter.
        chunks = raw.split(b"\r\n--sos-7c2f")[1:-1]
        for node, chunk in zip(tree["parts"], chunks):
            body = chunk.split(b"\r\n\r\n", 1)[1]
            if node["transferEncoding"] == "base64":
                body = base64.b64decode(body)
            self.assertEqual(node["size"], len(body), node["part"])
            self.assertEqual(node["firstLine"], body.decode().splitlines()[0], node["part"])
        comment = tree["parts"][3]
        self.assertEqual(comment["type"], "application/EmergencyCallData.Comment+xml")
        self.assertEqual(comment["disposition"], {"type": "by-reference", "parameters": {"handling": "optional"}})
        self.assertEqual(comment["contentId"], "comment-7c2f@caller.example.net")

    def test_standard_input_and_lf_files_read_like_the_wire_form(self):
        with open(SAMPLE, "rb") as f:
            raw = f.read()
        expected = run("show", SAMPLE)[1]
        lf = self.write("lf.eml", raw.replace(b"\r\n", b"\n"))
        self.assertEqual(run("show", "--strict", lf)[1], expected)
        # Read as it is, LF line ends give the same parts (their sizes count LF, not CR LF).
        numbered = lambda text: [line.split()[:2] for line in text.splitlines() if "/" in line.split()[1]]
        self.assertEqual(numbered(run("show", lf)[1]), numbered(expected))
        self.assertEqual(subprocess.run([TOOL, "show", "-"], input=raw, capture_output=True).stdout.decode(), expected)

    def test_hostile_values_cannot_steer_the_terminal(self):
        message = crlf('Content-Type: text/plain; name="a\x1b[2J\u202eb"\n\n\x1b]0;title\x07 line\n')
        status, out, _ = run("show", self.write("m", message))
        self.assertEqual(status, 0)
        self.assertNotIn("\x1b", out)
        self.assertNotIn("\u202e", out)
        self.assertIn('name="a\\x1B[2J\\u{202E}b"', out)
        self.assertEqual(self.show_json(self.path("m"))["parameters"]["name"], "a\x1b[2J\u202eb")

    def test_malformed_input_names_what_and_where(self):
        # (content, the part that fails, what the message says of it)
        cases = [
            (crlf("Content-Type: text/plain\nno colon here\n\nx"), "1, byte 26", "a header line has no colon"),
            (crlf("Content-Type: text/\n\nx"), "1", "the Content-Type value is malformed"),
            (multipart("Content-Transfer-Encoding: base64\n\n@@@"), "1.1, byte 87", "the base64 body is malformed"),
            (multipart("\nfine", "Content-Disposition: ;\n\nx"), "1.2", "the Content-Disposition value is malformed"),
            (crlf("Content-Type: multipart/mixed; boundary=b\n\n--b\n\nx\n"), "1, byte 55",
             "the close delimiter --b-- is missing"),
            (crlf("Content-Type: multipart/mixed\n\n--b\n"), "1, byte 33", "the boundary parameter is missing"),
            (b"Content-Type: text/plain\r\nX-Bad: \xff\r\n\r\n", "1, byte 33", "the header holds bytes that are not UTF-8"),
            (nested(70), "1" + ".1" * 64, "multipart bodies nest deeper than 64 levels"),
        ]
        for content, number, fault in cases:
            message = f"part {number}: {fault}"
            with self.subTest(message):
                status, out, err = run("show", "--strict", self.write("bad", content))
                self.assertEqual((status, out), (1, ""))
                self.assertTrue(err.startswith("mimetool show: "), err)
                self.assertIn(message, err)
                # Read as mail readers read it: the tree, and a warning naming the part.
                status, out, err = run("show", self.path("bad"))
                self.assertEqual(status, 0)
                self.assertTrue(out.startswith("1 "), out)
                if number != "1" + ".1" * 64:
                    self.assertIn("mimetool: part " + number.split(",")[0], err)
                self.assertEqual(err.count("\n"), 1, err)


class Extract(ToolTest):
    def test_hostile_filenames_stay_inside_the_directory(self):
        names = ["../escape", "/etc/passwd", ".hidden", "..", "a\x1bb", "evil\u202etxt.exe", "part-1.8.bin",
                 "report.txt", "report.txt", "x" * 300]
        parts = [f'Content-Disposition: attachment; filename="{n}"\n\n{i}' for i, n in enumerate(names)]
        message = self.write("m", multipart(*parts))
        out_dir = self.path("out")
        status, out, err = run("extract", message, "-o", out_dir)
        self.assertEqual((status, err), (0, ""))
        expected = {f"part-1.{i}.bin" for i in (1, 2, 3, 4, 5, 6, 7, 9, 10)} | {"report.txt"}
        self.assertEqual(set(os.listdir(out_dir)), expected)
        self.assertEqual(set(os.listdir(self.dir.name)), {"m", "out"})
        with open(os.path.join(out_dir, "part-1.7.bin")) as f:
            self.assertEqual(f.read(), "6")

    def test_existing_files_stop_the_run_before_anything_is_written(self):
        message = self.write("m", multipart("\nfirst", 'Content-Type: text/plain; name="keep.txt"\n\nsecond'))
        out_dir = self.path("out")
        os.mkdir(out_dir)
        self.write("out/keep.txt", b"mine")
        status, out, err = run("extract", message, "-o", out_dir)
        self.assertEqual((status, out), (1, ""))
        self.assertIn("keep.txt exists", err)
        self.assertEqual(sorted(os.listdir(out_dir)), ["keep.txt"])
        self.assertEqual(run("extract", message, "-o", out_dir, "--force")[0], 0)
        with open(os.path.join(out_dir, "keep.txt")) as f:
            self.assertEqual(f.read(), "second")

    def test_malformed_input_writes_nothing(self):
        message = self.write("m", multipart("\nfine", "Content-Transfer-Encoding: base64\n\n!!"))
        self.assertEqual(run("extract", "--strict", message, "-o", self.path("out"))[0], 1)
        self.assertFalse(os.path.exists(self.path("out")))
        # Read as mail readers read it, the base64 that is there is written, and the folders made.
        status, out, err = run("extract", message, "-o", self.path("a/b"))
        self.assertEqual(status, 0)
        self.assertRegex(err, r"part 1\.2, byte")
        self.assertEqual(sorted(os.listdir(self.path("a/b"))), ["part-1.1.bin", "part-1.2.bin"])


class Mailbox(ToolTest):
    MESSAGES = [
        "From: a@example.org\nSubject: =?utf-8?q?caf=C3=A9?=\n\nFrom the start of a line\n",
        multipart("Content-Type: text/plain\n\none", 'Content-Disposition: attachment; filename="b.txt"\n\ntwo').decode()
        .replace("\r\n", "\n").replace("--b--\n", ""),  # no close delimiter
    ]

    def test_mbox_and_maildir_message_by_message(self):
        mbox = "".join(f"From x@example.org Mon Jan  1 00:00:00 2024\n{m.replace(chr(10) + 'From ', chr(10) + '>From ')}\n"
                       for m in self.MESSAGES)
        os.makedirs(self.path("md/cur"))
        os.makedirs(self.path("md/new"))
        for name, message in zip(["md/cur/1", "md/new/2"], self.MESSAGES):
            self.write(name, message.encode())
        for source in (self.write("box", mbox.encode()), self.path("md")):
            with self.subTest(source):
                status, out, err = run("show", source)
                self.assertEqual(status, 0)
                self.assertIn("1:1 text/plain; charset=us-ascii (implied)\n    From: a@example.org\n    Subject: café\n", out)
                self.assertIn("2:1.2 text/plain", out)
                self.assertIn("mimetool: part 2:1, byte", err)
                self.assertTrue(err.endswith("mimetool: 2 messages, 4 parts, "
                                             f"{sum(map(len, self.MESSAGES))} bytes, 1 defects (close-delimiter-missing 1)\n"),
                                err)
                # The same trees as the messages one by one, but for the numbers.
                trees = json.dumps(json.loads(run("show", "--json", source)[1]))
                one_by_one = json.dumps([json.loads(run("show", "--json", self.path(f))[1])
                                         for f in ("md/cur/1", "md/new/2")])
                lf = r'\{"code": "line-end-bare", "offset": \d+, "text": "[^"]*"\}(, )?'  # a mailbox's own line ends
                self.assertEqual(re.sub(r'"part": "\d+:', '"part": "', trees), re.sub(lf, "", one_by_one))
                status, out, _ = run("extract", source, "-o", self.path("out/" + os.path.basename(source)))
                self.assertEqual(status, 0)
                with open(self.path(f"out/{os.path.basename(source)}/1/part-1.bin")) as f:
                    self.assertEqual(f.read(), "From the start of a line\n")  # ">From " unquoted
                self.assertTrue(os.path.exists(self.path(f"out/{os.path.basename(source)}/2/b.txt")))



class Nested(ToolTest):
    def test_an_enclosed_message_is_shown_and_extracted(self):
        forwarded = os.path.join(os.path.dirname(__file__), "..", "mime", "mail", "message-forwarded.eml")
        status, out, err = run("show", forwarded)
        self.assertEqual((status, err), (0, ""))
        self.assertIn("  1.2 message/rfc822\n", out)
        self.assertIn("    1.2.1 multipart/alternative; boundary=c\n          From: b@example.org\n"
                      "          Subject: hello\n", out)
        status, out, _ = run("extract", forwarded, "-o", self.path("out"))
        self.assertEqual(sorted(os.listdir(self.path("out"))), ["part-1.1.bin", "part-1.2.1.1.bin", "part-1.2.1.2.bin"])


class Pack(ToolTest):
    def test_pack_then_show_and_extract_give_the_files_back(self):
        rng = random.Random(7)
        files = {
            "notes.txt": "Grüße\nline two\n".encode(),
            "call.sdp": b"v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\n",
            "blob": bytes(rng.randrange(256) for _ in range(5000)),
            "empty.txt": b"",
            "a=b.xml": b"<a/>",
            "trap.txt": b"before\r\n--fixed\r\nafter\r\n",
        }
        args = []
        for name, data in files.items():
            args.append(self.write(name, data))
        args[2] += "=application/EmergencyCallData.ProviderInfo+xml"
        status, packed, err = run("pack", "-t", "multipart/mixed", "--boundary", "fixed", "--attach", *args)
        self.assertEqual((status, err), (0, ""))
        self.assertTrue(packed.startswith("MIME-Version: 1.0\r\nContent-Type: multipart/mixed;boundary="))
        self.assertNotIn("boundary=fixed", packed)  # a part holds its delimiter
        message = self.write("packed.eml", packed.encode())
        tree = self.show_json(message)
        types = [p["type"] for p in tree["parts"]]
        self.assertEqual(types, ["text/plain", "application/sdp", "application/EmergencyCallData.ProviderInfo+xml",
                                 "text/plain", "application/xml", "text/plain"])
        self.assertEqual([p["size"] for p in tree["parts"]], [len(d) for d in files.values()])
        self.assertEqual([p["filename"] for p in tree["parts"]], list(files))
        self.assertEqual(run("extract", message, "-o", self.path("out"))[0], 0)
        for name, data in files.items():
            with open(os.path.join(self.path("out"), name), "rb") as f:
                self.assertEqual(f.read(), data, name)

    def test_values_that_would_leave_their_header_field_are_refused(self):
        injected = self.write("a\r\nBcc: x@example.com.txt", b"x")
        plain = self.write("plain.txt", b"x")
        for args in [("--attach", injected), ("-t", 'multipart/mixed; x="a\nBcc: y"', plain)]:
            with self.subTest(args):
                status, out, err = run("pack", *(args if args[0] == "-t" else ("-t", "multipart/mixed", *args)))
                self.assertEqual((status, out), (1, ""))
                self.assertRegex(err, r"^mimetool pack: .*\\x0ABcc.*: character \d+ of its header value: "
                                      r"the value holds a line break that is no fold")

    def test_usage_errors_exit_2_with_the_usage_text(self):
        existing = self.write("f.txt", b"x")
        cases = [
            ("pack", "-t", "text/plain", existing),
            ("pack", "-t", "multipart/mixed", "--boundary", "bad boundary ", existing),
            ("show", "--bogus"),
            ("extract", existing),
            ("header", "--wrap", "ten", "Content-Id", "<a@b>"),
            ("nonsense",),
        ]
        for args in cases:
            with self.subTest(args):
                status, out, err = run(*args)
                self.assertEqual((status, out), (2, ""))
                self.assertIn("usage: mimetool", err)


class Header(ToolTest):
    def test_values_decode_and_encode_back(self):
        cases = [
            (["Content-Type", 'Text/Plain; Charset="utf-8" (comment)'],
             "type: text/plain\nparameter charset: utf-8\nwire: Content-Type: text/plain;charset=utf-8\n"),
            (["content-type", "text/plain; name*=UTF-8''%E2%82%ACuro"],
             "type: text/plain\nparameter name: €uro\nwire: Content-Type: text/plain;name*=UTF-8''%E2%82%ACuro\n"),
            (["--wrap", "30", "Content-Disposition", "attachment; filename=aaaaaaaaaaaaaaaa.txt"],
             "type: attachment\nparameter filename: aaaaaaaaaaaaaaaa.txt\n"
             "wire: Content-Disposition: attachment\n ;filename=aaaaaaaaaaaaaaaa.txt\n"),
            (["Content-Id", " <part1@example.net> "], "id: part1@example.net\nwire: Content-Id: <part1@example.net>\n"),
        ]
        for args, expected in cases:
            with self.subTest(args):
                self.assertEqual(run("header", *args), (0, expected, ""))

    def test_invalid_values_exit_1(self):
        self.assertEqual(run("header", "Content-Transfer-Encoding", "gzip"),
                         (1, "", 'mimetool header: Content-Transfer-Encoding "gzip" is not valid\n'))


if __name__ == "__main__":
    TOOL, SAMPLE = sys.argv[1], sys.argv[2]
    unittest.main(argv=sys.argv[:1], verbosity=1)

// The peer comparison's program for Go's standard library (mime, mime/multipart,
// mime/quotedprintable, encoding/base64, net/mail):
//
//	bench WORKLOAD DATADIR COUNT
//
// prints "RESULT WORKLOAD UNIT AMOUNT SECONDS NOTE" (UNIT bytes or ops), or FAIL
// or SKIP with a reason. COUNT 0: passes until PEERS_MIN_TIME seconds (0.3)
// have passed. The first pass is checked, outside the time.
package main

import (
	"bytes"
	"encoding/base64"
	"fmt"
	"io"
	"mime"
	"mime/multipart"
	"mime/quotedprintable"
	"net/mail"
	"net/textproto"
	"os"
	"path/filepath"
	"sort"
	"strconv"
	"strings"
	"time"
)

var workload = "?"

func fail(why string) {
	fmt.Printf("FAIL %s %s\n", workload, why)
	os.Exit(1)
}

func load(dir, name string) []byte {
	data, err := os.ReadFile(filepath.Join(dir, name))
	if err != nil {
		fail("cannot open " + name)
	}
	return data
}

func numbers(data []byte) []int64 {
	var out []int64
	for _, field := range strings.Fields(string(data)) {
		n, _ := strconv.ParseInt(field, 10, 64)
		out = append(out, n)
	}
	return out
}

func timed(unit string, perPass int64, count int, note string, run func()) {
	minimum := 0.3
	if text := os.Getenv("PEERS_MIN_TIME"); text != "" {
		minimum, _ = strconv.ParseFloat(text, 64)
	}
	passes, start := 0, time.Now()
	var seconds float64
	for {
		run()
		passes++
		seconds = time.Since(start).Seconds()
		if (count > 0 && passes >= count) || (count <= 0 && seconds >= minimum) {
			break
		}
	}
	fmt.Printf("RESULT %s %s %d %.6f %s\n", workload, unit, perPass*int64(passes), seconds, note)
}

// base64 in 76-column lines with CR LF, as a mail writer lays it out.
func encodeBase64(raw []byte) []byte {
	const lineBytes = 57
	lines := (len(raw) + lineBytes - 1) / lineBytes
	out := make([]byte, base64.StdEncoding.EncodedLen(len(raw))+2*lines)
	at := 0
	for from := 0; from < len(raw); from += lineBytes {
		end := from + lineBytes
		if end > len(raw) {
			end = len(raw)
		}
		base64.StdEncoding.Encode(out[at:], raw[from:end])
		at += base64.StdEncoding.EncodedLen(end - from)
		out[at], out[at+1] = '\r', '\n'
		at += 2
	}
	return out[:at]
}

// Decode skips the line breaks itself.
func decodeBase64(text []byte) ([]byte, error) {
	out := make([]byte, base64.StdEncoding.DecodedLen(len(text)))
	n, err := base64.StdEncoding.Decode(out, text)
	return out[:n], err
}

func encodeQuotedPrintable(raw []byte) []byte {
	var out bytes.Buffer
	writer := quotedprintable.NewWriter(&out)
	writer.Write(raw)
	writer.Close()
	return out.Bytes()
}

func decodeQuotedPrintable(text []byte) ([]byte, error) {
	return io.ReadAll(quotedprintable.NewReader(bytes.NewReader(text)))
}

// The parts of a multipart body and their byte total (bodies as they stand).
func split(contentType string, body []byte) (int64, int64) {
	_, params, err := mime.ParseMediaType(contentType)
	if err != nil {
		fail("the Content-Type does not parse")
	}
	reader := multipart.NewReader(bytes.NewReader(body), params["boundary"])
	var parts, total int64
	for {
		part, err := reader.NextRawPart()
		if err == io.EOF {
			return parts, total
		}
		if err != nil {
			fail(err.Error())
		}
		n, _ := io.Copy(io.Discard, part)
		parts, total = parts+1, total+n
	}
}

func canonical(value string) string {
	name, params, err := mime.ParseMediaType(value)
	if err != nil {
		return ""
	}
	keys := make([]string, 0, len(params))
	for key := range params {
		keys = append(keys, key)
	}
	sort.Strings(keys)
	out := name
	for _, key := range keys {
		out += ";" + key + "=" + params[key]
	}
	return out
}

// Leaves of a part and their decoded bytes, multipart bodies and enclosed
// messages read recursively.
func leaves(header textproto.MIMEHeader, body io.Reader) (int64, int64) {
	mediaType, params, err := mime.ParseMediaType(header.Get("Content-Type"))
	if err != nil {
		mediaType = "text/plain"
	}
	switch {
	case strings.HasPrefix(mediaType, "multipart/"):
		reader := multipart.NewReader(body, params["boundary"])
		var count, total int64
		for {
			part, err := reader.NextRawPart()
			if err != nil {
				return count, total
			}
			c, t := leaves(part.Header, part)
			count, total = count+c, total+t
		}
	case mediaType == "message/rfc822":
		message, err := mail.ReadMessage(body)
		if err != nil {
			return 0, 0
		}
		return leaves(textproto.MIMEHeader(message.Header), message.Body)
	}
	switch strings.ToLower(header.Get("Content-Transfer-Encoding")) {
	case "base64":
		body = base64.NewDecoder(base64.StdEncoding, body)
	case "quoted-printable":
		body = quotedprintable.NewReader(body)
	}
	n, _ := io.Copy(io.Discard, body)
	return 1, n
}

func readMessage(data []byte) (int64, int64) {
	message, err := mail.ReadMessage(bytes.NewReader(data))
	if err != nil {
		fail(err.Error())
	}
	return leaves(textproto.MIMEHeader(message.Header), message.Body)
}

func pack(types []string, bodies [][]byte) ([]byte, string) {
	var out bytes.Buffer
	writer := multipart.NewWriter(&out)
	for i, body := range bodies {
		part, _ := writer.CreatePart(textproto.MIMEHeader{"Content-Type": {types[i]}})
		part.Write(body)
	}
	writer.Close()
	return out.Bytes(), writer.Boundary()
}

func main() {
	if len(os.Args) != 4 {
		fmt.Fprintln(os.Stderr, "usage: bench WORKLOAD DATADIR COUNT")
		os.Exit(2)
	}
	workload = os.Args[1]
	dir := os.Args[2]
	count, _ := strconv.Atoi(os.Args[3])
	switch workload {
	case "b64-enc", "b64-dec":
		raw, text := load(dir, "b64.raw"), load(dir, "b64.txt")
		if workload == "b64-enc" {
			if !bytes.Equal(encodeBase64(raw), text) {
				fail("encoded text differs from b64.txt")
			}
			timed("bytes", int64(len(raw)), count, "encoding/base64, 57-byte lines", func() { encodeBase64(raw) })
		} else {
			if got, err := decodeBase64(text); err != nil || !bytes.Equal(got, raw) {
				fail("decoded bytes differ from b64.raw")
			}
			timed("bytes", int64(len(raw)), count, "encoding/base64", func() { decodeBase64(text) })
		}
	case "qp-enc", "qp-dec":
		raw, text := load(dir, "qp.txt"), load(dir, "qp.enc")
		if workload == "qp-enc" {
			if back, err := decodeQuotedPrintable(encodeQuotedPrintable(raw)); err != nil || !bytes.Equal(back, raw) {
				fail("encoded text does not decode to qp.txt")
			}
			timed("bytes", int64(len(raw)), count, "mime/quotedprintable", func() { encodeQuotedPrintable(raw) })
		} else {
			if got, err := decodeQuotedPrintable(text); err != nil || !bytes.Equal(got, raw) {
				fail("decoded bytes differ from qp.txt")
			}
			timed("bytes", int64(len(raw)), count, "mime/quotedprintable", func() { decodeQuotedPrintable(text) })
		}
	case "mp-sip", "mp-big":
		name := map[string]string{"mp-sip": "sip", "mp-big": "big"}[workload]
		contentType, body := string(load(dir, name+".ct")), load(dir, name+".body")
		want := numbers(load(dir, name+".meta"))
		if parts, total := split(contentType, body); parts != want[0] || total != want[1] {
			fail(fmt.Sprintf("parts %d bytes %d, want %d %d", parts, total, want[0], want[1]))
		}
		if workload == "mp-sip" {
			timed("ops", 1, count, "mime/multipart", func() { split(contentType, body) })
		} else {
			timed("bytes", int64(len(body)), count, "mime/multipart", func() { split(contentType, body) })
		}
	case "ct-parse":
		values := strings.Split(strings.TrimRight(string(load(dir, "ct.txt")), "\n"), "\n")
		expected := strings.Split(strings.TrimRight(string(load(dir, "ct.expected")), "\n"), "\n")
		matches := 0
		for i, value := range values {
			if canonical(value) == expected[i] {
				matches++
			}
		}
		timed("ops", int64(len(values)), count, fmt.Sprintf("match=%d/%d", matches, len(values)), func() {
			for _, value := range values {
				mime.ParseMediaType(value)
			}
		})
	case "mp-pack":
		var types []string
		var bodies [][]byte
		for i := 0; i < 3; i++ {
			types = append(types, string(load(dir, fmt.Sprintf("pack%d.ct", i))))
			bodies = append(bodies, load(dir, fmt.Sprintf("pack%d.body", i)))
		}
		packed, boundary := pack(types, bodies)
		reader := multipart.NewReader(bytes.NewReader(packed), boundary)
		for i := 0; i < 3; i++ {
			part, err := reader.NextRawPart()
			if err != nil {
				fail("packed output does not unpack into 3 parts")
			}
			if got, _ := io.ReadAll(part); !bytes.Equal(got, bodies[i]) {
				fail("a body differs after packing")
			}
		}
		timed("ops", 1, count, "mime/multipart, fresh boundary", func() { pack(types, bodies) })
	case "msg-read":
		meta := numbers(load(dir, "msgs.meta"))
		var inputs [][]byte
		for i := int64(0); i < meta[2]; i++ {
			inputs = append(inputs, load(dir, fmt.Sprintf("msgs/%04d.eml", i)))
		}
		read := func() (int64, int64) {
			var count, total int64
			for _, data := range inputs {
				c, t := readMessage(data)
				count, total = count+c, total+t
			}
			return count, total
		}
		if c, t := read(); c != meta[0] || t != meta[1] {
			fail(fmt.Sprintf("leaves %d bytes %d, want %d %d", c, t, meta[0], meta[1]))
		}
		timed("bytes", meta[3], count, "net/mail and mime/multipart, leaves decoded", func() { read() })
	default:
		fmt.Printf("SKIP %s not measured for this library\n", workload)
	}
}

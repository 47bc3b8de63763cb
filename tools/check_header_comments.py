#!/usr/bin/env python3
"""Every exported function is declared in a public header, with a comment of its
own directly above its declaration: the API reference covers the whole
interface, library-internal names included.

Usage: check_header_comments.py EXPORT_LIST... -- HEADER..."""
import re
import sys

# a function (its name before the parenthesis) or exported data (its name before the semicolon)
DECLARATION = re.compile(r"^(PB|RFC|MIME)_API\b(?:.*?\b(\w+)\(|\s+extern\b.*?\b(\w+);)")


def declarations(path):
    """(line number, name, has a comment directly above) for each declaration."""
    lines = open(path, encoding="utf-8").read().split("\n")
    previous = ""
    for number, line in enumerate(lines, 1):
        if re.match(r"^(PB|RFC|MIME)_API\b[^(;]*$", line) and number < len(lines):
            line += " " + lines[number].strip()  # a long return type puts the name on the next line
        match = DECLARATION.match(line)
        if match:
            yield number, match.group(2) or match.group(3), previous.endswith("*/")
        if line.strip():
            previous = line.strip()


def main():
    split = sys.argv.index("--")
    exported = {name.strip() for path in sys.argv[1:split] for name in open(path) if name.strip()}
    headers = sys.argv[split + 1:]
    faults, declared = [], set()
    for path in headers:
        for number, name, commented in declarations(path):
            declared.add(name)
            if not commented:
                faults.append(f"{path}:{number}: {name} has no comment of its own")
    faults += [f"{name} is exported but declared in no public header" for name in sorted(exported - declared)]
    print("\n".join(faults) if faults else f"{len(headers)} headers: every exported function is declared with a comment")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())

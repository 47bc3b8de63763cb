#!/usr/bin/env python3
"""Every exported function in a public header has a comment: the declaration,
or the group of declarations it starts (no blank line between), follows a
comment. Library-internal names (three underscores) and declarations generated
inside macros, which the header's own comment describes, are exempt.

Usage: check_header_comments.py HEADER..."""
import re
import sys

DECLARATION = re.compile(r"^(PB|RFC|MIME)_API\b.*\b(\w+)\(")


def undocumented(path):
    lines = open(path, encoding="utf-8").read().split("\n")
    commented = False  # the current group of lines follows a comment
    in_comment = False
    for number, line in enumerate(lines, 1):
        stripped = line.strip()
        if in_comment:
            in_comment = "*/" not in stripped
            commented = True
            continue
        if not stripped:
            commented = False
            continue
        if stripped.startswith("/*"):
            in_comment = "*/" not in stripped
            commented = True
            continue
        match = DECLARATION.match(line)
        if match and "___" not in match.group(2) and not commented:
            yield f"{path}:{number}: {match.group(2)} has no comment"


def main():
    faults = [fault for path in sys.argv[1:] for fault in undocumented(path)]
    print("\n".join(faults) if faults else f"{len(sys.argv) - 1} headers: every exported function has a comment")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())

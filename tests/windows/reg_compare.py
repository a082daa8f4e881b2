#!/usr/bin/env python3
"""Compares two .reg files as registry content, for the round trip with
Wine's regedit.

    reg_compare.py EXPECTED ACTUAL [--allow-short-dword-export]

Both files are version 5.00 text (UTF-16LE with BOM). Each value line is
joined with its continuation lines; keys and the values inside each key are
compared as sets, since Wine enumerates subkeys and values in its own order
(a known deviation of Wine, not a loss). With --allow-short-dword-export, a
REG_DWORD that is not 4 bytes long (hex(4):...) in EXPECTED may appear as
dword: in ACTUAL: Wine's regedit exports every REG_DWORD that way, which
drops bytes (a known deviation of Wine's regedit). Exit 0 when equal,
1 with the differences on stderr.
"""
import re
import sys

HEADER = "Windows Registry Editor Version 5.00"


def read_reg(path):
    raw = open(path, "rb").read()
    if not raw.startswith(b"\xff\xfe"):
        sys.exit(f"{path}: not UTF-16LE with a byte order mark")
    lines = raw[2:].decode("utf-16-le").split("\r\n")
    if lines[0] != HEADER:
        sys.exit(f"{path}: header is {lines[0]!r}")
    keys = {}
    current = None
    pending = ""
    for line in lines[1:]:
        if pending:
            line = pending + line.lstrip(" ")
            pending = ""
        if line.endswith("\\") and not line.startswith("["):
            pending = line[:-1]
            continue
        if line.startswith("["):
            current = line[1:-1]
            keys.setdefault(current.upper(), (current, {}))
        elif line:
            name, data = split_value(line)
            keys[current.upper()][1][name.upper()] = (name, data)
    return keys


def split_value(line):
    if line.startswith("@="):
        return "@", line[2:]
    match = re.match(r'^("(?:[^"\\]|\\.)*")=(.*)$', line)
    if not match:
        sys.exit(f"unreadable value line {line!r}")
    return match.group(1), match.group(2)


def short_dword_exported(expected, actual):
    match = re.fullmatch(r"hex\(4\):([0-9a-f,]*)", expected)
    if not match or not actual.startswith("dword:"):
        return False
    data = bytes(int(b, 16) for b in match.group(1).split(",") if b)
    return len(data) != 4 and data[:4].ljust(4, b"\0") == int(actual[6:], 16).to_bytes(4, "little")


def main():
    args = [a for a in sys.argv[1:] if not a.startswith("--")]
    allow_short_dword = "--allow-short-dword-export" in sys.argv
    expected, actual = read_reg(args[0]), read_reg(args[1])
    problems = []
    deviations = 0
    for key in sorted(set(expected) | set(actual)):
        if key not in actual or key not in expected:
            problems.append(f"key only in {'expected' if key in expected else 'actual'}: {key}")
            continue
        (name_e, values_e), (name_a, values_a) = expected[key], actual[key]
        if name_e != name_a:
            problems.append(f"key name case: {name_e} / {name_a}")
        for value in sorted(set(values_e) | set(values_a)):
            e, a = values_e.get(value), values_a.get(value)
            if e == a:
                continue
            if e and a and e[0] == a[0] and allow_short_dword and short_dword_exported(e[1], a[1]):
                deviations += 1
                continue
            problems.append(f"[{name_e}] {value}: expected {e}, got {a}")
    for problem in problems:
        print(problem, file=sys.stderr)
    if deviations:
        print(f"known Wine deviation: {deviations} REG_DWORD value(s) not 4 bytes long exported as dword:")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/env python3
"""Writes platform/cp932_table.cpp from Microsoft's best-fit table of code page 932.

    python3 tools/gen_cp932_table.py [bestfit932.txt] [platform/cp932_table.cpp]

The input defaults to ../shared/reference/bestfit932.txt beside the repository,
the output to platform/cp932_table.cpp.  Run it by hand when the table changes
and commit the result; the build never runs it.

The table file has a CPINFO line (the default byte and the default character),
an MBTABLE of single bytes, a DBCSRANGE of lead byte ranges, each followed by a
DBCSTABLE per lead byte, and a WCTABLE of every character that encodes, best-fit
entries included.  Each table header gives the number of entries behind it; ";"
starts a comment.

The output is compact:
- decoding is a list of runs over byte codes (a single byte, or lead << 8 | trail
  for a pair) in byte order: a sequential run gives value, value + 1, ...; a
  listed run takes its characters from one shared array;
- encoding is the inverse of decoding, the last byte code in byte order winning
  where several decode to one character, corrected by a short list of
  overrides (the other duplicates and the best-fit characters).
The script checks that the output rebuilds the whole table before it writes it.
"""

import os
import sys

# A run of consecutive characters shorter than this is cheaper as listed values.
MIN_SEQUENTIAL = 8


def parse(path):
    tokens = []
    with open(path, encoding="latin-1") as f:
        for line in f:
            fields = line.split(";", 1)[0].split()
            if fields:
                tokens.append(fields)
    info = None
    single = {}
    leads = []
    pairs = {}
    wide = {}
    i = 0

    def entries(count):
        nonlocal i
        out = []
        for _ in range(count):
            a, b = tokens[i][:2]
            out.append((int(a, 0), int(b, 0)))
            i += 1
        return out

    while i < len(tokens):
        head = tokens[i]
        i += 1
        if head[0] == "CPINFO":
            info = tuple(int(x, 0) for x in head[1:4])
        elif head[0] == "MBTABLE":
            single.update(entries(int(head[1], 0)))
        elif head[0] == "DBCSRANGE":
            for _ in range(int(head[1], 0)):
                first, last = (int(x, 0) for x in tokens[i][:2])
                i += 1
                leads.append((first, last))
                for lead in range(first, last + 1):
                    if tokens[i][0] != "DBCSTABLE":
                        sys.exit("a DBCSTABLE is missing for lead byte 0x%02x" % lead)
                    count = int(tokens[i][1], 0)
                    i += 1
                    for trail, char in entries(count):
                        pairs[lead << 8 | trail] = char
        elif head[0] == "WCTABLE":
            wide.update(entries(int(head[1], 0)))
        elif head[0] in ("CODEPAGE", "ENDCODEPAGE"):
            pass
        else:
            sys.exit("unexpected line: " + " ".join(head))
    if info is None or info[0] != 2:
        sys.exit("no CPINFO of a double-byte code page")
    return info, single, leads, pairs, wide


def decode_runs(codes):
    """Runs of (first code, count, value, listed) over the sorted (code, char) pairs."""
    runs = []
    listed = []
    i = 0
    while i < len(codes):
        # A group of consecutive byte codes...
        j = i
        while j + 1 < len(codes) and codes[j + 1][0] == codes[j][0] + 1:
            j += 1
        group = codes[i:j + 1]
        # ... cut into sequential runs where they pay, listed runs elsewhere.
        k = 0
        pending = None  # start of a listed run inside the group
        while k < len(group):
            m = k
            while m + 1 < len(group) and group[m + 1][1] == group[m][1] + 1:
                m += 1
            if m - k + 1 >= MIN_SEQUENTIAL:
                if pending is not None:
                    runs.append((group[pending][0], k - pending, len(listed), 1))
                    listed.extend(c for _, c in group[pending:k])
                    pending = None
                runs.append((group[k][0], m - k + 1, group[k][1], 0))
            elif pending is None:
                pending = k
            k = m + 1
        if pending is not None:
            runs.append((group[pending][0], len(group) - pending, len(listed), 1))
            listed.extend(c for _, c in group[pending:])
        i = j + 1
    return runs, listed


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    root = os.path.dirname(here)
    source = sys.argv[1] if len(sys.argv) > 1 else os.path.join(
        root, "..", "shared", "reference", "bestfit932.txt")
    target = sys.argv[2] if len(sys.argv) > 2 else os.path.join(root, "platform", "cp932_table.cpp")
    (_, default_byte, default_char), single, leads, pairs, wide = parse(source)

    is_lead = [False] * 256
    for first, last in leads:
        for b in range(first, last + 1):
            is_lead[b] = True
    for b in range(256):
        if is_lead[b] == (b in single):
            sys.exit("byte 0x%02x is %s" % (b, "both a lead byte and a single byte"
                                            if is_lead[b] else "neither lead nor single"))
    codes = sorted(list(single.items()) + list(pairs.items()))
    runs, listed = decode_runs(codes)

    inverse = {}
    for code, char in codes:
        inverse[char] = code  # the last in byte order wins
    overrides = []
    for char in range(0x10000):
        want = wide.get(char, default_byte)
        if inverse.get(char, default_byte) != want:
            overrides.append((char, want))

    # Rebuild both directions from what is written and compare with the file.
    rebuilt = {}
    for first, count, value, is_listed in runs:
        for n in range(count):
            rebuilt[first + n] = listed[value + n] if is_listed else value + n
    assert rebuilt == dict(codes), "decode runs do not rebuild the table"
    encode = dict(inverse)
    encode.update(overrides)
    for char in range(0x10000):
        assert encode.get(char, default_byte) == wide.get(char, default_byte), hex(char)

    out = []
    out.append("// Generated by tools/gen_cp932_table.py from Microsoft's best-fit table of")
    out.append("// code page 932 (bestfit932.txt).  Do not edit: run the script again.")
    out.append('#include "platform/cp932_table.h"')
    out.append("")
    out.append("namespace quorvane::platform::cp932 {")
    out.append("namespace {")
    out.append("")
    out.append("constexpr LeadRange kLeads[] = {")
    out.append("    " + " ".join("{0x%02x, 0x%02x}," % r for r in leads))
    out.append("};")
    out.append("")
    out.append("// first, count, value (sequential) or offset into kListed (listed), listed")
    out.append("constexpr DecodeRun kRuns[] = {")
    items = ["{0x%04x, %d, 0x%04x, %d}," % r for r in runs]
    for n in range(0, len(items), 3):
        out.append("    " + " ".join(items[n:n + 3]))
    out.append("};")
    out.append("")
    out.append("constexpr char16_t kListed[] = {")
    values = ["0x%04x," % c for c in listed]
    for n in range(0, len(values), 12):
        out.append("    " + " ".join(values[n:n + 12]))
    out.append("};")
    out.append("")
    out.append("// character, byte code")
    out.append("constexpr EncodeOverride kOverrides[] = {")
    items = ["{0x%04x, 0x%04x}," % o for o in overrides]
    for n in range(0, len(items), 5):
        out.append("    " + " ".join(items[n:n + 5]))
    out.append("};")
    out.append("")
    out.append("}  // namespace")
    out.append("")
    out.append("const char kDefaultByte = 0x%02x;" % default_byte)
    out.append("const char16_t kDefaultCharacter = 0x%04x;" % default_char)
    out.append("std::span<const LeadRange> LeadRanges() { return kLeads; }")
    out.append("std::span<const DecodeRun> DecodeRuns() { return kRuns; }")
    out.append("std::span<const char16_t> ListedCharacters() { return kListed; }")
    out.append("std::span<const EncodeOverride> EncodeOverrides() { return kOverrides; }")
    out.append("")
    out.append("}  // namespace quorvane::platform::cp932")
    with open(target, "w", encoding="ascii", newline="\n") as f:
        f.write("\n".join(out) + "\n")
    print("%s: %d runs, %d listed characters, %d overrides" %
          (target, len(runs), len(listed), len(overrides)))


if __name__ == "__main__":
    main()

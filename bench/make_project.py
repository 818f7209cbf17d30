#!/usr/bin/env python3
"""Generates the benchmark projects: CSV in code page 932 with CR LF, as an
authoring tool writes them, all of them passing the check.

  make_project.py timetables <folder> [--timetables N] [--rows R]
      one schedule with N entries naming N time tables of R rows each; the
      rows run commands, so nothing below the time tables is needed
      (default 1000 x 20)
  make_project.py content <folder> [--programs P] [--files F] [--size BYTES]
      P programs whose frame playlists name F distinct content files of
      BYTES each between them (default 50 programs, 500 files of 1 MiB)
  make_project.py scenario <folder> [--programs P] [--timetables T] [--days D]
                          [--no-telop]
      one schedule entry a day for D days over T time tables, P programs,
      each with a frame playlist of 10 items and a telop playlist of one
      (default 2000 programs, 200 time tables, 365 days); with --no-telop
      the programs have no telop pane
  make_project.py telop <folder> [--size BYTES]
      one program with an image pane and a telop pane whose telop holds
      BYTES of code page 932 text without a line feed behind its two header
      lines (default 32 MiB); the project stands in <folder>/a/b/c/project
      and the telop both in its contents folder and in <folder>/contents,
      where a check-only run looks for it
"""

import argparse
import datetime
import os
import shutil


def escape(field):
    return field.replace("\\", "\\\\").replace(",", "\\,")


def csv_bytes(rows):
    return "".join(",".join(escape(f) for f in row) + "\r\n" for row in rows).encode("cp932")


def write(path, data):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as f:
        f.write(data)


def content_line(kind="1", time="00:00:10", effect="0"):
    return [kind, time, "", "false", "0x000000", "0", "", "0", "0", "0", "100", effect, "0",
            "0", "-1", "-1", "-1", "-1", "11"]


def program_rows(title, telop):
    rows = [[title], ["0xD4F0FF", "0", "0", "1920", "1080", "00:10:00", "0"],
            ["0", "playlist_0.csv", "0", "0", "1920", "1080", "0x000000", "false", "0", "true"]]
    for n in range(1, 9):
        if n == 1:
            rows.append(["1", "playlist_1.csv", "0", "0", "1920", "980", "0x000000", "false",
                         "0", "true"])
        elif n == 5 and telop:
            rows.append(["5", "playlist_5.csv", "0", "980", "1920", "100", "0x000000", "false",
                         "0", "true"])
        else:
            rows.append([str(n), "playlist_%d.csv" % n, "0", "0", "0", "0", "0x000000", "false",
                         "0", "true" if n == 7 else "false"])
    return rows


def playlist(folder, pane, items):
    """items: (content cell, line 2) pairs."""
    lines = []
    for k, (cell, line2) in enumerate(items, start=1):
        name = "contents_%d_%03d.csv" % (pane, k)
        lines.append(["information\\" + name])
        write(os.path.join(folder, "information", name), csv_bytes([[cell], line2]))
    write(os.path.join(folder, "playlist_%d.csv" % pane), csv_bytes(lines))


def fresh(root):
    if os.path.isdir(root):
        shutil.rmtree(root)
    os.makedirs(root)


def future_date(days):
    return (datetime.date(2035, 1, 1) + datetime.timedelta(days=days)).strftime("%Y/%m/%d")


def make_timetables(root, n, rows):
    fresh(root)
    entries = [["Schedule"], ["false"]]
    for i in range(n):
        name = "TimeTable_%04d.csv" % (i + 1)
        entries.append([future_date(i % 1000), name, "true" if i == 0 else "false"])
        lines = [["時間表 %d" % (i + 1)], ["0xD4F0FF"]]
        for r in range(rows):
            lines.append(["%02d:%02d:00" % (r % 24, r * 2 % 60), "", "1", "", str(r % 5),
                          "HDMI%d" % (r % 3)])
        write(os.path.join(root, name), csv_bytes(lines))
    write(os.path.join(root, "Schedule.csv"), csv_bytes(entries))


def make_content(root, programs, files, size):
    fresh(root)
    write(os.path.join(root, "Schedule.csv"), csv_bytes(
        [["Schedule"], ["false"], [future_date(0), "TimeTable_1.csv", "true"]]))
    lines = [["Content heavy"], ["0xD4F0FF"]]
    for p in range(programs):
        lines.append(["%02d:%02d:00" % (p // 60 % 24, p % 60), "23:59:00", "0",
                      "Program_%03d" % (p + 1), "0", ""])
    write(os.path.join(root, "TimeTable_1.csv"), csv_bytes(lines))
    block = os.urandom(size)  # incompressible, like real movies
    per_program = (files + programs - 1) // programs
    f = 0
    for p in range(programs):
        folder = os.path.join(root, "Program_%03d" % (p + 1))
        write(os.path.join(folder, "program.csv"), csv_bytes(program_rows("P%d" % p, False)))
        items = []
        for _ in range(per_program):
            if f >= files:
                break
            name = "movie_%04d.mp4" % f
            # Each file differs from the others in its first bytes.
            write(os.path.join(root, "contents", name), f.to_bytes(4, "little") + block[4:])
            items.append(("..\\contents\\" + name, content_line(time="00:00:30")))
            f += 1
        playlist(folder, 1, items)
        for n in (0, 7):
            write(os.path.join(folder, "playlist_%d.csv" % n), b"")


def make_scenario(root, programs, timetables, days, telops=True):
    fresh(root)
    entries = [["Scenario"], ["false"]]
    for d in range(days):
        entries.append([future_date(d), "TimeTable_%03d.csv" % (d % timetables + 1),
                        "true" if d == 0 else "false"])
    write(os.path.join(root, "Schedule.csv"), csv_bytes(entries))
    per_table = (programs + timetables - 1) // timetables
    p = 0
    for t in range(timetables):
        lines = [["表 %d" % (t + 1)], ["0xD4F0FF"]]
        for r in range(per_table):
            if p >= programs:
                break
            lines.append(["%02d:%02d:00" % (r % 24, r % 60), "23:59:00", "0",
                          "Program_%04d" % (p + 1), "0", ""])
            p += 1
        write(os.path.join(root, "TimeTable_%03d.csv" % (t + 1)), csv_bytes(lines))
    # A few shared content files: the project is about documents, not bytes.
    for i in range(10):
        write(os.path.join(root, "contents", "clip_%d.mp4" % i), b"movie %d" % i)
        write(os.path.join(root, "contents", "image_%d.jpg" % i), b"image %d" % i)
    telop = "\r\n".join(["TELOP", "0,0,48,0xffffff,0x000000,0,0,1",
                         "お知らせ テロップ"]).encode("cp932") + b"\r\n"
    write(os.path.join(root, "contents", "news.tlp"), telop)
    for p in range(programs):
        folder = os.path.join(root, "Program_%04d" % (p + 1))
        write(os.path.join(folder, "program.csv"), csv_bytes(program_rows("番組 %d" % p, telops)))
        items = []
        for k in range(10):
            if k % 2 == 0:
                items.append(("..\\contents\\clip_%d.mp4" % ((p + k) % 10), content_line()))
            else:
                items.append(("..\\contents\\image_%d.jpg" % ((p + k) % 10),
                              content_line(effect="258")))
        playlist(folder, 1, items)
        if telops:
            playlist(folder, 5, [("..\\contents\\news.tlp", content_line(time="00:00:20"))])
        for n in (0, 7):
            write(os.path.join(folder, "playlist_%d.csv" % n), b"")


def make_telop(root, size):
    fresh(root)
    project = os.path.join(root, "a", "b", "c", "project")
    write(os.path.join(project, "Schedule.csv"), csv_bytes(
        [["Schedule"], ["false"], [future_date(0), "TimeTable_1.csv", "true"]]))
    write(os.path.join(project, "TimeTable_1.csv"), csv_bytes(
        [["Telop"], ["0xD4F0FF"], ["00:00:00", "23:59:00", "0", "Program_1", "0", ""]]))
    folder = os.path.join(project, "Program_1")
    write(os.path.join(folder, "program.csv"), csv_bytes(program_rows("Telop", True)))
    write(os.path.join(project, "contents", "image.jpg"), b"image")
    playlist(folder, 1, [("..\\contents\\image.jpg", content_line())])
    playlist(folder, 5, [("..\\contents\\big.tlp", content_line(time="00:00:20"))])
    for n in (0, 7):
        write(os.path.join(folder, "playlist_%d.csv" % n), b"")
    # A small font, so that the longest counted line stays within the limit
    # and the check passes.
    head = "TELOP\r\n0,0,4,0xffffff,0x000000,0,0,1\r\n".encode("cp932")
    unit = "お知らせ テロップ 0123456789 ".encode("cp932")
    text = (unit * (size // len(unit) + 1))[:size]
    for where in (os.path.join(project, "contents"), os.path.join(root, "contents")):
        write(os.path.join(where, "big.tlp"), head + text)


def main():
    ap = argparse.ArgumentParser(description=__doc__,
                                 formatter_class=argparse.RawDescriptionHelpFormatter)
    ap.add_argument("kind", choices=["timetables", "content", "scenario", "telop"])
    ap.add_argument("folder")
    ap.add_argument("--timetables", type=int)
    ap.add_argument("--rows", type=int, default=20)
    ap.add_argument("--programs", type=int)
    ap.add_argument("--files", type=int, default=500)
    ap.add_argument("--size", type=int)
    ap.add_argument("--days", type=int, default=365)
    ap.add_argument("--no-telop", action="store_true")
    a = ap.parse_args()
    if a.kind == "timetables":
        make_timetables(a.folder, a.timetables or 1000, a.rows)
    elif a.kind == "content":
        make_content(a.folder, a.programs or 50, a.files, a.size or 1 << 20)
    elif a.kind == "telop":
        make_telop(a.folder, a.size or 32 << 20)
    else:
        make_scenario(a.folder, a.programs or 2000, a.timetables or 200, a.days, not a.no_telop)


if __name__ == "__main__":
    main()

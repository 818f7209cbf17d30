#!/usr/bin/env python3
"""Writes the bundled sample project into examples/sample (or the folder given).

The project is what an authoring tool hands to qvConvApp: CSV files in code
page 932 with CR LF line ends, the content files in a folder "contents" beside
the program folders.  It is meant to pass the check without a single finding,
so `qvConvApp examples/sample -package<zip>` ends with exit code 0.

  one schedule        Schedule.csv, three days in 2035
  two time tables     平日.csv (two programs and a command row),
                      TimeTable_weekend.csv (one program)
  two programs        ニュース番組 (a frame and a telop pane),
                      Program_ads (a frame pane)
  items               a movie, two images (one with a wipe effect), a telop in
                      code page 932, a blank item; one image is used twice

Run it again after a change and commit the files it writes.
"""

import os
import shutil
import sys

HERE = os.path.dirname(os.path.abspath(__file__))


def escape(field):
    # Backslash first, then the comma: the reader undoes them in the other order.
    return field.replace("\\", "\\\\").replace(",", "\\,")


def csv_bytes(rows):
    text = "".join(",".join(escape(f) for f in row) + "\r\n" for row in rows)
    return text.encode("cp932")


def write(root, rel, data):
    path = os.path.join(root, *rel.split("/"))
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as f:
        f.write(data)


def write_csv(root, rel, rows):
    write(root, rel, csv_bytes(rows))


def content_line(kind, time, color="0x000000", aspect="0", volume="100",
                 effect="0", effect_time="0", end_code="11"):
    """Line 2 of a contents file: 19 columns, no temporary frame move."""
    return [kind, time, "", "false", color, aspect, "", "0", "0", "0", volume,
            effect, effect_time, "0", "-1", "-1", "-1", "-1", end_code]


def program_rows(title, panes, background="0x102030", frame=(0, 0, 1920, 1080),
                 play_time="00:10:00"):
    """program.csv: panes maps a pane number to its region; the others are off."""
    x, y, w, h = frame
    rows = [[title],
            ["0xD4F0FF", str(x), str(y), str(w), str(h), play_time, "0"],
            ["0", "playlist_0.csv", str(x), str(y), str(w), str(h), background,
             "false", "0", "true"]]
    for n in range(1, 9):
        if n in panes:
            px, py, pw, ph = panes[n]
            rows.append([str(n), "playlist_%d.csv" % n, str(px), str(py), str(pw),
                         str(ph), background, "false", "0", "true"])
        else:
            rows.append([str(n), "playlist_%d.csv" % n, "0", "0", "0", "0",
                         "0x000000", "false", "0", "true" if n == 7 else "false"])
    return rows


def playlist(root, folder, pane, items):
    """playlist_<pane>.csv and one contents file per item."""
    lines = []
    for k, (path_cell, line2) in enumerate(items, start=1):
        rel = "information\\contents_%d_%03d.csv" % (pane, k)
        lines.append([rel])
        write_csv(root, "%s/information/contents_%d_%03d.csv" % (folder, pane, k),
                  [[path_cell], line2])
    write_csv(root, "%s/playlist_%d.csv" % (folder, pane), lines)


def empty_playlists(root, folder, used):
    for n in range(0, 8):
        if n not in used:
            write(root, "%s/playlist_%d.csv" % (folder, n), b"")


def build(root):
    if os.path.isdir(root):
        shutil.rmtree(root)
    os.makedirs(root)

    write_csv(root, "Schedule.csv", [
        ["サンプル スケジュール"],
        ["false"],
        ["2035/01/01", "平日.csv", "true"],
        ["2035/01/02", "TimeTable_weekend.csv", "false"],
        ["2035/01/03", "平日.csv", "false"],
    ])

    write_csv(root, "平日.csv", [
        ["平日の番組表"],
        ["0xD4F0FF"],
        ["09:00:00", "12:00:00", "0", "ニュース番組", "0", ""],
        ["12:00:00", "18:00:00", "0", "Program_ads", "0", ""],
        ["18:00:00", "", "1", "", "3", "HDMI1"],
    ])
    write_csv(root, "TimeTable_weekend.csv", [
        ["Weekend"],
        ["0xD4F0FF"],
        ["10:00:00", "20:00:00", "0", "Program_ads", "0", ""],
    ])

    news = "ニュース番組"
    write_csv(root, news + "/program.csv",
              program_rows("ニュース", {1: (0, 0, 1920, 900), 5: (0, 900, 1920, 180)}))
    playlist(root, news, 1, [
        ("..\\contents\\オープニング.mp4", content_line("1", "00:00:30", volume="80")),
        ("..\\contents\\ロゴ.png", content_line("1", "00:00:10", color="0xffffff", aspect="1")),
        # Wipe (code 2) upwards (direction 1 in bits 8 to 15): 2 + 256.
        ("..\\contents\\photo.jpeg", content_line("1", "00:00:15", aspect="2",
                                                  effect="258", effect_time="1000")),
    ])
    playlist(root, news, 5, [
        ("..\\contents\\お知らせ.tlp", content_line("1", "00:00:20")),
    ])
    empty_playlists(root, news, {1, 5})

    ads = "Program_ads"
    write_csv(root, ads + "/program.csv",
              program_rows("Advertising", {1: (0, 0, 1920, 1080)}, background="0x000000"))
    playlist(root, ads, 1, [
        ("..\\contents\\ロゴ.png", content_line("1", "00:00:05")),
        ("", content_line("8", "00:00:03")),
    ])
    empty_playlists(root, ads, {1})

    # The content files: nothing looks inside a movie or an image, so a few
    # bytes stand in for them.  The telop is real: a header line, the
    # parameter line (font size 48 in field 2, mode 1 in field 7), the text.
    write(root, "contents/オープニング.mp4", b"\x00\x00\x00\x18ftypmp42sample movie")
    write(root, "contents/ロゴ.png", b"\x89PNG\r\n\x1a\nsample logo")
    write(root, "contents/photo.jpeg", b"\xff\xd8\xff\xe0sample photo\xff\xd9")
    write(root, "contents/お知らせ.tlp", "\r\n".join([
        "TELOP",
        "0,0,48,0xffffff,0x000000,0,0,1",
        "本日はご来場ありがとうございます。",
        "午後六時に閉館いたします。",
    ]).encode("cp932") + b"\r\n")


def main():
    root = sys.argv[1] if len(sys.argv) > 1 else os.path.join(HERE, "sample")
    build(root)


if __name__ == "__main__":
    main()

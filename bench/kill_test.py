#!/usr/bin/env python3
"""Kills conversions and way backs with SIGKILL at spread moments and checks
that the destination is never left with a part of a result.

  kill_test.py [--moments N] [--bin PATH] [--files F] [--size BYTES] [--keep]

A project with large content files is made with make_project.py.  Complete
runs of each kind give the reference and its duration T (the median of
three); then N runs
of each kind are started and killed at N moments spread evenly over 1.25 x T:

  -package<zip>      the destination either holds what it held before (no
                     zip, or an older package that the new run would add to)
                     or the whole new package: every zip there reads with
                     zipfile and passes its CRC test;
  -unpackage<folder> every file in the folder is a file of the reference way
                     back, as long as it (project names compared without
                     their time stamps): no file is cut short.

The only other thing a killed run may leave beside the destination is its
temporary, clearly named: "<zip>.partial" (with the archive tool's own
"<zip>.partial.tmp" and the empty lock "<zip>.partial.lock"), or a hidden
".<name>.partial" in a folder of the way back.  Each destination is checked
right after the kill and again once every process of the run has gone.  A
last complete run of each kind must then take the temporaries over and leave
none.

Prints one line of counts per kind; the exit status is 1 if any check failed.
"""

import argparse
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import zipfile

HERE = os.path.dirname(os.path.abspath(__file__))
STAMP = re.compile(r"\d{8}_\d{6}")


def files_below(folder):
    """Relative path -> size of every plain file below folder."""
    found = {}
    for top, _, names in os.walk(folder):
        for name in names:
            path = os.path.join(top, name)
            found[os.path.relpath(path, folder)] = os.path.getsize(path)
    return found


def is_temporary(relative):
    name = os.path.basename(relative)
    return name.endswith((".partial", ".partial.tmp", ".partial.lock"))


class Runner:
    def __init__(self, binary, work):
        self.binary = binary
        self.env = dict(os.environ, TMPDIR=os.path.join(work, "tmp"), LC_ALL="C")
        os.makedirs(self.env["TMPDIR"], exist_ok=True)

    def start(self, *args):
        return subprocess.Popen([self.binary, *args], env=self.env, start_new_session=True,
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def complete(self, *args):
        began = time.monotonic()
        code = self.start(*args).wait()
        return code, time.monotonic() - began

    def typical(self, before, *args):
        """Three complete runs (`before` called ahead of each): the exit code
        of the last and the median duration, since a single run on a busy
        machine can be much faster or slower than the killed ones."""
        results = []
        for _ in range(3):
            before()
            results.append(self.complete(*args))
        return results[-1][0], sorted(d for _, d in results)[1]

    @staticmethod
    def kill_after(process, seconds):
        time.sleep(seconds)
        process.send_signal(signal.SIGKILL)
        process.wait()

    @staticmethod
    def live_members(group):
        """Processes of a group that still run (a zombie that nobody has
        reaped yet runs no more)."""
        members = []
        for entry in os.listdir("/proc"):
            if not entry.isdigit():
                continue
            try:
                with open("/proc/%s/stat" % entry) as f:
                    fields = f.read().rsplit(")", 1)[1].split()
            except OSError:
                continue
            if int(fields[2]) == group and fields[0] not in "ZX":
                members.append(int(entry))
        return members

    @classmethod
    def wait_for_group(cls, process):
        """Waits until no process of the run's group runs (10 s at most)."""
        deadline = time.monotonic() + 10
        while time.monotonic() < deadline:
            if not cls.live_members(process.pid):
                return True
            time.sleep(0.02)
        return False


def check_packages(folder, old_bytes, reference_names):
    """Problems of a package destination, and whether it holds the new package."""
    problems, new = [], False
    for relative in sorted(files_below(folder)):
        path = os.path.join(folder, relative)
        if is_temporary(relative):
            continue
        if not relative.endswith(".zip"):
            problems.append("unexpected file %s" % relative)
            continue
        with open(path, "rb") as f:
            data = f.read()
        if old_bytes is not None and data == old_bytes:
            continue
        try:
            with zipfile.ZipFile(path) as z:
                bad = z.testzip()
                names = set(z.namelist())
        except (zipfile.BadZipFile, OSError, EOFError) as e:
            problems.append("%s does not read as a zip: %s" % (relative, e))
            continue
        if bad is not None:
            problems.append("%s: member %s fails its CRC test" % (relative, bad))
        elif not reference_names <= names:
            problems.append("%s lacks %d members of the package"
                            % (relative, len(reference_names - names)))
        else:
            new = True
    return problems, new


def check_way_back(folder, reference):
    """Problems of a way-back destination, and how many files it holds."""
    problems, count = [], 0
    for relative, size in sorted(files_below(folder).items()):
        if is_temporary(relative):
            if not os.path.basename(relative).startswith("."):
                problems.append("temporary %s is not hidden" % relative)
            continue
        count += 1
        key = STAMP.sub("S", relative)
        if key not in reference:
            problems.append("unexpected file %s" % relative)
        elif size != reference[key]:
            problems.append("%s has %d bytes, not %d" % (relative, size, reference[key]))
    return problems, count


def spread(moments, duration):
    return [1.25 * duration * (i + 0.5) / moments for i in range(moments)]


def package_kills(runner, work, project, moments):
    reference_zip = os.path.join(work, "reference.zip")

    def no_reference():
        if os.path.exists(reference_zip):
            os.remove(reference_zip)

    code, duration = runner.typical(no_reference, project, "-package" + reference_zip)
    if code != 0:
        sys.exit("the reference conversion ended with %d" % code)
    with zipfile.ZipFile(reference_zip) as z:
        reference_names = set(z.namelist())
    out = os.path.join(work, "package")
    zip_path = os.path.join(out, "out.zip")
    old_zip = os.path.join(work, "old.zip")
    with zipfile.ZipFile(old_zip, "w") as z:
        z.writestr("old.txt", "a package that was there before")
    with open(old_zip, "rb") as f:
        old_bytes = f.read()

    problems, outcomes, temporaries = [], {"before": 0, "new": 0}, 0
    for i, moment in enumerate(spread(moments, duration)):
        shutil.rmtree(out, ignore_errors=True)
        os.makedirs(out)
        if i % 2:  # every other run adds to an archive that is there
            shutil.copyfile(old_zip, zip_path)
        process = runner.start(project, "-package" + zip_path)
        runner.kill_after(process, moment)
        found, new = check_packages(out, old_bytes, reference_names)
        if not runner.wait_for_group(process):
            found.append("a process of the run outlived it")
        later, _ = check_packages(out, old_bytes, reference_names)
        problems += ["kill %d at %.2f s: %s" % (i, moment, p) for p in found + later]
        outcomes["new" if new else "before"] += 1
        temporaries += any(is_temporary(r) for r in files_below(out))

    # The next complete run of the same output takes the temporary over.
    code, _ = runner.complete(project, "-package" + zip_path)
    left = [r for r in files_below(out) if is_temporary(r)]
    found, new = check_packages(out, old_bytes, reference_names)
    if code != 0 or left or found or not new:
        problems.append("the run after the kills: exit %d, temporaries %s, %s"
                        % (code, left, found or ("no new package" if not new else "")))
    print("package: %d kills over %.2f s: destination as before %d, whole new package %d, "
          "temporary left beside it %d; failed checks %d"
          % (moments, duration, outcomes["before"], outcomes["new"], temporaries, len(problems)))
    return problems, reference_zip


def way_back_kills(runner, work, package, moments):
    reference_folder = os.path.join(work, "reference_back")

    def fresh_reference():
        shutil.rmtree(reference_folder, ignore_errors=True)
        os.makedirs(reference_folder)

    code, duration = runner.typical(fresh_reference, package, "-unpackage" + reference_folder)
    if code != 0:
        sys.exit("the reference way back ended with %d" % code)
    reference = {STAMP.sub("S", r): s for r, s in files_below(reference_folder).items()}
    out = os.path.join(work, "back")

    problems, counts, temporaries = [], [], 0
    for i, moment in enumerate(spread(moments, duration)):
        if i % 2 == 0:  # every other run delivers over the files of the one before
            shutil.rmtree(out, ignore_errors=True)
            os.makedirs(out)
        process = runner.start(package, "-unpackage" + out)
        runner.kill_after(process, moment)
        found, count = check_way_back(out, reference)
        if not runner.wait_for_group(process):
            found.append("a process of the run outlived it")
        later, _ = check_way_back(out, reference)
        problems += ["kill %d at %.2f s: %s" % (i, moment, p) for p in found + later]
        counts.append(count)
        temporaries += any(is_temporary(r) for r in files_below(out))

    shutil.rmtree(out, ignore_errors=True)
    os.makedirs(out)
    code, _ = runner.complete(package, "-unpackage" + out)
    found, count = check_way_back(out, reference)
    if code != 0 or found or count != len(reference):
        problems.append("a complete way back: exit %d, %d of %d files, %s"
                        % (code, count, len(reference), found))
    print("way back: %d kills over %.2f s: files in the destination %d to %d of %d per run, "
          "temporary left %d; failed checks %d"
          % (moments, duration, min(counts), max(counts), len(reference), temporaries,
             len(problems)))
    return problems


def main():
    ap = argparse.ArgumentParser(description=__doc__,
                                 formatter_class=argparse.RawDescriptionHelpFormatter)
    ap.add_argument("--moments", type=int, default=50)
    ap.add_argument("--bin", default=os.path.join(HERE, "..", "build", "qvConvApp"))
    ap.add_argument("--files", type=int, default=24)
    ap.add_argument("--size", type=int, default=4 << 20)
    ap.add_argument("--keep", action="store_true", help="keep the scratch folder")
    a = ap.parse_args()
    binary = os.path.abspath(a.bin)
    if not os.access(binary, os.X_OK):
        sys.exit("no program at %s" % binary)

    work = tempfile.mkdtemp(prefix="qvkill.", dir=os.environ.get("TMPDIR", "/tmp"))
    try:
        project = os.path.join(work, "project")
        subprocess.run([sys.executable, os.path.join(HERE, "make_project.py"), "content", project,
                        "--programs", "4", "--files", str(a.files), "--size", str(a.size)],
                       check=True)
        runner = Runner(binary, work)
        problems, package = package_kills(runner, work, project, a.moments)
        problems += way_back_kills(runner, work, package, a.moments)
        for p in problems:
            print("  " + p)
        return 1 if problems else 0
    finally:
        if a.keep:
            print("kept", work)
        else:
            shutil.rmtree(work, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())

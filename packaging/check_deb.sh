#!/usr/bin/env bash
# Builds the Debian package, has lintian check it (no error and no warning may
# remain), unpacks it with dpkg -x into a scratch root (nothing is installed on
# this machine) and runs the unpacked program on the sample project.  Prints
# what it checked; exits non-zero on the first failure.
#
#   packaging/check_deb.sh [build-folder]     (default: build-deb, configured and built here)
#   packaging/check_deb.sh --built <folder>   (a build folder as it stands: the test suite's)
set -euo pipefail
BUILT=no
if [ "${1:-}" = "--built" ]; then
  BUILT=yes
  BUILD=$(cd "$2" && pwd)
fi
cd "$(dirname "$0")/.."
ROOT_DIR=$PWD
[ "$BUILT" = yes ] || BUILD=${1:-build-deb}
SCRATCH=$(mktemp -d)
trap 'rm -rf "$SCRATCH"' EXIT

if [ "$BUILT" = no ]; then
  cmake -S . -B "$BUILD" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQV_BUILD_TESTS=OFF >/dev/null
  cmake --build "$BUILD" -j "${JOBS:-2}" --target qvConvApp >/dev/null
fi
rm -f "$BUILD"/*.deb
(cd "$BUILD" && cpack -G DEB >/dev/null)
DEB=$(ls "$BUILD"/*.deb)
echo "package: $DEB"

fail() { echo "FAIL: $*" >&2; exit 1; }

command -v lintian >/dev/null || fail "lintian is not installed (apt-get install lintian)"
lintian --fail-on error,warning "$DEB" || fail "lintian reports errors or warnings"
echo "lintian: no error, no warning"

depends=$(dpkg-deb -f "$DEB" Depends)
echo "depends: $depends"
[[ $depends == *p7zip-full* ]] || fail "no dependency on p7zip-full"
[[ $depends == *libxerces-c3.2* ]] || fail "no dependency on libxerces-c3.2"
[ "$(grep -o 'libxerces-c3.2' <<<"$depends" | wc -l)" -eq 1 ] || fail "libxerces-c3.2 named twice"

dpkg -x "$DEB" "$SCRATCH/root"
PROGRAM=$SCRATCH/root/usr/bin/qvConvApp
[ -x "$PROGRAM" ] || fail "no /usr/bin/qvConvApp in the package"
PAGE=$(find "$SCRATCH/root/usr/share/man/man1" -name 'qvConvApp.1*' | head -1)
[ -n "$PAGE" ] || fail "no manual page in the package"
if command -v man >/dev/null; then
  man -l "$PAGE" 2>/dev/null | grep -q "EXIT STATUS" || fail "the manual page does not render"
else
  zcat -f "$PAGE" | grep -q '^\.SH "\?EXIT STATUS' || fail "the manual page has no exit status section"
fi
echo "contents: $(cd "$SCRATCH/root" && find . -type f | sort | tr '\n' ' ')"

# The unpacked program converts the sample project; its own temporary folder.
mkdir -p "$SCRATCH/tmp"
set +e
TMPDIR=$SCRATCH/tmp "$PROGRAM" "$ROOT_DIR/examples/sample" "-package$SCRATCH/sample.zip" >"$SCRATCH/out" 2>&1
code=$?
set -e
echo "conversion of examples/sample: exit status $code"
[ "$code" -eq 0 ] || [ "$code" -eq 1 ] || fail "conversion ended with $code"
[ -s "$SCRATCH/out" ] && fail "the program printed: $(cat "$SCRATCH/out")"
members=$(7za l -slt "$SCRATCH/sample.zip" | grep -c '^Path = QvFormat/' || true)
[ "$members" -gt 0 ] || fail "the package holds no QvFormat tree"
7za l -slt "$SCRATCH/sample.zip" | grep -q '^Path = QvFormat/QvS.xml' || fail "no QvFormat/QvS.xml in the package"
echo "sample package: $members entries below QvFormat"

# And back again.
mkdir -p "$SCRATCH/back"
set +e
TMPDIR=$SCRATCH/tmp "$PROGRAM" "$SCRATCH/sample.zip" "-unpackage$SCRATCH/back" >/dev/null 2>&1
code=$?
set -e
echo "unpackage of the sample package: exit status $code"
[ "$code" -eq 0 ] || fail "unpackage ended with $code"
[ -n "$(find "$SCRATCH/back" -iname 'schedule*.csv' -o -iname '*.csv' | head -1)" ] || fail "no CSV project unpacked"
echo "OK"

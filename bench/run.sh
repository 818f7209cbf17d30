#!/usr/bin/env bash
# Times `qvConvApp <project> -package<zip>` on the generated benchmark projects.
#
#   bench/run.sh timetables   1 schedule, 1,000 time tables of 20 rows
#   bench/run.sh content      50 programs, 500 content files of 1 MiB, side by
#                             side with `cp -r` + `7za a -tzip` of the project
#   bench/run.sh scenario     2,000 programs (22,000 contents files), and the
#                             same with 200 programs for the growth ratio;
#                             side by side with `cp -r` of the project +
#                             `7za a -r -tzip` of the package's own tree
#   bench/run.sh wayback      -unpackage of the 2,000-program package into an
#                             existing folder, side by side with one `7za x`
#                             of the package + `cp -r` of the project it gives
#   bench/run.sh telop        -check of a project whose telop holds 8 MiB and
#                             32 MiB of text without a line feed, side by
#                             side with one decoding of the 32 MiB file
#   bench/run.sh log          the 2,000-program scenario without and with
#                             -log, alternately, 5 runs each (LOG_RUNS): the
#                             log's cost
#   bench/run.sh check        -check of the 2,000-program project without
#                             telops, side by side with `cat` of its CSV files
#   bench/run.sh all          the six in turn
#
# BENCH_RUNS=<n> (default 3) times each side-by-side pair n times, the program
# and its floor in turn, and gives the medians; BENCH_SETTLE=<s> (default 5)
# is the pause before each timed step of a pair (see settle).
#
# QV_BIN names the program (default: build/qvConvApp, built by ./qv build).
# BENCH_DIR is where the projects and packages go (default: a fresh folder
# below $TMPDIR or /tmp, removed at the end unless BENCH_KEEP=1).
set -euo pipefail
cd "$(dirname "$0")/.."

QV_BIN=${QV_BIN:-build/qvConvApp}
[ -x "$QV_BIN" ] || { echo "no program at $QV_BIN: run ./qv build first, or set QV_BIN" >&2; exit 1; }
QV_BIN=$(realpath "$QV_BIN")
TIME=/usr/bin/time
[ -x "$TIME" ] || { echo "GNU time is needed at /usr/bin/time (Debian package time)" >&2; exit 1; }

BENCH_DIR=${BENCH_DIR:-$(mktemp -d "${TMPDIR:-/tmp}/qvbench.XXXXXX")}
mkdir -p "$BENCH_DIR"
if [ "${BENCH_KEEP:-0}" != 1 ]; then trap 'rm -rf "$BENCH_DIR"' EXIT; fi
# The program's work folders go below its own temporary folder.
export TMPDIR="$BENCH_DIR/tmp"
mkdir -p "$TMPDIR"

# measure <label> <command...>: runs the command under GNU time, prints the
# wall time, the CPU time (user + system, the program and the children it
# waits for), the peak memory and the exit code on one line, and leaves the
# seconds in $SECONDS_TAKEN and the CPU seconds in $CPU_TAKEN.  On a shared
# machine the CPU time is the steadier of the two.
measure() {
  local label=$1; shift
  local log="$BENCH_DIR/time.log"
  local code=0
  "$TIME" -v -o "$log" "$@" >/dev/null 2>&1 || code=$?
  local wall rss
  wall=$(sed -n 's/.*Elapsed (wall clock) time (h:mm:ss or m:ss): //p' "$log")
  rss=$(sed -n 's/.*Maximum resident set size (kbytes): //p' "$log")
  SECONDS_TAKEN=$(echo "$wall" |
    awk -F: '{ s = 0; for (i = 1; i <= NF; i++) s = s * 60 + $i; print s }')
  CPU_TAKEN=$(awk -F': ' '/User time|System time/ { s += $2 } END { print s }' "$log")
  printf '%-40s %8.2f s  %6.2f s CPU  %7.1f MiB peak  exit %s\n' "$label" "$SECONDS_TAKEN" \
    "$CPU_TAKEN" "$(echo "$rss" | awk '{ print $1 / 1024 }')" "$code"
}

RUNS=${BENCH_RUNS:-3}

median() {  # median <numbers...>
  printf '%s\n' "$@" | sort -g | awk '{ v[NR] = $1 } END {
    if (NR % 2) print v[(NR + 1) / 2]; else print (v[NR / 2] + v[NR / 2 + 1]) / 2 }'
}

ratio() {  # ratio <label> <ours> <floor> <target>
  awk -v l="$1" -v o="$2" -v f="$3" -v t="$4" \
    'BEGIN { printf "ratio %s = %.2f / %.2f = %.3f (target <= %s)\n", l, o, f, o / f, t }'
}

# Before a timed step: what the step before wrote is on disk, and what it
# removed is no longer recent.  ext4 passes over inodes freed in the last
# seconds when it makes a file, so a step that follows a large removal pays
# for it (a tenth of a millisecond a file and more).
settle() { sync; sleep "${BENCH_SETTLE:-5}"; }

sum() { awk -v a="$1" -v b="$2" 'BEGIN { print a + b }'; }

package() {  # package <label> <project> <zip>
  rm -f "$3"
  measure "$1" "$QV_BIN" "$2" "-package$3"
}

bench_timetables() {
  echo "== 1 schedule entry per time table, 1,000 time tables of 20 rows (target < 3 s)"
  python3 bench/make_project.py timetables "$BENCH_DIR/timetables"
  package "qvConvApp -package" "$BENCH_DIR/timetables" "$BENCH_DIR/timetables.zip"
}

bench_content() {
  echo "== 50 programs, 500 content files of 1 MiB (target: at most 1.15 x cp + 7za)"
  python3 bench/make_project.py content "$BENCH_DIR/content"
  sync
  package "qvConvApp -package" "$BENCH_DIR/content" "$BENCH_DIR/content.zip"
  local ours=$SECONDS_TAKEN
  rm -rf "$BENCH_DIR/copy" "$BENCH_DIR/pair.zip"
  measure "cp -r" cp -r "$BENCH_DIR/content" "$BENCH_DIR/copy"
  local copy=$SECONDS_TAKEN
  measure "7za a -tzip of the copy" 7za a -r -tzip "$BENCH_DIR/pair.zip" "$BENCH_DIR/copy"
  local zip=$SECONDS_TAKEN
  awk -v o="$ours" -v c="$copy" -v z="$zip" \
    'BEGIN { printf "ratio qvConvApp / (cp + 7za) = %.3f\n", o / (c + z) }'
}

bench_scenario() {
  echo "== scenario-heavy: 365 days, 200 time tables, 2,000 programs (target < 30 s, < 300 MiB)"
  python3 bench/make_project.py scenario "$BENCH_DIR/scenario200" --programs 200
  python3 bench/make_project.py scenario "$BENCH_DIR/scenario2000"
  settle
  package "qvConvApp -package, 200 programs" "$BENCH_DIR/scenario200" "$BENCH_DIR/s200.zip"
  local small=$SECONDS_TAKEN small_cpu=$CPU_TAKEN
  settle
  package "qvConvApp -package, 2,000 programs" "$BENCH_DIR/scenario2000" "$BENCH_DIR/s2000.zip"
  local large=$SECONDS_TAKEN large_cpu=$CPU_TAKEN
  awk -v s="$small" -v l="$large" -v sc="$small_cpu" -v lc="$large_cpu" 'BEGIN {
    if (s > 0) printf "growth T(2000) / T(200) = %.2f wall, %.2f CPU (target <= 10.5)\n",
      l / s, lc / sc }'
  # The floor: copying the project and packing a tree like the package's own.
  rm -rf "$BENCH_DIR/own"
  7za x "$BENCH_DIR/s2000.zip" -o"$BENCH_DIR/own" -y >/dev/null
  local ours=() floor=() ours_cpu=() floor_cpu=() i
  for ((i = 1; i <= RUNS; i++)); do
    settle
    package "qvConvApp -package, 2,000 programs" "$BENCH_DIR/scenario2000" "$BENCH_DIR/s2000.zip"
    ours+=("$SECONDS_TAKEN") ours_cpu+=("$CPU_TAKEN")
    rm -rf "$BENCH_DIR/copy" "$BENCH_DIR/floor.zip"
    settle
    measure "cp -r of the project" cp -r "$BENCH_DIR/scenario2000" "$BENCH_DIR/copy"
    local copy=$SECONDS_TAKEN copy_cpu=$CPU_TAKEN
    measure "7za a -r -tzip of the package's tree" \
      7za a -r -tzip "$BENCH_DIR/floor.zip" "$BENCH_DIR/own/QvFormat"
    floor+=("$(sum "$copy" "$SECONDS_TAKEN")") floor_cpu+=("$(sum "$copy_cpu" "$CPU_TAKEN")")
  done
  rm -rf "$BENCH_DIR/copy" "$BENCH_DIR/own" "$BENCH_DIR/floor.zip"
  ratio "qvConvApp / (cp + 7za a), wall medians" "$(median "${ours[@]}")" \
    "$(median "${floor[@]}")" 1.2
  ratio "qvConvApp / (cp + 7za a), CPU medians" "$(median "${ours_cpu[@]}")" \
    "$(median "${floor_cpu[@]}")" 1.2
}

bench_wayback() {
  echo "== way back: -unpackage of the 2,000-program package into an existing folder"
  [ -d "$BENCH_DIR/scenario2000" ] ||
    python3 bench/make_project.py scenario "$BENCH_DIR/scenario2000"
  [ -f "$BENCH_DIR/s2000.zip" ] ||
    package "qvConvApp -package, 2,000 programs" "$BENCH_DIR/scenario2000" "$BENCH_DIR/s2000.zip"
  local ours=() floor=() ours_cpu=() floor_cpu=() i
  for ((i = 1; i <= RUNS; i++)); do
    rm -rf "$BENCH_DIR/back" "$BENCH_DIR/x" "$BENCH_DIR/copy"
    mkdir "$BENCH_DIR/back"
    settle
    measure "qvConvApp -unpackage" "$QV_BIN" "$BENCH_DIR/s2000.zip" "-unpackage$BENCH_DIR/back"
    ours+=("$SECONDS_TAKEN") ours_cpu+=("$CPU_TAKEN")
    settle
    measure "7za x of the package" 7za x "$BENCH_DIR/s2000.zip" -o"$BENCH_DIR/x" -y
    local unzip=$SECONDS_TAKEN unzip_cpu=$CPU_TAKEN
    settle
    measure "cp -r of the project it gives" cp -r "$BENCH_DIR/back" "$BENCH_DIR/copy"
    floor+=("$(sum "$unzip" "$SECONDS_TAKEN")") floor_cpu+=("$(sum "$unzip_cpu" "$CPU_TAKEN")")
  done
  rm -rf "$BENCH_DIR/back" "$BENCH_DIR/x" "$BENCH_DIR/copy"
  ratio "qvConvApp / (7za x + cp), wall medians" "$(median "${ours[@]}")" \
    "$(median "${floor[@]}")" 1.3
  ratio "qvConvApp / (7za x + cp), CPU medians" "$(median "${ours_cpu[@]}")" \
    "$(median "${floor_cpu[@]}")" 1.3
}

bench_telop() {
  echo "== telop without line feeds, 8 and 32 MiB (target: check <= a few x one decoding)"
  local size
  for size in 8 32; do
    python3 bench/make_project.py telop "$BENCH_DIR/telop$size" --size $((size << 20))
  done
  measure "iconv -f CP932 of the 32 MiB telop" \
    iconv -f CP932 -t UTF-8 -o /dev/null "$BENCH_DIR/telop32/contents/big.tlp"
  local once=$SECONDS_TAKEN
  measure "qvConvApp -check, 8 MiB telop" \
    "$QV_BIN" "$BENCH_DIR/telop8/a/b/c/project" "-check$BENCH_DIR/telop8.xml"
  local small=$SECONDS_TAKEN
  measure "qvConvApp -check, 32 MiB telop" \
    "$QV_BIN" "$BENCH_DIR/telop32/a/b/c/project" "-check$BENCH_DIR/telop32.xml"
  local large=$SECONDS_TAKEN
  awk -v s="$small" -v l="$large" -v o="$once" 'BEGIN {
    if (s > 0) printf "growth T(32 MiB) / T(8 MiB) = %.2f (linear: about 4)\n", l / s
    if (o > 0) printf "check / one decoding of the file = %.2f\n", l / o }'
}

bench_check() {
  echo "== -check of the 2,000-program project without telops (target: at most 1.2 x cat)"
  python3 bench/make_project.py scenario "$BENCH_DIR/check2000" --no-telop
  local ours=() floor=() ours_cpu=() floor_cpu=() i
  for ((i = 1; i <= RUNS; i++)); do
    measure "qvConvApp -check" "$QV_BIN" "$BENCH_DIR/check2000" "-check$BENCH_DIR/check.xml"
    ours+=("$SECONDS_TAKEN") ours_cpu+=("$CPU_TAKEN")
    measure "cat of every CSV file" \
      sh -c 'find "$1" -name "*.csv" -exec cat {} + >/dev/null' sh "$BENCH_DIR/check2000"
    floor+=("$SECONDS_TAKEN") floor_cpu+=("$CPU_TAKEN")
  done
  ratio "qvConvApp -check / cat, wall medians" "$(median "${ours[@]}")" \
    "$(median "${floor[@]}")" 1.2
  ratio "qvConvApp -check / cat, CPU medians" "$(median "${ours_cpu[@]}")" \
    "$(median "${floor_cpu[@]}")" 1.2
}

bench_log() {
  local runs=${LOG_RUNS:-5}
  echo "== the 2,000-program scenario without and with -log, $runs runs each" \
    "(target: at most 1.05 x)"
  python3 bench/make_project.py scenario "$BENCH_DIR/scenario2000"
  local wall=() wall_log=() cpu=() cpu_log=()
  for i in $(seq "$runs"); do
    package "qvConvApp -package, run $i" "$BENCH_DIR/scenario2000" "$BENCH_DIR/s2000.zip"
    wall+=("$SECONDS_TAKEN") cpu+=("$CPU_TAKEN")
    rm -f "$BENCH_DIR/run.log" "$BENCH_DIR/s2000.zip"
    measure "qvConvApp -package -log, run $i" "$QV_BIN" "$BENCH_DIR/scenario2000" \
      "-package$BENCH_DIR/s2000.zip" "-log$BENCH_DIR/run.log"
    wall_log+=("$SECONDS_TAKEN") cpu_log+=("$CPU_TAKEN")
  done
  echo "log: $(wc -l < "$BENCH_DIR/run.log") lines, $(du -h "$BENCH_DIR/run.log" | cut -f1)"
  awk -v w="$(median "${wall[@]}")" -v wl="$(median "${wall_log[@]}")" \
      -v c="$(median "${cpu[@]}")" -v cl="$(median "${cpu_log[@]}")" 'BEGIN {
    printf "median wall %.2f s without, %.2f s with -log: %.3f (target <= 1.05)\n", w, wl, wl / w
    printf "median CPU %.2f s without, %.2f s with -log: %.3f\n", c, cl, cl / c }'
}

case "${1:-all}" in
  timetables) bench_timetables ;;
  content) bench_content ;;
  scenario) bench_scenario ;;
  telop) bench_telop ;;
  wayback) bench_wayback ;;
  check) bench_check ;;
  log) bench_log ;;
  all) bench_timetables; bench_content; bench_scenario; bench_wayback; bench_check; bench_telop ;;
  *) echo "usage: $0 timetables|content|scenario|wayback|check|telop|log|all" >&2; exit 2 ;;
esac

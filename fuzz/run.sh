#!/usr/bin/env bash
# Builds every fuzz target into fuzz/out and runs each in turn.
#
#   fuzz/run.sh [seconds] [target...]
#
# seconds: how long each target runs (default 60); targets: a subset of the
# names below (default all).  One target at a time, each one fuzzing process
# (no -jobs/-workers: those would fork a second process and log elsewhere).
# Findings are written to fuzz/out/findings/<target>/; the corpus grows in
# fuzz/out/corpus/<target>/ from the seeds in fuzz/corpus/<target>/.
set -euo pipefail
# One compound command, read whole before it runs: the script may be edited
# while a long fuzzing run is under way.
{
cd "$(dirname "$0")"

SECONDS_EACH=${1:-60}
shift || true
ALL=(csv_file_fuzzer csv_reader_fuzzer xml_compact_fuzzer xml_debug_fuzzer
     parameter_file_fuzzer telop_fuzzer checker_fuzzer text_forms_fuzzer command_line_fuzzer)
TARGETS=("$@")
[ ${#TARGETS[@]} -eq 0 ] && TARGETS=("${ALL[@]}")

CXX=${CXX:-$(command -v clang++-14 || command -v clang++)}
cmake -S . -B out/build -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_BUILD_TYPE=None >/dev/null
cmake --build out/build -j "${JOBS:-2}" --target "${TARGETS[@]}"

export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:allocator_may_return_null=1}
export LSAN_OPTIONS=${LSAN_OPTIONS:-suppressions=$PWD/lsan.supp}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
status=0
for target in "${TARGETS[@]}"; do
  corpus=out/corpus/$target
  findings=out/findings/$target
  mkdir -p "$corpus" "$findings"
  seeds=()
  [ -d "corpus/$target" ] && seeds=("corpus/$target")
  dict=()
  [ -f "dict/$target.dict" ] && dict=("-dict=dict/$target.dict")
  echo "== $target: ${SECONDS_EACH}s"
  if ! "out/build/bin/$target" "$corpus" "${seeds[@]}" "${dict[@]}" \
      -max_total_time="$SECONDS_EACH" -timeout=10 -rss_limit_mb=2048 -max_len=65536 \
      -print_final_stats=1 -artifact_prefix="$findings/" \
      >"out/$target.log" 2>&1; then
    echo "   finding: see out/$target.log and $findings/"
    status=1
  fi
  grep -E '^stat::number_of_executed_units|^stat::new_units_added' "out/$target.log" | sed 's/^/   /' || true
done
exit $status
}

#!/usr/bin/env bash
# Fuzzes every file reader: builds the libFuzzer harnesses of tests/fuzz/ with
# clang (AddressSanitizer, UndefinedBehaviorSanitizer) in build-fuzz/ and runs
# each for SECONDS (default 300), one after the other.
#
#   tools/fuzz.sh [SECONDS]          all harnesses
#   VELM_FUZZ_ONLY="vdf run" tools/fuzz.sh 3600
#
# Each harness grows its corpus in build-fuzz/corpus/<harness>/, seeded from
# examples/, data/, tests/data/ and tests/fuzz/. A crash, hang, leak or
# sanitizer report is left in build-fuzz/findings/<harness>/ and makes the
# script end with status 1; once fixed, the input goes to
# tests/fuzz/regressions/<harness>/, which the test suite replays.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds="${1:-300}"
read -r -a targets <<<"${VELM_FUZZ_ONLY:-vdf vdf_roundtrip vdf_import pipelib propa prophys propkij numbers flash run streams settings}"

CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVELM_FUZZ=ON \
  -DVELM_TESTS=OFF -DVELM_BENCH=OFF >/dev/null
cmake --build build-fuzz -j2 --target "${targets[@]/#/fuzz_}" >/dev/null

# Seeds: the files a harness reads in normal use, cut to the length it is fuzzed at.
seed() {
  local t=$1 dir=build-fuzz/seeds/$1
  rm -rf "$dir" && mkdir -p "$dir"
  case $t in
    vdf | vdf_roundtrip | vdf_import | run) cp examples/*.vdf "$dir/" ;;
    pipelib) cp data/pipeid.lib "$dir/" ;;
    propa) head -c 3680 data/propa.lib >"$dir/propa20" ;;
    prophys) head -c 3100 data/prophys.lib >"$dir/prophys50" ;;
    propkij) cp data/propkij.lib "$dir/" ;;
    flash) printf '\x00\x01\x3e\x00\x00\x00\x00\x00\x00\xf0\x3f\x00\x00\x00\x00\x00\xc0\x72\x40\x00\x00\x00\x00\x00\x40\x8f\x40' >"$dir/water_tp" ;;
    streams)
      printf '\x0fStream,T [C],P [barg],LIQDEN [kg/m3]\r\nFEED,35,2.5,994\r\nL-2,40,1,990\r\n' >"$dir/table_csv"
      printf '\x0e"VELM_3.2"\r\n"\\PIPE","FEED","TEMP",35,35,35,"C"\r\n"\\PIPE","L-2","PRES",250,250,250,"kPag"\r\n' >"$dir/project_form" ;;
    settings) printf '[Defaults]\r\nMaxIter=50\r\nUnits=British\r\ngDirData={localappdata}/velm\r\n' >"$dir/velm_ini" ;;
    numbers) for f in tests/data/*.csv; do head -n 3 "$f" | tail -n 1 | tr ',' ';' >"$dir/$(basename "$f")"; done ;;
  esac
  [ -d "tests/fuzz/seeds/$t" ] && cp tests/fuzz/seeds/"$t"/* "$dir/" 2>/dev/null || true
  [ -d "tests/fuzz/regressions/$t" ] && cp tests/fuzz/regressions/"$t"/* "$dir/" 2>/dev/null || true
}

options() {
  case $1 in
    vdf | vdf_roundtrip | vdf_import) echo "-max_len=8192 -dict=tests/fuzz/vdf.dict" ;;
    run) echo "-max_len=4096 -dict=tests/fuzz/vdf.dict" ;;
    propa | prophys) echo "-max_len=8192" ;;
    *) echo "-max_len=4096" ;;
  esac
}

status=0
export ASAN_OPTIONS="detect_leaks=1:allocator_may_return_null=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
mkdir -p build-fuzz/logs
for t in "${targets[@]}"; do
  seed "$t"
  mkdir -p "build-fuzz/corpus/$t" "build-fuzz/findings/$t"
  log=build-fuzz/logs/$t.log
  # shellcheck disable=SC2046
  if ! build-fuzz/fuzz/fuzz_"$t" $(options "$t") -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 \
    -print_final_stats=1 -artifact_prefix="build-fuzz/findings/$t/" \
    "build-fuzz/corpus/$t" "build-fuzz/seeds/$t" >"$log" 2>&1; then
    status=1
    echo "fuzz_$t: FINDING, see $log and build-fuzz/findings/$t/"
  fi
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
  echo "fuzz_$t: ${runs:-0} executions in $seconds s"
done
exit $status

#!/usr/bin/env bash
# Builds everything, runs the file-reading tests under AddressSanitizer and
# UndefinedBehaviorSanitizer, fuzzes each file reader briefly, runs the Python
# package's tests, the page in a real browser, then the whole C++ suite.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/bootstrap.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVELM_TESTS=ON -DVELM_BENCH=ON -DVELM_PYTHON=ON \
  -DPython3_EXECUTABLE=/usr/bin/python3 >/dev/null
cmake --build build
cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVELM_SANITIZE=ON -DVELM_TESTS=ON -DVELM_BENCH=OFF >/dev/null
cmake --build build-asan --target velm_tests velm
ASAN_OPTIONS=detect_leaks=1 build-asan/velm_tests --gtest_filter='*Vdf*:*BadInput*:*PipeLib*:*Fuzz*:*FileReplace*:*RandomGestures*' \
  --gtest_brief=1
# Every file reader fuzzed for a few seconds (tools/fuzz.sh runs them longer).
tools/fuzz.sh 4
# The Python package against the same build.
PYTHONPATH=build/python VELM_EXE="$PWD/build/velm" /usr/bin/python3 -m pytest -q -p no:cacheprovider python/tests
# The page in headless Chromium, as a user drives it (playwright-core pinned in tests/e2e/package-lock.json).
(cd tests/e2e && npm ci --no-audit --no-fund --loglevel=error)
VELM_EXE="$PWD/build/velm" node --test --test-concurrency=1 tests/e2e/
ctest --test-dir build --output-on-failure -j "$(nproc)"

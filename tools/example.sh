#!/usr/bin/env bash
# Builds the velm command and runs the example project given (default: the
# gravity transfer between two tanks), writing its results to out/.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/bootstrap.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVELM_TESTS=OFF -DVELM_BENCH=OFF >/dev/null
cmake --build build --target velm
build/velm run "${1:-examples/gravity_transfer.vdf}" --out out

#!/usr/bin/env bash
# Installs what the build and the tests need, from Debian's packages.
# Safe to run again: packages already present are not fetched.
set -euo pipefail
packages=(g++ cmake ninja-build libgtest-dev libgmock-dev libbenchmark-dev libcli11-dev nlohmann-json3-dev
          libsuitesparse-dev libcpp-httplib-dev esbuild)
# The Python module and its tests: pybind11, pandas, Dask's distributed, pytest, tqdm (Debian's own).
packages+=(python3 python3-dev pybind11-dev python3-pandas python3-distributed python3-pytest python3-tqdm)
# clang with its libFuzzer and sanitizer runtimes: the fuzz harnesses (tools/fuzz.sh).
packages+=(clang libclang-rt-dev)
# The page's end-to-end tests: Chromium driven by playwright-core from npm.
packages+=(chromium)
command -v node >/dev/null 2>&1 || packages+=(nodejs)
command -v npm >/dev/null 2>&1 || packages+=(npm)
if [ "${1:-}" = "--tools" ]; then
  # Only for regenerating data and reference tables under tools/.
  packages+=(python3 python3-fluids python3-iapws python3-scipy)
fi
missing=()
for p in "${packages[@]}"; do
  dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${missing[@]}"
fi

#!/usr/bin/env bash
# Turns a hydraulic report (resulth.rtf) into plain text for a person to read,
# with LibreOffice headless; not part of the test suite.
#
#   tools/check_report.sh [REPORT.rtf | PROJECT.vdf]
#
# With a project (default examples/pump_loop.vdf) it builds velm, runs the
# project into a scratch directory and converts the report written there.
# The text lands beside the report as resulth.txt and is printed.
set -euo pipefail
cd "$(dirname "$0")/.."
input="${1:-examples/pump_loop.vdf}"

if ! command -v soffice >/dev/null 2>&1; then
  sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq libreoffice-writer-nogui
fi

case "$input" in
  *.vdf)
    tools/bootstrap.sh
    cmake -S . -B build -G Ninja >/dev/null
    cmake --build build --target velm >/dev/null
    out="$(mktemp -d)"
    build/velm run "$input" --out "$out" >/dev/null || true
    report="$out/resulth.rtf"
    ;;
  *)
    report="$input"
    out="$(cd "$(dirname "$report")" && pwd)"
    ;;
esac
[ -f "$report" ] || { echo "check_report: no report at $report" >&2; exit 2; }

# A profile of its own, so that a LibreOffice the user has open is left alone.
profile="$(mktemp -d)"
trap 'rm -rf "$profile"' EXIT
text="$out/$(basename "${report%.*}").txt"
rm -f "$text"
soffice -env:UserInstallation="file://$profile" --headless --convert-to "txt:Text (encoded):UTF8" \
  --outdir "$out" "$report" >"$profile/soffice.log" 2>&1 || true
[ -f "$text" ] || { cat "$profile/soffice.log" >&2; echo "check_report: conversion failed" >&2; exit 1; }
cat "$text"
echo "check_report: text in $text" >&2

#!/usr/bin/env bash
# Builds the Python module and installs it into a virtual environment (default
# .venv) made with --system-site-packages, so that Debian's pandas, Dask and
# matplotlib serve it; nothing is downloaded.
#
#   tools/python_env.sh [VENV]      then: VENV/bin/python -c "import velm"
set -euo pipefail
cd "$(dirname "$0")/.."
venv="${1:-.venv}"
tools/bootstrap.sh
dpkg -s python3-venv python3-matplotlib >/dev/null 2>&1 || {
  sudo=""; [ "$(id -u)" -eq 0 ] || sudo="sudo"
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq python3-venv python3-matplotlib
}
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVELM_PYTHON=ON \
  -DPython3_EXECUTABLE=/usr/bin/python3 >/dev/null
cmake --build build --target _velm
/usr/bin/python3 -m venv --system-site-packages "$venv"
site="$("$venv/bin/python" -c 'import sysconfig; print(sysconfig.get_paths()["purelib"])')"
rm -rf "$site/velm"
cp -r build/python/velm "$site/velm"
echo "velm installed in $venv: $venv/bin/python -c 'import velm'"

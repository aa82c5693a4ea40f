#!/usr/bin/env bash
# Installs what is needed, builds Vossel and starts it.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j "$(nproc)"
if [ -x build/bin/vossel ]; then
  if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    echo "There is no display here, so the desktop program cannot start."
    echo "Use the command-line companion instead, for example:"
    echo "  build/bin/vossel-cli info /usr/share/games/openttd/baseset/openttd.grf"
    echo "  build/bin/vossel-cli --help"
    exit 1
  fi
  exec build/bin/vossel
fi
exec build/bin/vossel-cli --help

#!/usr/bin/env bash
# Installs what Vossel needs to build, test and run, from Debian's packages.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config
  qt6-base-dev libgl-dev libpng-dev
  libgtest-dev libgmock-dev googletest libbenchmark-dev
  clang-format clang libclang-rt-14-dev
  xvfb xauth x11-utils xdotool fonts-dejavu-extra
  openttd-data openttd-opengfx
  lintian appstream groff-base man-db
)

if [ "$(id -u)" -eq 0 ]; then sudo=(); else sudo=(sudo); fi

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  "${sudo[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -qq --no-install-recommends \
    "${missing[@]}" >/dev/null
fi

#!/usr/bin/env bash
# Installs what is needed, builds, and runs the whole test suite twice: a plain build, whose Debian
# package is then made, listed and judged by lintian, and a clang build with AddressSanitizer and
# UndefinedBehaviorSanitizer that holds the fuzz targets too.
# Then every fuzz target runs for a while (FUZZ_SECONDS, 15 by default) and the formatting is
# checked. No test may take more than 10 minutes: a hang fails the run instead of stalling it. A
# failed test is run once more, and fails the run only when it fails again: a smoke test's
# virtual display has been seen to turn a client away, once in many runs.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh

jobs=$(nproc)
run_suite() {
  local dir=$1
  shift
  cmake -S . -B "$dir" -G Ninja "$@" >/dev/null
  cmake --build "$dir" -j "$jobs"
  QT_QPA_PLATFORM=offscreen ctest --test-dir "$dir" --output-on-failure -j "$jobs" --timeout 600 \
    --repeat until-pass:2
}

echo "== Build and test =="
run_suite build -DCMAKE_BUILD_TYPE=Release

echo "== Debian package from the plain build =="
rm -f build/vossel_*.deb
cmake --build build --target package >/dev/null
deb=$(echo build/vossel_*.deb)
dpkg-deb --info "$deb"
contents=$(dpkg-deb --contents "$deb")
echo "$contents"
for f in bin/vossel bin/vossel-cli lib/vossel/ttdw-jasc.pal lib/vossel/ttd-dos-jasc.pal \
  lib/vossel/ttd-windows-toyland-jasc.pal lib/vossel/ttd-dos-toyland-jasc.pal \
  lib/vossel/vossel-demo.grf \
  share/applications/org.vossel.Vossel.desktop share/mime/packages/vossel.xml \
  share/icons/hicolor/48x48/apps/vossel.png share/metainfo/org.vossel.Vossel.metainfo.xml \
  share/man/man1/vossel.1.gz share/man/man1/vossel-cli.1.gz \
  share/bash-completion/completions/vossel-cli share/doc/vossel/copyright; do
  grep -q " \./usr/$f\( \|$\)" <<<"$contents" || { echo "The package lacks /usr/$f"; exit 1; }
done
tests/package/check_deb.sh "$deb" .

echo "== Build and test with AddressSanitizer and UndefinedBehaviorSanitizer =="
# -O1 and line tables only: the sanitizers' reports keep their lines, and the build and the runs
# take half the time of a plain debug build.
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
CC=clang CXX=clang++ run_suite build-asan -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_CXX_FLAGS_DEBUG="-O1 -gline-tables-only" -DVOSSEL_FUZZ=ON

echo "== Fuzz every reader of outside bytes =="
VOSSEL_FUZZ_BUILD=build-asan scripts/fuzz.sh "${FUZZ_SECONDS:-15}"

echo "== Format =="
git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror
echo "All tests passed."

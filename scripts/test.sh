#!/usr/bin/env bash
# Installs what is needed, builds, and runs the whole test suite twice: a plain build, whose Debian
# package is then made, listed and judged by lintian, and one with AddressSanitizer and
# UndefinedBehaviorSanitizer.
# Then every fuzz target runs for a while (FUZZ_SECONDS, 30 by default) and the formatting is
# checked.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh

jobs=$(nproc)
run_suite() {
  local dir=$1
  shift
  cmake -S . -B "$dir" -G Ninja "$@" >/dev/null
  cmake --build "$dir" -j "$jobs"
  QT_QPA_PLATFORM=offscreen ctest --test-dir "$dir" --output-on-failure -j "$jobs"
}

echo "== Build and test =="
run_suite build -DCMAKE_BUILD_TYPE=RelWithDebInfo

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
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
run_suite build-asan -DCMAKE_BUILD_TYPE=Debug -DVOSSEL_SANITIZE=ON -DVOSSEL_BUILD_BENCH=OFF

echo "== Fuzz every reader of outside bytes =="
scripts/fuzz.sh "${FUZZ_SECONDS:-30}"

echo "== Format =="
git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror
echo "All tests passed."

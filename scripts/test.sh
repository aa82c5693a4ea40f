#!/usr/bin/env bash
# Installs what is needed, builds, and runs the whole test suite twice: a plain build, then one
# with AddressSanitizer and UndefinedBehaviorSanitizer. Then every fuzz target runs for a while
# (FUZZ_SECONDS, 30 by default) and the formatting is checked.
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

echo "== Build and test with AddressSanitizer and UndefinedBehaviorSanitizer =="
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
run_suite build-asan -DCMAKE_BUILD_TYPE=Debug -DVOSSEL_SANITIZE=ON -DVOSSEL_BUILD_BENCH=OFF

echo "== Fuzz every reader of outside bytes =="
scripts/fuzz.sh "${FUZZ_SECONDS:-30}"

echo "== Format =="
git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror
echo "All tests passed."

#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs each for SECONDS (default 30), two at a time,
# from the seed corpora in tests/fuzz/corpus. Findings land in <build>/findings/<target>/; the
# script fails if any target found one. The build is build-fuzz, made here with the targets alone,
# or VOSSEL_FUZZ_BUILD: a tree already configured with VOSSEL_FUZZ.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-30}
shift || true
targets=("$@")

if ! command -v clang++ >/dev/null || [ ! -d /usr/lib/llvm-14/lib/clang ]; then
  if [ "$(id -u)" -eq 0 ]; then sudo=(); else sudo=(sudo); fi
  "${sudo[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -qq --no-install-recommends \
    clang libclang-rt-dev >/dev/null
fi

build=${VOSSEL_FUZZ_BUILD:-build-fuzz}
if [ -z "${VOSSEL_FUZZ_BUILD:-}" ]; then
  CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DVOSSEL_FUZZ=ON -DVOSSEL_BUILD_TESTS=OFF >/dev/null
fi
cmake --build "$build" -j "$(nproc)"

if [ ${#targets[@]} -eq 0 ]; then
  for exe in "$build"/bin/fuzz_*; do targets+=("$(basename "$exe" | sed 's/^fuzz_//')"); done
fi

export ASAN_OPTIONS=detect_leaks=1:allocator_may_return_null=0
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
run_one() {
  local name=$1
  local work=$build/work/$name findings=$build/findings/$name
  mkdir -p "$work" "$findings"
  cp -n tests/fuzz/corpus/"$name"/* "$work"/ 2>/dev/null || true
  # Whatever an input claims, memory stays bounded: no single allocation above 32 MB.
  if "$build"/bin/fuzz_"$name" "$work" -max_total_time="$seconds" -rss_limit_mb=1024 \
      -malloc_limit_mb=32 -max_len=65536 -timeout=10 -artifact_prefix="$findings"/ \
      -print_final_stats=1 >"$build"/"$name".log 2>&1; then
    echo "fuzz_$name: $(grep -E 'stat::number_of_executed_units' "$build"/"$name".log | awk '{print $2}') executions, no finding"
  else
    echo "fuzz_$name: FINDING (see $build/$name.log and $findings)"
    tail -n 40 "$build"/"$name".log
    return 1
  fi
}

status=0
pids=()
for name in "${targets[@]}"; do
  run_one "$name" &
  pids+=($!)
  if [ ${#pids[@]} -ge "$(nproc)" ]; then
    wait "${pids[0]}" || status=1
    pids=("${pids[@]:1}")
  fi
done
for pid in "${pids[@]}"; do wait "$pid" || status=1; done
exit $status

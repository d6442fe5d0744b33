#!/usr/bin/env bash
# Installs what is missing, checks the formatting, then builds and runs every test three
# times: an optimised build with warnings as errors, a build under AddressSanitizer and
# UndefinedBehaviorSanitizer, and a ThreadSanitizer build of the core and of the model of
# long work.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
"$root/scripts/install-deps.sh"

echo "== Formatting"
"$root/scripts/check-format.sh"

jobs="$(nproc)"
echo "== Release build (warnings as errors) and tests"
"$root/scripts/build.sh" "$root/build" -DZDT_BUILD_TESTS=ON -DZDT_BUILD_BENCH=ON -DZDT_WERROR=ON
ctest --test-dir "$root/build" --output-on-failure --parallel "$jobs"

echo "== AddressSanitizer + UndefinedBehaviorSanitizer build and tests"
"$root/scripts/build.sh" "$root/build-asan" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZDT_SANITIZE=ON -DZDT_BUILD_TESTS=ON -DZDT_BUILD_BENCH=OFF
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    ctest --test-dir "$root/build-asan" --output-on-failure --parallel "$jobs"

echo "== ThreadSanitizer build and tests (core and the model of long work)"
cmake -S "$root" -B "$root/build-tsan" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZDT_TSAN=ON -DZDT_BUILD_TESTS=ON \
    -DZDT_BUILD_BENCH=OFF >/dev/null
# Only what the label runs: the core's tests and the desktop's suites of long work.
cmake --build "$root/build-tsan" --parallel "$jobs" --target zdt_core_tests ui_BackgroundOperationTest ui_LongReadTest
TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1 \
    ctest --test-dir "$root/build-tsan" --output-on-failure --parallel "$jobs" -L tsan

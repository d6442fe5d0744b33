#!/usr/bin/env bash
# Installs what is missing, then builds and runs every test twice: an optimised
# build, and a build under AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
"$root/scripts/install-deps.sh"

jobs="$(nproc)"
echo "== Release build and tests"
"$root/scripts/build.sh" "$root/build" -DZDT_BUILD_TESTS=ON -DZDT_BUILD_BENCH=ON
ctest --test-dir "$root/build" --output-on-failure --parallel "$jobs"

echo "== AddressSanitizer + UndefinedBehaviorSanitizer build and tests"
"$root/scripts/build.sh" "$root/build-asan" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZDT_SANITIZE=ON -DZDT_BUILD_TESTS=ON -DZDT_BUILD_BENCH=OFF
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    ctest --test-dir "$root/build-asan" --output-on-failure --parallel "$jobs"

#!/usr/bin/env bash
# Installs what is missing, builds, and starts the desktop application on a bundled
# sample trace (any other file may be given instead).
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
"$root/scripts/install-deps.sh"
"$root/scripts/build.sh" "$root/build" -DZDT_BUILD_TESTS=OFF -DZDT_BUILD_BENCH=OFF
sample="${1:-$root/samples/can_bus_601.trc}"
exec "$root/build/zdt-analyzer" "$sample"

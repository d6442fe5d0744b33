#!/usr/bin/env bash
# Installs what is missing, builds, and shows a bundled sample trace.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
"$root/scripts/install-deps.sh"
"$root/scripts/build.sh" "$root/build"
sample="${1:-$root/samples/can_bus_601.trc}"
echo "== zdt-cli info $sample"
"$root/build/zdt-cli" info "$sample"
echo "== zdt-cli rows $sample"
"$root/build/zdt-cli" rows "$sample"

#!/usr/bin/env bash
# Fails when a C++ file of the tree differs from the .clang-format style; with --fix,
# formats them instead.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
mapfile -t files < <(git ls-files -co --exclude-standard -- '*.cpp' '*.h' | grep -v '^build' | while read -r f; do [ -f "$f" ] && echo "$f"; done)
if [ "${1:-}" = "--fix" ]; then
    clang-format -i "${files[@]}"
    exit 0
fi
if ! clang-format --dry-run --Werror "${files[@]}" 2>/tmp/zdt-format.$$; then
    grep -E '^[^ ].*: (error|warning):' /tmp/zdt-format.$$ | cut -d: -f1 | sort -u | sed 's/^/not formatted: /'
    rm -f /tmp/zdt-format.$$
    echo "Run: bash scripts/check-format.sh --fix" >&2
    exit 1
fi
rm -f /tmp/zdt-format.$$
echo "All ${#files[@]} C++ files are formatted."

#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs each for a while:
#   scripts/fuzz.sh [SECONDS-PER-TARGET]
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
seconds="${1:-60}"
ZDT_WITH_FUZZ=1 "$root/scripts/install-deps.sh"
CC=clang CXX=clang++ "$root/scripts/build.sh" "$root/build-fuzz" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DZDT_FUZZ=ON -DZDT_SANITIZE=ON -DZDT_BUILD_TESTS=OFF -DZDT_BUILD_BENCH=OFF -DZDT_BUILD_UI=OFF
shopt -s nullglob
# The same list the build reads; comments and empty lines skipped.
targets=()
while IFS= read -r name; do
    case "$name" in '' | '#'*) continue ;; esac
    targets+=("$name")
done < "$root/fuzz/targets.txt"
for target in "${targets[@]}"; do
    corpus="$root/fuzz/corpus-$target"
    mkdir -p "$corpus"
    # Seed with the bundled samples: whole files for the opens and parses, lines for the readers.
    case "$target" in
    fuzz_classic_open) cp "$root"/samples/*.tr* "$corpus"/ 2>/dev/null || true ;;
    fuzz_sax_engine | fuzz_snp_parse) cp "$root"/samples/*.snp "$corpus"/ 2>/dev/null || true ;;
    fuzz_xpvt701_parse) cp "$root"/samples/*.xpvt "$corpus"/ 2>/dev/null || true ;;
    fuzz_xpvt702_parse)
        # The target writes its own 7.02 header: seed with what follows the samples' headers.
        for sample in "$root"/samples/*.xpvt; do
            sed '1,/<\/Description>/d' "$sample" > "$corpus/body-$(basename "$sample")"
        done ;;
    *)
        n=0
        for sample in "$root"/samples/*.tr*; do
            while IFS= read -r line && [ $n -lt 400 ]; do
                printf '%s' "$line" > "$corpus/line-$n"; n=$((n + 1))
            done < "$sample"
        done ;;
    esac
    echo "== $target for ${seconds}s"
    "$root/build-fuzz/fuzz/$target" -max_total_time="$seconds" -max_len=65536 \
        -artifact_prefix="$root/fuzz/" "$corpus"
done

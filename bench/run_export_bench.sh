#!/bin/sh
# Export benchmarks on generated traces, deleted again afterwards.
#
# usage: run_export_bench.sh [BUILD_DIR] [SIZE] [--schema 701|702|snp] [--big SIZE] [--scratch DIR] [--runs N]
#   BUILD_DIR      a configured and built tree (default build/ of this repository) with
#                  bench_export, zdt-gen and zdt-cli; nothing is built here
#   SIZE           size of the trace of the ratio (default 50M)
#   --schema S     the family of the traces: 701, 702 (default) or snp
#   --big SIZE     also exports a trace of SIZE (e.g. 500M) to HTML, CSV and PDF with
#                  zdt-cli and prints each export's time and peak memory: the largest sum
#                  of zdt-cli and its tools at one time (PDF runs Xalan and FOP side by
#                  side), sampled twice a second
#   --scratch DIR  where the files go (default $TMPDIR, else /tmp)
#   --runs N       timed runs per figure of the ratio, the best one counts (default 3)
# Exit status: that of bench_export (1 when the ratio misses 1.3), 2 on setup errors,
# 1 when a big export fails or goes above 2 GB.

set -eu

build_dir=""
size=""
schema=702
big=""
scratch_dir=""
runs=3
while [ $# -gt 0 ]; do
    case "$1" in
        --runs) shift; runs="$1" ;;
        --scratch) shift; scratch_dir="$1" ;;
        --schema) shift; schema="$1" ;;
        --big) shift; big="$1" ;;
        -h|--help) sed -n '2,15p' "$0"; exit 0 ;;
        -*) echo "run_export_bench.sh: unknown option $1" >&2; exit 2 ;;
        *)
            if [ -z "$build_dir" ]; then build_dir="$1"
            elif [ -z "$size" ]; then size="$1"
            else echo "run_export_bench.sh: too many arguments" >&2; exit 2
            fi ;;
    esac
    shift
done
size="${size:-50M}"

. "$(dirname "$0")/bench_tools.sh"
zdt_gen=$(find_tool zdt-gen)
zdt_cli=$(find_tool zdt-cli)
bench=$(find_tool bench_export)
for tool in Xalan fop; do
    command -v "$tool" >/dev/null 2>&1 || { echo "run_export_bench.sh: $tool is not installed" >&2; exit 2; }
done

make_data_dir zdt-export-bench

generate() { # SIZE FILE
    case "$schema" in
        snp) "$zdt_gen" snp --bytes "$1" --seed 3 "$2" ;;
        *) "$zdt_gen" xpvt --schema "$schema" --size "$1" --seed 1 "$2" ;;
    esac
}
extension=xpvt
[ "$schema" = snp ] && extension=snp

echo "generating a $size trace ($schema) in $data_dir"
generate "$size" "$data_dir/ratio.$extension"
status=0
"$bench" --analyzer "$build_dir/Analyzer" --trace "$data_dir/ratio.$extension" --scratch "$data_dir" \
    --runs "$runs" || status=$?
rm -f "$data_dir/ratio.$extension" "$data_dir/export.html"

# Runs a command in a session of its own and prints its seconds and the largest summed
# resident size (KB) of the session's processes.
run_sampled() {
    start=$(date +%s%N)
    setsid "$@" >/dev/null 2>&1 &
    session=$!
    peak=0
    while kill -0 "$session" 2>/dev/null; do
        now=$(ps -o rss= -s "$session" | awk '{ sum += $1 } END { print sum + 0 }')
        [ "$now" -gt "$peak" ] && peak=$now
        sleep 0.5
    done
    wait "$session" || true
    echo "$(( ($(date +%s%N) - start) / 1000000000 )) $peak"
}

if [ -n "$big" ]; then
    echo "generating a $big trace ($schema) in $data_dir"
    generate "$big" "$data_dir/big.$extension"
    for format in html csv pdf; do
        figures=$(run_sampled env ZDT_ANALYZER_HOME="$data_dir/home" "$zdt_cli" export \
            "$data_dir/big.$extension" --to "$format" "$data_dir/big.$format")
        seconds=${figures% *}
        kilobytes=${figures#* }
        if [ ! -s "$data_dir/big.$format" ]; then
            echo "$format export of $big failed after $seconds s" >&2
            status=1
            continue
        fi
        printf '%s export of %s: %s s, peak memory %s MB (target <= 2048 MB), %s bytes\n' "$format" "$big" \
            "$seconds" "$((kilobytes / 1024))" "$(wc -c <"$data_dir/big.$format")"
        [ "$kilobytes" -le 2097152 ] || status=1
        rm -f "$data_dir/big.$format"
    done
fi
exit "$status"

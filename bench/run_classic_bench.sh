#!/bin/sh
# Runs the classic benchmarks on generated traces, then deletes the traces.
#
# usage: run_classic_bench.sh [BUILD_DIR] [SCRATCH_DIR] [--beyond-4gib] [--runs N]
#   BUILD_DIR    a configured and built tree (default build/ of this repository);
#                nothing is built here
#   SCRATCH_DIR  where the traces go (default $TMPDIR, else /tmp); needs about 1.6 GB free,
#                and about 5.5 GB more with --beyond-4gib
#   --beyond-4gib  also generate a trace above 4 GiB and check its count and last record
#   --runs N       timed runs per figure, the best one counts (default 3)
# Exit status: that of bench_classic (1 when a target is missed), 2 on setup errors.

set -eu

build_dir=""
scratch_dir=""
beyond=0
runs=3
while [ $# -gt 0 ]; do
    case "$1" in
        --beyond-4gib) beyond=1 ;;
        --runs) shift; runs="$1" ;;
        -h|--help) sed -n '2,12p' "$0"; exit 0 ;;
        -*) echo "run_classic_bench.sh: unknown option $1" >&2; exit 2 ;;
        *)
            if [ -z "$build_dir" ]; then build_dir="$1"
            elif [ -z "$scratch_dir" ]; then scratch_dir="$1"
            else echo "run_classic_bench.sh: too many arguments" >&2; exit 2
            fi ;;
    esac
    shift
done

. "$(dirname "$0")/bench_tools.sh"
zdt_gen=$(find_tool zdt-gen)
zdt_cli=$(find_tool zdt-cli)
bench=$(find_tool bench_classic)

make_data_dir zdt-classic-bench

# A bus log of about 57 bytes a line: schema 601, ZDT title, mostly CAN frames.
echo "generating 1 GiB trace in $data_dir"
"$zdt_gen" classic --schema 601 --mix traffic --bytes 1G --seed 1 \
    --summary "$data_dir/trace601.summary" "$data_dir/trace601.trc"

# Short lines of every record type, about 27 bytes a line: the most index work per byte.
echo "generating 500 MB mixed trace in $data_dir"
"$zdt_gen" classic --schema 601 --mix all --bytes 500M --seed 3 \
    --summary "$data_dir/mixed601.summary" "$data_dir/mixed601.trc"

set -- --trace "$data_dir/trace601.trc" --summary "$data_dir/trace601.summary" --cli "$zdt_cli" --runs "$runs" \
    --mixed "$data_dir/mixed601.trc" --mixed-summary "$data_dir/mixed601.summary"
if [ "$beyond" = 1 ]; then
    echo "generating a trace beyond 4 GiB"
    "$zdt_gen" classic --schema 601 --mix traffic --bytes 4200M --seed 2 \
        --summary "$data_dir/big601.summary" "$data_dir/big601.trc"
    set -- "$@" --big "$data_dir/big601.trc" --big-summary "$data_dir/big601.summary"
fi

status=0
"$bench" "$@" || status=$?
exit "$status"

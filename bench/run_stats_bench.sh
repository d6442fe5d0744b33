#!/bin/sh
# Runs the identifier statistics benchmark on a generated 1 GiB trace, then deletes it.
#
# usage: run_stats_bench.sh [BUILD_DIR] [SCRATCH_DIR] [--runs N]
#   BUILD_DIR    a configured and built tree (default build/ of this repository);
#                nothing is built here
#   SCRATCH_DIR  where the trace goes (default $TMPDIR, else /tmp); needs about 1.1 GB free
#   --runs N     timed runs per figure, the best one counts (default 3)
# Exit status: that of bench_stats (1 when a target is missed), 2 on setup errors.

set -eu

build_dir=""
scratch_dir=""
runs=3
while [ $# -gt 0 ]; do
    case "$1" in
        --runs) shift; runs="$1" ;;
        -h|--help) sed -n '2,9p' "$0"; exit 0 ;;
        -*) echo "run_stats_bench.sh: unknown option $1" >&2; exit 2 ;;
        *)
            if [ -z "$build_dir" ]; then build_dir="$1"
            elif [ -z "$scratch_dir" ]; then scratch_dir="$1"
            else echo "run_stats_bench.sh: too many arguments" >&2; exit 2
            fi ;;
    esac
    shift
done

. "$(dirname "$0")/bench_tools.sh"
zdt_gen=$(find_tool zdt-gen)
zdt_cli=$(find_tool zdt-cli)
bench=$(find_tool bench_stats)

make_data_dir zdt-stats-bench

# The bus log of the classic benchmark: schema 601, mostly CAN frames, many identifiers.
echo "generating 1 GiB trace in $data_dir"
"$zdt_gen" classic --schema 601 --mix traffic --bytes 1G --seed 1 "$data_dir/trace601.trc"

status=0
"$bench" --trace "$data_dir/trace601.trc" --cli "$zdt_cli" --runs "$runs" || status=$?
exit "$status"

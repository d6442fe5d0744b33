#!/bin/sh
# Runs the filter benchmark on a generated 7.02 trace, then deletes it and the results.
#
# usage: run_filter_bench.sh [BUILD_DIR] [SIZE] [--scratch DIR] [--runs N]
#   BUILD_DIR      a configured and built tree (default build/ of this repository) holding
#                  zdt-cli, zdt-gen and bench_filter; nothing is built here
#   SIZE           size of the trace, suffix K, M or G (default 500M)
#   --scratch DIR  where the files go (default $TMPDIR, else /tmp); needs about 1.5 times
#                  SIZE free
#   --runs N       timed runs of each side, the best one counts (default 3)
# Needs java and Saxon-HE (scripts/install-deps.sh installs them) and memory for the
# engine's tree: some 6 times SIZE.
# Exit status: that of bench_filter (1 when a target is missed), 2 on setup errors.

set -eu

build_dir=""
size=""
scratch_dir=""
runs=3
while [ $# -gt 0 ]; do
    case "$1" in
        --runs) shift; runs="$1" ;;
        --scratch) shift; scratch_dir="$1" ;;
        -h|--help) sed -n '2,14p' "$0"; exit 0 ;;
        -*) echo "run_filter_bench.sh: unknown option $1" >&2; exit 2 ;;
        *)
            if [ -z "$build_dir" ]; then build_dir="$1"
            elif [ -z "$size" ]; then size="$1"
            else echo "run_filter_bench.sh: too many arguments" >&2; exit 2
            fi ;;
    esac
    shift
done
size="${size:-500M}"

. "$(dirname "$0")/bench_tools.sh"
zdt_gen=$(find_tool zdt-gen)
zdt_cli=$(find_tool zdt-cli)
bench=$(find_tool bench_filter)

make_data_dir zdt-filter-bench

echo "generating a $size 7.02 trace in $data_dir"
"$zdt_gen" xpvt --schema 702 --size "$size" --seed 1 "$data_dir/bench702.xpvt"

status=0
"$bench" --cli "$zdt_cli" --trace702 "$data_dir/bench702.xpvt" --out-dir "$data_dir" --runs "$runs" || status=$?
exit "$status"

#!/bin/sh
# Runs the process value trace benchmarks on a generated 7.02 and 7.01 trace, then deletes
# them and the swap files.
#
# usage: run_xpvt_bench.sh [BUILD_DIR] [SIZE] [--scratch DIR] [--runs N]
#   BUILD_DIR      a configured and built tree (default build/ of this repository);
#                  nothing is built here
#   SIZE           size of each trace, suffix K, M or G (default 500M)
#   --scratch DIR  where the files go (default $TMPDIR, else /tmp); needs about 2.5 times
#                  SIZE free: both traces and the larger swap file
#   --runs N       timed runs per speed figure, the best one counts (default 3)
# Exit status: that of bench_xpvt (1 when a target is missed), 2 on setup errors.

set -eu

build_dir=""
size=""
scratch_dir=""
runs=3
while [ $# -gt 0 ]; do
    case "$1" in
        --runs) shift; runs="$1" ;;
        --scratch) shift; scratch_dir="$1" ;;
        -h|--help) sed -n '2,13p' "$0"; exit 0 ;;
        -*) echo "run_xpvt_bench.sh: unknown option $1" >&2; exit 2 ;;
        *)
            if [ -z "$build_dir" ]; then build_dir="$1"
            elif [ -z "$size" ]; then size="$1"
            else echo "run_xpvt_bench.sh: too many arguments" >&2; exit 2
            fi ;;
    esac
    shift
done
size="${size:-500M}"

. "$(dirname "$0")/bench_tools.sh"
zdt_gen=$(find_tool zdt-gen)
bench=$(find_tool bench_xpvt)

make_data_dir zdt-xpvt-bench

# Well-formed, indented traces of every element of their tree, with the header first.
echo "generating $size traces (7.02 and 7.01) in $data_dir"
"$zdt_gen" xpvt --schema 702 --size "$size" --seed 1 "$data_dir/bench702.xpvt"
"$zdt_gen" xpvt --schema 701 --size "$size" --seed 2 "$data_dir/bench701.xpvt"

status=0
"$bench" --trace702 "$data_dir/bench702.xpvt" --trace701 "$data_dir/bench701.xpvt" --swap-dir "$data_dir" \
    --runs "$runs" || status=$?
exit "$status"

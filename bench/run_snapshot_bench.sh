#!/bin/sh
# Runs the snapshot benchmarks on a generated snapshot file, then deletes it, its rows
# file and the swap files.
#
# usage: run_snapshot_bench.sh [BUILD_DIR] [SCRATCH_DIR] [--runs N] [--samples N]
#   BUILD_DIR    a configured and built tree (default build/ of this repository);
#                nothing is built here
#   SCRATCH_DIR  where the files go (default $TMPDIR, else /tmp); needs about 1.2 GB free:
#                500 MB snapshot, its 320 MB rows file and a 330 MB swap file
#   --runs N     timed runs per speed figure, the best one counts (default 3)
#   --samples N  random rows to read from the opened document (default 1000)
# Exit status: that of bench_snapshot (1 when a target is missed), 2 on setup errors.

set -eu

build_dir=""
scratch_dir=""
runs=3
samples=1000
while [ $# -gt 0 ]; do
    case "$1" in
        --runs) shift; runs="$1" ;;
        --samples) shift; samples="$1" ;;
        -h|--help) sed -n '2,13p' "$0"; exit 0 ;;
        -*) echo "run_snapshot_bench.sh: unknown option $1" >&2; exit 2 ;;
        *)
            if [ -z "$build_dir" ]; then build_dir="$1"
            elif [ -z "$scratch_dir" ]; then scratch_dir="$1"
            else echo "run_snapshot_bench.sh: too many arguments" >&2; exit 2
            fi ;;
    esac
    shift
done

. "$(dirname "$0")/bench_tools.sh"
zdt_gen=$(find_tool zdt-gen)
bench=$(find_tool bench_snapshot)

make_data_dir zdt-snapshot-bench

# A well-formed, indented snapshot list; the rows file is what the document must list.
echo "generating 500 MB snapshot file in $data_dir"
"$zdt_gen" snp --bytes 500M --seed 1 --rows "$data_dir/bench.rows" "$data_dir/bench.snp"

status=0
"$bench" --snapshot "$data_dir/bench.snp" --rows "$data_dir/bench.rows" --swap-dir "$data_dir" \
    --runs "$runs" --samples "$samples" || status=$?
exit "$status"

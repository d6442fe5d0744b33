#!/bin/sh
# Opens a generated trace of each family in the desktop (offscreen) while the list is
# paged down and the window resized, and reports how soon the first rows showed and the
# longest stall of the windows' thread during the read; then deletes the traces.
#
# usage: run_ui_bench.sh [BUILD_DIR] [SIZE] [--scratch DIR]
#   BUILD_DIR      a configured and built tree with the desktop (default build/ of this
#                  repository); nothing is built here
#   SIZE           size of each trace, suffix K, M or G (default 2G)
#   --scratch DIR  where the files go (default $TMPDIR, else /tmp); needs about 4.5 times
#                  SIZE free: three traces and the swap files of the XML ones
# Exit status: that of bench_ui_open (1 when the first rows came too late), 2 on setup errors.

set -eu

build_dir=""
size=""
scratch_dir=""
while [ $# -gt 0 ]; do
    case "$1" in
        --scratch) shift; scratch_dir="$1" ;;
        -h|--help) sed -n '2,13p' "$0"; exit 0 ;;
        -*) echo "run_ui_bench.sh: unknown option $1" >&2; exit 2 ;;
        *)
            if [ -z "$build_dir" ]; then build_dir="$1"
            elif [ -z "$size" ]; then size="$1"
            else echo "run_ui_bench.sh: too many arguments" >&2; exit 2
            fi ;;
    esac
    shift
done
size="${size:-2G}"

. "$(dirname "$0")/bench_tools.sh"
zdt_gen=$(find_tool zdt-gen)
bench=$(find_tool bench_ui_open)

make_data_dir zdt-ui-bench

echo "generating $size traces (classic 601, snapshots, process values 7.02) in $data_dir"
"$zdt_gen" classic --schema 601 --mix traffic --bytes "$size" --seed 1 "$data_dir/big601.trc"
"$zdt_gen" snp --bytes "$size" --seed 1 "$data_dir/big.snp"
"$zdt_gen" xpvt --schema 702 --size "$size" --seed 1 "$data_dir/big702.xpvt"

status=0
ZDT_ANALYZER_HOME="$data_dir" QT_QPA_PLATFORM="${QT_QPA_PLATFORM:-offscreen}" \
    "$bench" --scroll "$data_dir/big601.trc" "$data_dir/big.snp" "$data_dir/big702.xpvt" || status=$?
exit "$status"

# Shared by the run_*_bench.sh scripts (sourced): finding the built tools and the scratch
# folder that is removed again however the run ends. Uses $build_dir and $scratch_dir when
# set; otherwise the repository's own build folder and $TMPDIR, else /tmp.

bench_script=$(basename "$0")
build_dir="${build_dir:-$(cd "$(dirname "$0")/.." && pwd)/build}"
scratch_dir="${scratch_dir:-${TMPDIR:-/tmp}}"

# Prints the path of a built tool, or stops the script when it was not built.
find_tool() {
    for candidate in "$build_dir/$1" "$build_dir/bench/$1"; do
        if [ -x "$candidate" ]; then echo "$candidate"; return 0; fi
    done
    echo "$bench_script: $1 not found in $build_dir; build it first" >&2
    exit 2
}

# Makes the folder for this run's files ($1 names it) and removes it on every way out.
make_data_dir() {
    data_dir=$(mktemp -d "$scratch_dir/$1.XXXXXX")
    trap 'rm -rf "$data_dir"' EXIT INT TERM
}

#!/usr/bin/env bash
# Installs the build tree into a scratch DESTDIR and checks the layout an installed
# program depends on, then runs the installed zdt-cli from there.
# Usage: check-install.sh BUILD_DIR SOURCE_DIR WITH_UI(0|1)
set -euo pipefail
build="$(cd "$1" && pwd)"
source="$2"
with_ui="$3"

scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
root="$scratch/root"
prefix="$root/usr"
failures=0
fail() {
    echo "FAILED: $*" >&2
    failures=$((failures + 1))
}
expect_file() { [ -f "$prefix/$1" ] || fail "missing $1"; }
expect_executable() { [ -f "$prefix/$1" ] && [ -x "$prefix/$1" ] || fail "not an executable file: $1"; }

DESTDIR="$root" cmake --install "$build" --prefix /usr >"$scratch/install.log" || {
    cat "$scratch/install.log" >&2
    exit 1
}

expect_executable bin/zdt-cli
expect_file share/man/man1/zdt-cli.1.gz
if [ "$with_ui" = "1" ]; then
    expect_executable bin/zdt-analyzer
    expect_file share/applications/zdt-analyzer.desktop
    expect_file share/mime/packages/zdt-analyzer.xml
    expect_file share/icons/hicolor/scalable/apps/zdt-analyzer.svg
fi

# Every installation file arrives with its content, and executables stay executable.
analyzer="$prefix/share/zdt-analyzer/Analyzer"
diff -r --exclude=Temp "$source/Analyzer" "$analyzer" >&2 || fail "Analyzer/ differs from the source"
while IFS= read -r -d '' file; do
    relative="${file#"$source/Analyzer/"}"
    [ -x "$analyzer/$relative" ] || fail "lost its executable bit: Analyzer/$relative"
done < <(find "$source/Analyzer" -type f -perm -u+x -print0)
# Nothing but the installation's own files belongs there.
[ ! -e "$analyzer/Temp" ] || fail "a Temp folder was installed"

# Nothing lands outside the prefix.
outside="$(find "$root" -mindepth 1 -maxdepth 1 ! -name usr)"
[ -z "$outside" ] || fail "installed outside the prefix: $outside"

gzip -dc "$prefix/share/man/man1/zdt-cli.1.gz" >"$scratch/zdt-cli.1"
if command -v groff >/dev/null 2>&1; then
    warnings="$(groff -man -Tutf8 -ww -z "$scratch/zdt-cli.1" 2>&1)"
    [ -z "$warnings" ] || fail "manual page warnings: $warnings"
fi

if [ "$with_ui" = "1" ]; then
    desktop-file-validate --no-hints "$prefix/share/applications/zdt-analyzer.desktop" >&2 ||
        fail "desktop entry does not validate"
    # The database compiler rejects a broken XML file; its output says what it registered.
    XDG_DATA_DIRS="$prefix/share" update-mime-database "$prefix/share/mime" 2>"$scratch/mime.log" ||
        fail "MIME database: $(cat "$scratch/mime.log")"
    [ ! -s "$scratch/mime.log" ] || fail "MIME database warnings: $(cat "$scratch/mime.log")"
    for glob in '*.trc' '*.trc1' '*.trc2' '*.crc' '*.tr0' '*.trx' '*.snp' '*.xpvt'; do
        grep -q ":$glob\$" "$prefix/share/mime/globs2" || fail "no type for $glob"
    done
    grep -qx ' SnapList application/x-zdt-snapshot' "$prefix/share/mime/XMLnamespaces" ||
        fail "no root element for snapshots"
    grep -qx ' ProcessValueTrace application/x-zdt-xpvt' "$prefix/share/mime/XMLnamespaces" ||
        fail "no root element for process value traces"
    # Each type the desktop entry offers is one the package defines, and the other way round.
    offered="$(sed -n 's/^MimeType=//p' "$prefix/share/applications/zdt-analyzer.desktop" | tr ';' '\n' | sed '/^$/d' | sort)"
    defined="$(sed -n 's/.*<mime-type type="\([^"]*\)".*/\1/p' "$prefix/share/mime/packages/zdt-analyzer.xml" | sort)"
    [ "$offered" = "$defined" ] || fail "desktop entry offers [$offered], the package defines [$defined]"
fi

# The installed tool finds its files under the prefix and writes only into the user's folder,
# even when it could write into the installation (as the super-user can).
home="$scratch/home"
mkdir -p "$home"
find "$root" -printf '%p %s %T@\n' | sort >"$scratch/before.txt"
paths="$(env -u ZDT_ANALYZER_HOME HOME="$home" XDG_DATA_HOME="$home/data" "$prefix/bin/zdt-cli" paths)" ||
    fail "zdt-cli paths failed"
grep -qx "Installation files: $analyzer/" <<<"$paths" || fail "installation files not found under the prefix: $paths"
grep -qx "Temporary root: $home/data/ZDT-Analyzer/Temp/" <<<"$paths" || fail "temporary root: $paths"

info="$(env -u ZDT_ANALYZER_HOME HOME="$home" XDG_DATA_HOME="$home/data" "$prefix/bin/zdt-cli" info "$source/samples/can_bus_601.trc")" ||
    fail "installed zdt-cli info failed"
grep -qx "Title: ZDT Trace File" <<<"$info" || fail "installed zdt-cli info printed: $info"
# A snapshot's rows go through a swap file in the run's temporary directory.
rows="$(env -u ZDT_ANALYZER_HOME HOME="$home" XDG_DATA_HOME="$home/data" "$prefix/bin/zdt-cli" rows "$source/samples/snapshots_basic.snp" | wc -l)" ||
    fail "installed zdt-cli rows failed"
[ "$rows" -gt 0 ] || fail "installed zdt-cli printed no snapshot rows"
[ -d "$home/data/ZDT-Analyzer/Temp" ] || fail "the temporary root was not made in the user's folder"
find "$root" -printf '%p %s %T@\n' | sort >"$scratch/after.txt"
diff "$scratch/before.txt" "$scratch/after.txt" >&2 || fail "the installed program wrote into its installation"

if [ "$failures" -gt 0 ]; then
    echo "$failures check(s) failed" >&2
    exit 1
fi
echo "install layout: all checks passed"

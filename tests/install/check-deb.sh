#!/usr/bin/env bash
# Builds the Debian package of the build tree into a scratch folder and checks what apt
# will see: the name, the dependencies and the files with their modes.
# Usage: check-deb.sh BUILD_DIR SOURCE_DIR
set -euo pipefail
build="$(cd "$1" && pwd)"
source="$2"

scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
failures=0
fail() {
    echo "FAILED: $*" >&2
    failures=$((failures + 1))
}

(cd "$scratch" && cpack --config "$build/CPackConfig.cmake" -G DEB -B "$scratch/out") >"$scratch/cpack.log" 2>&1 || {
    cat "$scratch/cpack.log" >&2
    exit 1
}
version="$(sed -n 's/^set(CPACK_PACKAGE_VERSION "\(.*\)")$/\1/p' "$build/CPackConfig.cmake")"
deb="$scratch/out/zdt-analyzer_${version}_$(dpkg --print-architecture).deb"
[ -f "$deb" ] || {
    ls "$scratch/out" >&2
    fail "no package named $(basename "$deb")"
    exit 1
}

[ "$(dpkg-deb -f "$deb" Package)" = "zdt-analyzer" ] || fail "package name"
depends="$(dpkg-deb -f "$deb" Depends)"
for library in libqt6core6 libqt6gui6 libqt6widgets6 libqt6printsupport6 libexpat1; do
    grep -Eq "(^|, )$library( |,|$)" <<<"$depends" || fail "Depends lacks $library: $depends"
done
recommends="$(dpkg-deb -f "$deb" Recommends)"
for tool in libsaxonhe-java default-jre-headless xalan fop; do
    grep -Eq "(^|, )$tool(,|$)" <<<"$recommends" || fail "Recommends lacks $tool: $recommends"
done

dpkg-deb -c "$deb" | awk '{print $1, $6}' >"$scratch/contents.txt"
while read -r mode path; do
    case "$path" in
    ./usr/* | ./) ;;
    *) fail "outside /usr: $path" ;;
    esac
    [ "${mode:0:1}" = "l" ] && fail "a link in the package: $path"
done <"$scratch/contents.txt"
for file in ./usr/bin/zdt-analyzer ./usr/bin/zdt-cli; do
    grep -q "^-rwxr-xr-x $file\$" "$scratch/contents.txt" || fail "not an executable: $file"
done
for file in ./usr/share/applications/zdt-analyzer.desktop ./usr/share/mime/packages/zdt-analyzer.xml \
    ./usr/share/icons/hicolor/scalable/apps/zdt-analyzer.svg ./usr/share/man/man1/zdt-cli.1.gz; do
    grep -q "^-rw-r--r-- $file\$" "$scratch/contents.txt" || fail "missing or with a wrong mode: $file"
done
# The installation files, scripts executable as in the source tree.
while IFS= read -r -d '' file; do
    relative="${file#"$source/Analyzer/"}"
    if [ -x "$file" ]; then mode="-rwxr-xr-x"; else mode="-rw-r--r--"; fi
    grep -qxF -- "$mode ./usr/share/zdt-analyzer/Analyzer/$relative" "$scratch/contents.txt" ||
        fail "Analyzer/$relative is missing or has another mode than $mode"
done < <(find "$source/Analyzer" -type f ! -path '*/Temp/*' -print0)

if [ "$failures" -gt 0 ]; then
    echo "$failures check(s) failed" >&2
    exit 1
fi
echo "Debian package $(basename "$deb"): all checks passed"

#!/bin/sh
# Turns a document into PDF through XSL-FO: Xalan-C with the FO sheet, then Apache FOP.
#   xml2pdf.sh FO-SHEET INPUT OUTPUT STDOUT-FILE STDERR-FILE [NAME EXPRESSION]...
# Both tools' streams go to the two files. The pairs after them are sheet parameters, as
# for xalan.sh. Exit code 0 means OUTPUT was written. The layout is fo2pdf.sh's.
if [ "$#" -lt 5 ] || [ $(( ($# - 5) % 2 )) -ne 0 ]; then
    echo "usage: $0 FO-SHEET INPUT OUTPUT STDOUT-FILE STDERR-FILE [NAME EXPRESSION]..." >&2
    exit 2
fi
here=$(cd "$(dirname "$0")" && pwd)
sheet=$1
input=$2
output=$3
capturedOutput=$4
capturedError=$5
shift 5

: >"$capturedOutput" || exit 1
: >"$capturedError" || exit 1
# The FO sits beside the capture files.
fo=$capturedOutput.fo
trap 'rm -f "$fo"' EXIT
trap 'exit 130' INT TERM HUP

pairs=$(( $# / 2 ))
while [ "$pairs" -gt 0 ]; do
    name=$1
    value=$2
    shift 2
    set -- "$@" -p "$name" "$value"
    pairs=$(( pairs - 1 ))
done

if [ ! -r "$sheet" ]; then
    echo "The sheet $sheet cannot be read." >>"$capturedError"
    exit 1
fi
for tool in Xalan fop; do
    if ! command -v "$tool" >/dev/null 2>&1; then
        echo "$tool is not installed (Debian packages xalan, fop and default-jre-headless)." >>"$capturedError"
        exit 127
    fi
done

Xalan -o "$fo" "$@" - "$sheet" 2>>"$capturedError" >>"$capturedOutput" <"$input" || exit $?

"$here/fo2pdf.sh" "$fo" "$output" "$capturedOutput" "$capturedError"

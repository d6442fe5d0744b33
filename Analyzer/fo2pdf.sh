#!/bin/sh
# Lays out an XSL-FO document as PDF with Apache FOP:
#   fo2pdf.sh FO OUTPUT STDOUT-FILE STDERR-FILE
# The formatter's streams are added to the two files. FO may be a named pipe: FOP reads it
# as it comes and lets go of each page sequence once laid out, so a document of any length
# goes through one formatter. Exit code 0 means OUTPUT was written. The formatter's heap is
# bounded by JAVA_ARGS (default -Xmx1g).
if [ "$#" -ne 4 ]; then
    echo "usage: $0 FO OUTPUT STDOUT-FILE STDERR-FILE" >&2
    exit 2
fi
here=$(cd "$(dirname "$0")" && pwd)
fo=$1
output=$2
capturedOutput=$3
capturedError=$4

# The PDF is written beside the capture files, under a name of ASCII only: the formatter's
# JVM may not take other names, and the shell moves the result in place.
pdf=$capturedOutput.pdf
trap 'rm -f "$pdf"' EXIT
trap 'exit 130' INT TERM HUP

if ! command -v fop >/dev/null 2>&1; then
    echo "fop is not installed (Debian packages fop and default-jre-headless)." >>"$capturedError"
    exit 127
fi
JAVA_ARGS=${JAVA_ARGS:--Xmx1g}
export JAVA_ARGS
fop -q -c "$here/fop.xconf" -fo "$fo" -pdf "$pdf" 2>>"$capturedError" >>"$capturedOutput" || exit $?
# FOP may end with 0 after an error it only logged; a missing or empty PDF is a failure.
if [ ! -s "$pdf" ]; then
    echo "FOP wrote no PDF." >>"$capturedError"
    exit 1
fi
mv -f "$pdf" "$output" 2>>"$capturedError"

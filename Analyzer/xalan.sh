#!/bin/sh
# Runs Xalan-C with one sheet:
#   xalan.sh INPUT SHEET OUTPUT STDOUT-FILE STDERR-FILE [NAME EXPRESSION]...
# The tool's standard output and standard error go to the two files. Each NAME EXPRESSION
# pair after them becomes a sheet parameter; the expression is XPath, so a string stands
# in single quotes ('first'), a number as it is. Exit code 0 means OUTPUT was written.
if [ "$#" -lt 5 ] || [ $(( ($# - 5) % 2 )) -ne 0 ]; then
    echo "usage: $0 INPUT SHEET OUTPUT STDOUT-FILE STDERR-FILE [NAME EXPRESSION]..." >&2
    exit 2
fi
input=$1
sheet=$2
output=$3
capturedOutput=$4
capturedError=$5
shift 5

pairs=$(( $# / 2 ))
while [ "$pairs" -gt 0 ]; do
    name=$1
    value=$2
    shift 2
    set -- "$@" -p "$name" "$value"
    pairs=$(( pairs - 1 ))
done

if [ ! -r "$sheet" ]; then
    echo "The sheet $sheet cannot be read." >"$capturedError"
    : >"$capturedOutput"
    exit 1
fi
if ! command -v Xalan >/dev/null 2>&1; then
    echo "Xalan is not installed (Debian package xalan)." >"$capturedError"
    : >"$capturedOutput"
    exit 127
fi

# The document comes on standard input: Xalan takes a path for a URL, and a name with
# "#" or "%" in it would not open. exec, so that stopping this script stops the tool.
exec Xalan -o "$output" "$@" - "$sheet" 2>"$capturedError" >"$capturedOutput" <"$input"

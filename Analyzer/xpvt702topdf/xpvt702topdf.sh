#!/bin/sh
# PDF of a process value trace of schema 7.02:
#   xpvt702topdf.sh INPUT OUTPUT STDOUT-FILE STDERR-FILE [NAME EXPRESSION]...
# Exit code 0 means OUTPUT was written; the two files get the tools' streams.
analyzer=$(cd "$(dirname "$0")/.." && pwd)
exec "$analyzer/xml2pdf.sh" "$analyzer/xsl/xpvt_7_02/pdf/xpvt_to_fo.xsl" "$@"

#!/bin/sh
# PDF of a process value trace of schema 7.01:
#   xpvt2pdf.sh INPUT OUTPUT STDOUT-FILE STDERR-FILE [NAME EXPRESSION]...
# Exit code 0 means OUTPUT was written; the two files get the tools' streams.
analyzer=$(cd "$(dirname "$0")/.." && pwd)
exec "$analyzer/xml2pdf.sh" "$analyzer/xsl/xpvt/pdf/xpvt_to_fo.xsl" "$@"

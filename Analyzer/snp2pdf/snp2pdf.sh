#!/bin/sh
# PDF of a snapshot file:
#   snp2pdf.sh INPUT OUTPUT STDOUT-FILE STDERR-FILE [NAME EXPRESSION]...
# Exit code 0 means OUTPUT was written; the two files get the tools' streams.
analyzer=$(cd "$(dirname "$0")/.." && pwd)
exec "$analyzer/xml2pdf.sh" "$analyzer/xsl/snp/pdf/snp_to_fo.xsl" "$@"

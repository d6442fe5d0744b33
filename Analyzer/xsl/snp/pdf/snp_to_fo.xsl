<?xml version="1.0" encoding="UTF-8"?>
<!-- Snapshot list to XSL-FO for a PDF. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:include href="../snp_rows.xsl"/>
  <xsl:include href="../../common/fo_writer.xsl"/>
  <!-- 'whole', or the part of a document run in chunks: 'first', 'middle', 'last'. -->
  <xsl:param name="chunk" select="'whole'"/>
  <!-- The line number of the chunk's first row. -->
  <xsl:param name="first-line" select="1"/>
</xsl:stylesheet>

<?xml version="1.0" encoding="UTF-8"?>
<!-- Process value trace of schema 7.01: xhtml export. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:include href="../xpvt701_rows.xsl"/>
  <xsl:include href="../../common/xhtml_writer.xsl"/>
  <!-- 'whole', or the part of a document run in chunks: 'first', 'middle', 'last'. -->
  <xsl:param name="chunk" select="'whole'"/>
  <!-- The line number of the chunk's first row. -->
  <xsl:param name="first-line" select="1"/>
</xsl:stylesheet>

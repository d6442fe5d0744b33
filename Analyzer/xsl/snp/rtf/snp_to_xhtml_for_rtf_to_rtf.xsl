<?xml version="1.0" encoding="UTF-8"?>
<!-- The XHTML of a snapshot list's RTF export to RTF. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:include href="../../common/xhtml_to_rtf.xsl"/>
  <!-- 'whole', or the part of a document run in chunks: 'first', 'middle', 'last'. -->
  <xsl:param name="chunk" select="'whole'"/>
</xsl:stylesheet>

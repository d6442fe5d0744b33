<?xml version="1.0" encoding="UTF-8"?>
<!-- CSV of an export (RFC 4180, lines end in CR LF). The session information comes first,
     one line per field: its label, then its value. Then one line of column titles and
     one line per list row. A field that holds the separator, a double quote or a line
     break is quoted, its quotes doubled. The entry sheet sets $csv-separator. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:xalan="http://xml.apache.org/xalan" exclude-result-prefixes="xalan">

  <xsl:output method="text" encoding="UTF-8"/>

  <xsl:variable name="csv-line-end" select="'&#13;&#10;'"/>

  <xsl:template match="/">
    <xsl:variable name="rows-tree">
      <xsl:call-template name="export-rows"/>
    </xsl:variable>
    <xsl:if test="$chunk = 'whole' or $chunk = 'first'">
      <xsl:variable name="session-tree">
        <xsl:call-template name="export-session"/>
      </xsl:variable>
      <xsl:for-each select="xalan:nodeset($session-tree)/i">
        <xsl:call-template name="csv-field"><xsl:with-param name="text" select="@l"/></xsl:call-template>
        <xsl:value-of select="$csv-separator"/>
        <xsl:call-template name="csv-field"><xsl:with-param name="text" select="."/></xsl:call-template>
        <xsl:value-of select="$csv-line-end"/>
      </xsl:for-each>
      <xsl:variable name="titles-tree">
        <xsl:call-template name="export-titles"/>
      </xsl:variable>
      <xsl:for-each select="xalan:nodeset($titles-tree)/c">
        <xsl:if test="position() != 1"><xsl:value-of select="$csv-separator"/></xsl:if>
        <xsl:call-template name="csv-field"><xsl:with-param name="text" select="."/></xsl:call-template>
      </xsl:for-each>
      <xsl:value-of select="$csv-line-end"/>
    </xsl:if>
    <xsl:for-each select="xalan:nodeset($rows-tree)/r">
      <xsl:value-of select="$first-line + position() - 1"/>
      <xsl:for-each select="c">
        <xsl:value-of select="$csv-separator"/>
        <xsl:call-template name="csv-field"><xsl:with-param name="text" select="string(.)"/></xsl:call-template>
      </xsl:for-each>
      <xsl:value-of select="$csv-line-end"/>
    </xsl:for-each>
  </xsl:template>

  <xsl:template name="csv-field">
    <xsl:param name="text"/>
    <xsl:choose>
      <xsl:when test="contains($text, '&quot;')">
        <xsl:text>"</xsl:text>
        <xsl:call-template name="csv-double-quotes"><xsl:with-param name="text" select="$text"/></xsl:call-template>
        <xsl:text>"</xsl:text>
      </xsl:when>
      <xsl:when test="contains($text, $csv-separator) or contains($text, '&#10;') or contains($text, '&#13;')">
        <xsl:value-of select="concat('&quot;', $text, '&quot;')"/>
      </xsl:when>
      <xsl:otherwise><xsl:value-of select="$text"/></xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <xsl:template name="csv-double-quotes">
    <xsl:param name="text"/>
    <xsl:choose>
      <xsl:when test="contains($text, '&quot;')">
        <xsl:value-of select="concat(substring-before($text, '&quot;'), '&quot;&quot;')"/>
        <xsl:call-template name="csv-double-quotes">
          <xsl:with-param name="text" select="substring-after($text, '&quot;')"/>
        </xsl:call-template>
      </xsl:when>
      <xsl:otherwise><xsl:value-of select="$text"/></xsl:otherwise>
    </xsl:choose>
  </xsl:template>

</xsl:stylesheet>

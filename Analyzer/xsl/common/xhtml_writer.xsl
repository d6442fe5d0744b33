<?xml version="1.0" encoding="UTF-8"?>
<!-- First stage of the RTF export: the list as plain XHTML that the second stage turns
     into RTF. The columns carry the list's widths, each row its colour. Head and tail are
     raw markup so that the outputs of a document run in chunks join into one page. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns="http://www.w3.org/1999/xhtml"
                xmlns:xalan="http://xml.apache.org/xalan" exclude-result-prefixes="xalan">

  <xsl:output method="xml" encoding="UTF-8" indent="no" omit-xml-declaration="yes"/>

  <xsl:template match="/">
    <xsl:variable name="rows-tree">
      <xsl:call-template name="export-rows"/>
    </xsl:variable>
    <xsl:if test="$chunk = 'whole' or $chunk = 'first'">
      <xsl:call-template name="xhtml-head"/>
    </xsl:if>
    <xsl:for-each select="xalan:nodeset($rows-tree)/r">
      <tr style="color:{substring($export-palette, @k * 7 + 1, 7)}">
        <td><xsl:value-of select="$first-line + position() - 1"/></td>
        <xsl:for-each select="c">
          <td><xsl:value-of select="."/></td>
        </xsl:for-each>
      </tr>
      <xsl:text>&#10;</xsl:text>
    </xsl:for-each>
    <xsl:if test="$chunk = 'whole' or $chunk = 'last'">
      <xsl:text disable-output-escaping="yes">&lt;/table&gt;&lt;/body&gt;&lt;/html&gt;&#10;</xsl:text>
    </xsl:if>
  </xsl:template>

  <xsl:template name="xhtml-head">
    <xsl:text disable-output-escaping="yes">&lt;?xml version="1.0" encoding="UTF-8"?&gt;&#10;&lt;html xmlns="http://www.w3.org/1999/xhtml"&gt;&lt;head&gt;&lt;title&gt;</xsl:text>
    <xsl:value-of select="$export-kind"/>
    <xsl:text disable-output-escaping="yes">&lt;/title&gt;&lt;/head&gt;&lt;body&gt;&#10;</xsl:text>
    <h1><xsl:value-of select="$export-kind"/></h1>
    <xsl:variable name="session-tree">
      <xsl:call-template name="export-session"/>
    </xsl:variable>
    <table class="session">
      <xsl:for-each select="xalan:nodeset($session-tree)/i">
        <tr><th><xsl:value-of select="@l"/></th><td><xsl:value-of select="."/></td></tr>
      </xsl:for-each>
    </table>
    <xsl:text disable-output-escaping="yes">&#10;&lt;table class="rows"&gt;</xsl:text>
    <xsl:variable name="titles-tree">
      <xsl:call-template name="export-titles"/>
    </xsl:variable>
    <colgroup>
      <xsl:for-each select="xalan:nodeset($titles-tree)/c">
        <col width="{@w}"/>
      </xsl:for-each>
    </colgroup>
    <tr class="titles">
      <xsl:for-each select="xalan:nodeset($titles-tree)/c">
        <th><xsl:value-of select="."/></th>
      </xsl:for-each>
    </tr>
    <xsl:text>&#10;</xsl:text>
  </xsl:template>

</xsl:stylesheet>

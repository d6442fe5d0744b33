<?xml version="1.0" encoding="UTF-8"?>
<!-- The HTML page of an export: session information, the list's column titles and one
     table row per list row, in the list's colours. The family's sheet supplies the rows
     (export-rows), the session (export-session), the titles (export-titles), the
     palette ($export-palette) and the page title ($export-kind).
     Head and tail are written as raw markup so that the outputs of a document run in
     chunks ('first', 'middle' ..., 'last') join into one page. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:xalan="http://xml.apache.org/xalan" exclude-result-prefixes="xalan">

  <xsl:output method="html" encoding="UTF-8" indent="no"/>

  <xsl:template match="/">
    <xsl:variable name="rows-tree">
      <xsl:call-template name="export-rows"/>
    </xsl:variable>
    <xsl:if test="$chunk = 'whole' or $chunk = 'first'">
      <xsl:call-template name="html-head"/>
    </xsl:if>
    <xsl:for-each select="xalan:nodeset($rows-tree)/r">
      <tr style="color:{substring($export-palette, @k * 7 + 1, 7)}">
        <td class="line"><xsl:value-of select="$first-line + position() - 1"/></td>
        <xsl:for-each select="c">
          <td><xsl:value-of select="."/></td>
        </xsl:for-each>
      </tr>
      <xsl:text>&#10;</xsl:text>
    </xsl:for-each>
    <xsl:if test="$chunk = 'whole' or $chunk = 'last'">
      <xsl:text disable-output-escaping="yes">&lt;/tbody&gt;&lt;/table&gt;&#10;&lt;/body&gt;&lt;/html&gt;&#10;</xsl:text>
    </xsl:if>
  </xsl:template>

  <xsl:template name="html-head">
    <xsl:text disable-output-escaping="yes">&lt;!DOCTYPE html&gt;&#10;&lt;html&gt;&lt;head&gt;&lt;meta charset="UTF-8"&gt;&lt;title&gt;</xsl:text>
    <xsl:value-of select="$export-kind"/>
    <xsl:text disable-output-escaping="yes">&lt;/title&gt;&#10;&lt;style&gt;
body { font-family: sans-serif; font-size: 9pt; }
table { border-collapse: collapse; }
td, th { border: 1px solid #c0c0c0; padding: 1px 5px; white-space: pre; text-align: left; vertical-align: top; }
th { background: #e8e8e8; }
td.line { text-align: right; }
table.session td, table.session th { border: none; background: none; }
&lt;/style&gt;&lt;/head&gt;&#10;&lt;body&gt;&#10;&lt;h1&gt;</xsl:text>
    <xsl:value-of select="$export-kind"/>
    <xsl:text disable-output-escaping="yes">&lt;/h1&gt;&#10;</xsl:text>
    <xsl:variable name="session-tree">
      <xsl:call-template name="export-session"/>
    </xsl:variable>
    <table class="session">
      <xsl:for-each select="xalan:nodeset($session-tree)/i">
        <tr><th><xsl:value-of select="@l"/></th><td><xsl:value-of select="."/></td></tr>
      </xsl:for-each>
    </table>
    <xsl:text disable-output-escaping="yes">&#10;&lt;table class="rows"&gt;&lt;thead&gt;</xsl:text>
    <xsl:variable name="titles-tree">
      <xsl:call-template name="export-titles"/>
    </xsl:variable>
    <tr>
      <xsl:for-each select="xalan:nodeset($titles-tree)/c">
        <th><xsl:value-of select="."/></th>
      </xsl:for-each>
    </tr>
    <xsl:text disable-output-escaping="yes">&lt;/thead&gt;&#10;&lt;tbody&gt;&#10;</xsl:text>
  </xsl:template>

</xsl:stylesheet>

<?xml version="1.0" encoding="UTF-8"?>
<!-- XSL-FO of an export, for a PDF: A4 landscape, the column titles repeated at the top of
     every page, "Page N" at the foot. The rows go into one page sequence per
     $fo-rows-per-sequence rows, so that the formatter can let go of finished pages.
     Every chunk is a complete FO document of its own (the PDFs of the chunks are joined);
     'whole' and 'first' start with the session information. $first-page numbers the
     chunk's first page. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:fo="http://www.w3.org/1999/XSL/Format"
                xmlns:xalan="http://xml.apache.org/xalan" exclude-result-prefixes="xalan">

  <xsl:output method="xml" encoding="UTF-8" indent="no"/>

  <xsl:variable name="fo-rows-per-sequence" select="400"/>

  <xsl:template match="/">
    <xsl:variable name="rows-tree">
      <xsl:call-template name="export-rows"/>
    </xsl:variable>
    <xsl:variable name="titles-tree">
      <xsl:call-template name="export-titles"/>
    </xsl:variable>
    <xsl:variable name="rows" select="xalan:nodeset($rows-tree)/r"/>
    <fo:root font-family="DejaVu Sans, Droid Sans Fallback, Helvetica" font-size="7pt">
      <fo:layout-master-set>
        <fo:simple-page-master master-name="landscape" page-width="297mm" page-height="210mm"
                               margin-top="8mm" margin-bottom="6mm" margin-left="8mm" margin-right="8mm">
          <fo:region-body margin-bottom="8mm"/>
          <fo:region-after extent="6mm"/>
        </fo:simple-page-master>
      </fo:layout-master-set>
      <xsl:choose>
        <xsl:when test="$rows">
          <xsl:call-template name="fo-sequences">
            <xsl:with-param name="rows" select="$rows"/>
            <xsl:with-param name="offset" select="0"/>
            <xsl:with-param name="titles" select="xalan:nodeset($titles-tree)/c"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:otherwise>
          <!-- A document needs a page: the session and the titles over an empty list. -->
          <xsl:call-template name="fo-sequence">
            <xsl:with-param name="rows" select="$rows"/>
            <xsl:with-param name="offset" select="0"/>
            <xsl:with-param name="titles" select="xalan:nodeset($titles-tree)/c"/>
          </xsl:call-template>
        </xsl:otherwise>
      </xsl:choose>
    </fo:root>
  </xsl:template>

  <!-- Halves the rows, in whole sequences, until one sequence's worth is left: the rows
       are selected by position in O(n log n) rather than once per sequence. -->
  <xsl:template name="fo-sequences">
    <xsl:param name="rows"/>
    <xsl:param name="offset"/>
    <xsl:param name="titles"/>
    <xsl:variable name="n" select="count($rows)"/>
    <xsl:choose>
      <xsl:when test="$n &lt;= $fo-rows-per-sequence">
        <xsl:call-template name="fo-sequence">
          <xsl:with-param name="rows" select="$rows"/>
          <xsl:with-param name="offset" select="$offset"/>
          <xsl:with-param name="titles" select="$titles"/>
        </xsl:call-template>
      </xsl:when>
      <xsl:otherwise>
        <xsl:variable name="half" select="ceiling($n div $fo-rows-per-sequence div 2) * $fo-rows-per-sequence"/>
        <xsl:call-template name="fo-sequences">
          <xsl:with-param name="rows" select="$rows[position() &lt;= $half]"/>
          <xsl:with-param name="offset" select="$offset"/>
          <xsl:with-param name="titles" select="$titles"/>
        </xsl:call-template>
        <xsl:call-template name="fo-sequences">
          <xsl:with-param name="rows" select="$rows[position() &gt; $half]"/>
          <xsl:with-param name="offset" select="$offset + $half"/>
          <xsl:with-param name="titles" select="$titles"/>
        </xsl:call-template>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <xsl:template name="fo-sequence">
    <xsl:param name="rows"/>
    <xsl:param name="offset"/>
    <xsl:param name="titles"/>
    <fo:page-sequence master-reference="landscape">
      <xsl:if test="$offset = 0">
        <xsl:attribute name="initial-page-number"><xsl:value-of select="$first-page"/></xsl:attribute>
      </xsl:if>
      <fo:static-content flow-name="xsl-region-after">
        <fo:block text-align="center">Page <fo:page-number/></fo:block>
      </fo:static-content>
      <fo:flow flow-name="xsl-region-body">
        <xsl:if test="$offset = 0 and ($chunk = 'whole' or $chunk = 'first')">
          <xsl:call-template name="fo-session"/>
        </xsl:if>
        <fo:table table-layout="fixed" width="100%" border-collapse="collapse">
          <xsl:for-each select="$titles">
            <fo:table-column column-width="proportional-column-width({@w})"/>
          </xsl:for-each>
          <fo:table-header>
            <fo:table-row background-color="#E8E8E8" font-weight="bold">
              <xsl:for-each select="$titles">
                <fo:table-cell border="0.3pt solid #A0A0A0" padding="0.5pt 2pt">
                  <fo:block><xsl:value-of select="."/></fo:block>
                </fo:table-cell>
              </xsl:for-each>
            </fo:table-row>
          </fo:table-header>
          <fo:table-body>
            <xsl:for-each select="$rows">
              <fo:table-row color="{substring($export-palette, @k * 7 + 1, 7)}">
                <fo:table-cell border="0.3pt solid #C0C0C0" padding="0.5pt 2pt">
                  <fo:block text-align="end"><xsl:value-of select="$first-line + $offset + position() - 1"/></fo:block>
                </fo:table-cell>
                <xsl:for-each select="c">
                  <fo:table-cell border="0.3pt solid #C0C0C0" padding="0.5pt 2pt">
                    <fo:block white-space-treatment="preserve" white-space-collapse="false"
                              wrap-option="wrap" linefeed-treatment="preserve"><xsl:value-of select="."/></fo:block>
                  </fo:table-cell>
                </xsl:for-each>
              </fo:table-row>
            </xsl:for-each>
            <xsl:if test="not($rows)">
              <fo:table-row>
                <xsl:for-each select="$titles">
                  <fo:table-cell><fo:block/></fo:table-cell>
                </xsl:for-each>
              </fo:table-row>
            </xsl:if>
          </fo:table-body>
        </fo:table>
      </fo:flow>
    </fo:page-sequence>
  </xsl:template>

  <xsl:template name="fo-session">
    <fo:block font-size="12pt" font-weight="bold" space-after="3mm"><xsl:value-of select="$export-kind"/></fo:block>
    <xsl:variable name="session-tree">
      <xsl:call-template name="export-session"/>
    </xsl:variable>
    <xsl:for-each select="xalan:nodeset($session-tree)/i">
      <fo:block font-size="8pt"><fo:inline font-weight="bold"><xsl:value-of select="@l"/></fo:inline>
        <xsl:text> </xsl:text><xsl:value-of select="."/></fo:block>
    </xsl:for-each>
    <fo:block space-after="3mm"/>
  </xsl:template>

</xsl:stylesheet>

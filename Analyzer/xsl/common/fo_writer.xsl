<?xml version="1.0" encoding="UTF-8"?>
<!-- XSL-FO of an export, for a PDF: A4 landscape, the column titles repeated at the top of
     every page, "Page N" at the foot. The rows go into one page sequence per
     $fo-rows-per-sequence rows, so that the formatter can let go of finished pages.
     The document's start and end are written as raw markup, so that the outputs of a
     document run in chunks ('first', 'middle' ..., 'last') join into one FO document,
     which one formatter lays out as it streams in; 'whole' and 'first' start with the
     session information. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:fo="http://www.w3.org/1999/XSL/Format"
                xmlns:xalan="http://xml.apache.org/xalan" exclude-result-prefixes="xalan">

  <xsl:output method="xml" encoding="UTF-8" indent="no" omit-xml-declaration="yes"/>

  <xsl:variable name="fo-rows-per-sequence" select="400"/>

  <xsl:template match="/">
    <xsl:variable name="rows-tree">
      <xsl:call-template name="export-rows"/>
    </xsl:variable>
    <xsl:variable name="titles-tree">
      <xsl:call-template name="export-titles"/>
    </xsl:variable>
    <xsl:variable name="rows" select="xalan:nodeset($rows-tree)/r"/>
    <!-- Made here, where the document is the context: the sequences run inside a tree of
         their own. -->
    <xsl:variable name="session-tree">
      <xsl:if test="$chunk = 'whole' or $chunk = 'first'">
        <xsl:call-template name="export-session"/>
      </xsl:if>
    </xsl:variable>
    <xsl:variable name="session" select="xalan:nodeset($session-tree)/i"/>
    <xsl:if test="$chunk = 'whole' or $chunk = 'first'">
      <xsl:text disable-output-escaping="yes">&lt;?xml version="1.0" encoding="UTF-8"?&gt;&#10;&lt;fo:root xmlns:fo="http://www.w3.org/1999/XSL/Format" font-family="DejaVu Sans, Droid Sans Fallback, Helvetica" font-size="7pt"&gt;</xsl:text>
      <fo:layout-master-set>
        <fo:simple-page-master master-name="landscape" page-width="297mm" page-height="210mm"
                               margin-top="8mm" margin-bottom="6mm" margin-left="8mm" margin-right="8mm">
          <fo:region-body margin-bottom="8mm"/>
          <fo:region-after extent="6mm"/>
        </fo:simple-page-master>
      </fo:layout-master-set>
    </xsl:if>
    <xsl:choose>
      <xsl:when test="$rows">
        <xsl:call-template name="fo-sequences">
          <xsl:with-param name="rows" select="$rows"/>
          <xsl:with-param name="titles" select="xalan:nodeset($titles-tree)/c"/>
          <xsl:with-param name="session" select="$session"/>
        </xsl:call-template>
      </xsl:when>
      <xsl:when test="$chunk = 'whole' or $chunk = 'first'">
        <!-- A document needs a page: the session and the titles over an empty list. A
             later chunk without rows adds nothing. -->
        <xsl:call-template name="fo-sequence">
          <xsl:with-param name="rows" select="$rows"/>
          <xsl:with-param name="offset" select="0"/>
          <xsl:with-param name="titles" select="xalan:nodeset($titles-tree)/c"/>
          <xsl:with-param name="session" select="$session"/>
        </xsl:call-template>
      </xsl:when>
    </xsl:choose>
    <xsl:if test="$chunk = 'whole' or $chunk = 'last'">
      <xsl:text disable-output-escaping="yes">&lt;/fo:root&gt;&#10;</xsl:text>
    </xsl:if>
  </xsl:template>

  <!-- Numbers the rows and marks their sequence, then makes one sequence per key group.
       Selecting parts of a big node-set by position costs Xalan-C the square of its
       size (a 6 MB snapshot list took 50 s instead of 3 s); a key is built once. -->
  <xsl:key name="fo-sequence-rows" match="r" use="@fo-s"/>

  <xsl:template name="fo-sequences">
    <xsl:param name="rows"/>
    <xsl:param name="titles"/>
    <xsl:param name="session"/>
    <xsl:variable name="numbered-tree">
      <xsl:for-each select="$rows">
        <r fo-s="{floor((position() - 1) div $fo-rows-per-sequence)}" fo-n="{$first-line + position() - 1}">
          <xsl:copy-of select="@*|node()"/>
        </r>
      </xsl:for-each>
    </xsl:variable>
    <xsl:for-each select="xalan:nodeset($numbered-tree)/r[(@fo-n - $first-line) mod $fo-rows-per-sequence = 0]">
      <xsl:call-template name="fo-sequence">
        <xsl:with-param name="rows" select="key('fo-sequence-rows', @fo-s)"/>
        <xsl:with-param name="offset" select="@fo-n - $first-line"/>
        <xsl:with-param name="titles" select="$titles"/>
        <xsl:with-param name="session" select="$session"/>
      </xsl:call-template>
    </xsl:for-each>
  </xsl:template>

  <xsl:template name="fo-sequence">
    <xsl:param name="rows"/>
    <xsl:param name="offset"/>
    <xsl:param name="titles"/>
    <xsl:param name="session"/>
    <fo:page-sequence master-reference="landscape">
      <fo:static-content flow-name="xsl-region-after">
        <fo:block text-align="center">Page <fo:page-number/></fo:block>
      </fo:static-content>
      <fo:flow flow-name="xsl-region-body">
        <xsl:if test="$offset = 0 and ($chunk = 'whole' or $chunk = 'first')">
          <xsl:call-template name="fo-session">
            <xsl:with-param name="session" select="$session"/>
          </xsl:call-template>
        </xsl:if>
        <!-- No borders on the cells: they cost the formatter half its time. -->
        <fo:table table-layout="fixed" width="100%" border-collapse="collapse">
          <xsl:for-each select="$titles">
            <fo:table-column column-width="proportional-column-width({@w})"/>
          </xsl:for-each>
          <fo:table-header>
            <fo:table-row background-color="#E8E8E8" font-weight="bold">
              <xsl:for-each select="$titles">
                <fo:table-cell border-bottom="0.5pt solid #808080" padding="0.5pt 2pt">
                  <fo:block><xsl:value-of select="."/></fo:block>
                </fo:table-cell>
              </xsl:for-each>
            </fo:table-row>
          </fo:table-header>
          <fo:table-body white-space-treatment="preserve" white-space-collapse="false"
                         wrap-option="wrap" linefeed-treatment="preserve">
            <xsl:for-each select="$rows">
              <fo:table-row color="{substring($export-palette, @k * 7 + 1, 7)}">
                <fo:table-cell padding="0.5pt 2pt">
                  <fo:block text-align="end"><xsl:value-of select="@fo-n"/></fo:block>
                </fo:table-cell>
                <xsl:for-each select="c">
                  <fo:table-cell padding="0.5pt 2pt">
                    <fo:block><xsl:value-of select="."/></fo:block>
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
    <xsl:param name="session"/>
    <fo:block font-size="12pt" font-weight="bold" space-after="3mm"><xsl:value-of select="$export-kind"/></fo:block>
    <xsl:for-each select="$session">
      <fo:block font-size="8pt"><fo:inline font-weight="bold"><xsl:value-of select="@l"/></fo:inline>
        <xsl:text> </xsl:text><xsl:value-of select="."/></fo:block>
    </xsl:for-each>
    <fo:block space-after="3mm"/>
  </xsl:template>

</xsl:stylesheet>

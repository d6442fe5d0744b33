<?xml version="1.0" encoding="UTF-8"?>
<!-- Second stage of the RTF export: the XHTML of the first stage as an RTF document, A4
     landscape, the column titles as a header row that word processors repeat on every
     page, each row in its colour. The text is plain ASCII: other characters are written
     as \u escapes (in UTF-16 units), so the document reads the same under any code page.
     For a first stage run in chunks, 'first' writes the document's start and 'last' its
     end. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:h="http://www.w3.org/1999/xhtml"
                xmlns:str="http://exslt.org/strings" exclude-result-prefixes="h str">

  <xsl:output method="text" encoding="US-ASCII"/>

  <!-- Every colour either list uses; an index into this is the RTF colour number - 1. -->
  <xsl:variable name="rtf-colours" select="'#000000#00AA00#0000AA#AA0000#0000FF#008000#FF0000'"/>
  <!-- Printable ASCII without the three characters RTF reserves. -->
  <xsl:variable name="rtf-plain"
                select="concat(' !&quot;#$%&amp;', &quot;'&quot;, '()*+,-./0123456789:;&lt;=&gt;?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[]^_`abcdefghijklmnopqrstuvwxyz|~')"/>
  <!-- Printable ASCII in code order from 0x20, to turn a byte value back into its character. -->
  <xsl:variable name="rtf-ascii"
                select="concat(' !&quot;#$%&amp;', &quot;'&quot;, '()*+,-./0123456789:;&lt;=&gt;?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\]^_`abcdefghijklmnopqrstuvwxyz{|}~')"/>
  <xsl:variable name="rtf-hex" select="'0123456789ABCDEF'"/>
  <!-- What a reader without Unicode shows for a \u escape: a "?" written as a hex escape,
       which no reader can take for part of the text that follows. -->
  <xsl:variable name="rtf-fallback" select="&quot;\'3f&quot;"/>
  <!-- Printable width of landscape A4 with 1 cm margins, in twips. -->
  <xsl:variable name="rtf-table-width" select="15704"/>

  <xsl:variable name="rtf-cols" select="//h:table[@class = 'rows']/h:colgroup/h:col"/>
  <xsl:variable name="rtf-cols-total" select="sum($rtf-cols/@width)"/>

  <xsl:variable name="rtf-row-definition">
    <xsl:text>\trowd\trgaph57\trleft0</xsl:text>
    <xsl:for-each select="$rtf-cols">
      <xsl:variable name="p" select="position()"/>
      <xsl:text>\clbrdrt\brdrs\brdrw5\clbrdrl\brdrs\brdrw5\clbrdrb\brdrs\brdrw5\clbrdrr\brdrs\brdrw5\cellx</xsl:text>
      <xsl:value-of select="floor(sum($rtf-cols[position() &lt;= $p]/@width) * $rtf-table-width div $rtf-cols-total)"/>
    </xsl:for-each>
  </xsl:variable>

  <xsl:template match="/">
    <xsl:if test="$chunk = 'whole' or $chunk = 'first'">
      <xsl:text>{\rtf1\ansi\ansicpg1252\deff0\uc1&#10;{\fonttbl{\f0\fswiss\fcharset0 Arial;}}&#10;{\colortbl;</xsl:text>
      <xsl:call-template name="rtf-colour-table"/>
      <xsl:text>}&#10;\paperw16838\paperh11906\landscape\margl567\margr567\margt567\margb567&#10;</xsl:text>
      <xsl:for-each select="//h:h1">
        <xsl:text>\pard\plain\f0\fs28\b </xsl:text>
        <xsl:call-template name="rtf-text"><xsl:with-param name="text" select="."/></xsl:call-template>
        <xsl:text>\b0\par&#10;</xsl:text>
      </xsl:for-each>
      <xsl:for-each select="//h:table[@class = 'session']/h:tr">
        <xsl:text>\pard\plain\f0\fs18\b </xsl:text>
        <xsl:call-template name="rtf-text"><xsl:with-param name="text" select="h:th"/></xsl:call-template>
        <xsl:text>\b0  </xsl:text>
        <xsl:call-template name="rtf-text"><xsl:with-param name="text" select="h:td"/></xsl:call-template>
        <xsl:text>\par&#10;</xsl:text>
      </xsl:for-each>
      <xsl:text>\pard\plain\f0\fs18\par&#10;</xsl:text>
      <xsl:for-each select="//h:table[@class = 'rows']/h:tr[@class = 'titles']">
        <xsl:value-of select="concat('\trowd\trhdr', substring-after($rtf-row-definition, '\trowd'), '&#10;')"/>
        <xsl:for-each select="h:th">
          <xsl:text>\pard\plain\intbl\f0\fs14\b </xsl:text>
          <xsl:call-template name="rtf-text"><xsl:with-param name="text" select="."/></xsl:call-template>
          <xsl:text>\b0\cell&#10;</xsl:text>
        </xsl:for-each>
        <xsl:text>\row&#10;</xsl:text>
      </xsl:for-each>
    </xsl:if>
    <xsl:for-each select="//h:table[@class = 'rows']/h:tr[not(@class = 'titles')]">
      <xsl:variable name="colour" select="substring-after(@style, 'color:')"/>
      <xsl:variable name="cf">
        <xsl:choose>
          <xsl:when test="$colour != '' and contains($rtf-colours, $colour)">
            <xsl:value-of select="string-length(substring-before($rtf-colours, $colour)) div 7 + 1"/>
          </xsl:when>
          <xsl:otherwise>1</xsl:otherwise>
        </xsl:choose>
      </xsl:variable>
      <xsl:value-of select="concat($rtf-row-definition, '&#10;')"/>
      <xsl:for-each select="h:td">
        <xsl:value-of select="concat('\pard\plain\intbl\f0\fs14\cf', $cf, ' ')"/>
        <xsl:call-template name="rtf-text"><xsl:with-param name="text" select="."/></xsl:call-template>
        <xsl:text>\cell&#10;</xsl:text>
      </xsl:for-each>
      <xsl:text>\row&#10;</xsl:text>
    </xsl:for-each>
    <xsl:if test="$chunk = 'whole' or $chunk = 'last'">
      <xsl:text>\pard\plain\par&#10;}&#10;</xsl:text>
    </xsl:if>
  </xsl:template>

  <xsl:template name="rtf-colour-table">
    <xsl:param name="rest" select="$rtf-colours"/>
    <xsl:if test="$rest != ''">
      <xsl:value-of select="concat('\red', (string-length(substring-before($rtf-hex, substring($rest, 2, 1))) * 16
                                            + string-length(substring-before($rtf-hex, substring($rest, 3, 1)))),
                                   '\green', (string-length(substring-before($rtf-hex, substring($rest, 4, 1))) * 16
                                            + string-length(substring-before($rtf-hex, substring($rest, 5, 1)))),
                                   '\blue', (string-length(substring-before($rtf-hex, substring($rest, 6, 1))) * 16
                                            + string-length(substring-before($rtf-hex, substring($rest, 7, 1)))), ';')"/>
      <xsl:call-template name="rtf-colour-table">
        <xsl:with-param name="rest" select="substring($rest, 8)"/>
      </xsl:call-template>
    </xsl:if>
  </xsl:template>

  <!-- Most texts are plain ASCII and go out as they are. The others are taken apart as
       UTF-8 bytes, which str:encode-uri shows as %XX, and put together again as code
       points. -->
  <xsl:template name="rtf-text">
    <xsl:param name="text"/>
    <xsl:choose>
      <xsl:when test="translate($text, $rtf-plain, '') = ''"><xsl:value-of select="$text"/></xsl:when>
      <xsl:otherwise>
        <xsl:call-template name="rtf-encoded">
          <xsl:with-param name="rest" select="str:encode-uri($text, true())"/>
        </xsl:call-template>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <xsl:template name="rtf-encoded">
    <xsl:param name="rest"/>
    <xsl:choose>
      <xsl:when test="contains($rest, '%')">
        <xsl:value-of select="substring-before($rest, '%')"/>
        <xsl:variable name="at" select="substring-after($rest, '%')"/>
        <xsl:variable name="b1" select="(string-length(substring-before($rtf-hex, substring($at, 1, 1))) * 16
                                         + string-length(substring-before($rtf-hex, substring($at, 2, 1))))"/>
        <xsl:variable name="size">
          <xsl:choose>
            <xsl:when test="$b1 &lt; 128">1</xsl:when>
            <xsl:when test="$b1 &lt; 224">2</xsl:when>
            <xsl:when test="$b1 &lt; 240">3</xsl:when>
            <xsl:otherwise>4</xsl:otherwise>
          </xsl:choose>
        </xsl:variable>
        <xsl:choose>
          <xsl:when test="$size = 1">
            <xsl:variable name="c" select="substring($rtf-ascii, $b1 - 31, 1)"/>
            <xsl:if test="$c = '\' or $c = '{' or $c = '}'">\</xsl:if>
            <xsl:value-of select="$c"/>
          </xsl:when>
          <xsl:otherwise>
            <xsl:variable name="lead">
              <xsl:choose>
                <xsl:when test="$size = 2"><xsl:value-of select="$b1 mod 32"/></xsl:when>
                <xsl:when test="$size = 3"><xsl:value-of select="$b1 mod 16"/></xsl:when>
                <xsl:otherwise><xsl:value-of select="$b1 mod 8"/></xsl:otherwise>
              </xsl:choose>
            </xsl:variable>
            <xsl:call-template name="rtf-code-point">
              <xsl:with-param name="value">
                <xsl:call-template name="rtf-continue">
                  <xsl:with-param name="value" select="$lead"/>
                  <xsl:with-param name="bytes" select="substring($at, 3)"/>
                  <xsl:with-param name="count" select="$size - 1"/>
                </xsl:call-template>
              </xsl:with-param>
            </xsl:call-template>
          </xsl:otherwise>
        </xsl:choose>
        <xsl:call-template name="rtf-encoded">
          <xsl:with-param name="rest" select="substring($at, 3 * $size)"/>
        </xsl:call-template>
      </xsl:when>
      <xsl:otherwise><xsl:value-of select="$rest"/></xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <!-- Adds the payload of `count` continuation bytes "%XX%XX..." to a code point. -->
  <xsl:template name="rtf-continue">
    <xsl:param name="value"/>
    <xsl:param name="bytes"/>
    <xsl:param name="count"/>
    <xsl:choose>
      <xsl:when test="$count &gt; 0">
        <xsl:variable name="b" select="(string-length(substring-before($rtf-hex, substring($bytes, 2, 1))) * 16
                                        + string-length(substring-before($rtf-hex, substring($bytes, 3, 1))))"/>
        <xsl:call-template name="rtf-continue">
          <xsl:with-param name="value" select="$value * 64 + ($b mod 64)"/>
          <xsl:with-param name="bytes" select="substring($bytes, 4)"/>
          <xsl:with-param name="count" select="$count - 1"/>
        </xsl:call-template>
      </xsl:when>
      <xsl:otherwise><xsl:value-of select="$value"/></xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <!-- \uN takes a signed 16-bit number; beyond the first plane, a surrogate pair. -->
  <xsl:template name="rtf-code-point">
    <xsl:param name="value"/>
    <xsl:choose>
      <xsl:when test="$value &gt; 65535">
        <xsl:variable name="v" select="$value - 65536"/>
        <xsl:value-of select="concat('\u', 55296 + floor($v div 1024) - 65536, $rtf-fallback, '\u', 56320 + ($v mod 1024) - 65536, $rtf-fallback)"/>
      </xsl:when>
      <xsl:when test="$value &gt; 32767">
        <xsl:value-of select="concat('\u', $value - 65536, $rtf-fallback)"/>
      </xsl:when>
      <xsl:otherwise>
        <xsl:value-of select="concat('\u', $value, $rtf-fallback)"/>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>

</xsl:stylesheet>

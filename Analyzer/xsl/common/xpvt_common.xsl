<?xml version="1.0" encoding="UTF-8"?>
<!-- What both schemas of process value traces share: the session information of the
     header and the unprintable bytes. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:str="http://exslt.org/strings" exclude-result-prefixes="str">

  <!-- Bytes the list never shows; XML can carry only these of them. -->
  <xsl:variable name="unprintable" select="'&#9;&#10;&#13;&#127;'"/>
  <xsl:variable name="hex-digits" select="'0123456789abcdefABCDEF'"/>

  <xsl:variable name="export-kind" select="'Process value trace'"/>
  <!-- Text colours by colour digit: blue, green, black, red. -->
  <xsl:variable name="export-palette" select="'#0000FF#008000#000000#FF0000'"/>

  <!-- Own character data of the context element, as a text routine collects it. -->
  <xsl:template name="own-text">
    <xsl:for-each select="text()"><xsl:value-of select="."/></xsl:for-each>
  </xsl:template>

  <!-- The header as the session dialog shows it. Texts of repeated elements join up; the
       DateTime attribute "date T time" adds its halves to Date and Time (without a T it
       is all time). The last box shows the database access key under "LogicalLink:". -->
  <xsl:template name="export-session">
    <xsl:variable name="d" select="/*[name() = 'ProcessValueTrace']/*[name() = 'Description']"/>
    <xsl:variable name="project" select="$d/*[name() = 'Project']"/>
    <xsl:variable name="vit" select="$project/*[name() = 'VehicleInformationTable']"/>
    <xsl:variable name="date-time" select="translate($d/@DateTime, $unprintable, '')"/>
    <xsl:variable name="date">
      <xsl:for-each select="$d/*[name() = 'Date']"><xsl:call-template name="own-text"/></xsl:for-each>
      <xsl:if test="contains($date-time, 'T')"><xsl:value-of select="substring-before($date-time, 'T')"/></xsl:if>
    </xsl:variable>
    <xsl:variable name="time">
      <xsl:for-each select="$d/*[name() = 'Time']"><xsl:call-template name="own-text"/></xsl:for-each>
      <xsl:choose>
        <xsl:when test="contains($date-time, 'T')"><xsl:value-of select="substring-after($date-time, 'T')"/></xsl:when>
        <xsl:otherwise><xsl:value-of select="$date-time"/></xsl:otherwise>
      </xsl:choose>
    </xsl:variable>
    <xsl:call-template name="session-line">
      <xsl:with-param name="label" select="'Title:'"/>
      <xsl:with-param name="elements" select="$d/*[name() = 'Title']"/>
    </xsl:call-template>
    <xsl:call-template name="session-line">
      <xsl:with-param name="label" select="'Schema:'"/>
      <xsl:with-param name="elements" select="$d/*[name() = 'Schema']"/>
    </xsl:call-template>
    <xsl:call-template name="session-line">
      <xsl:with-param name="label" select="'Product version:'"/>
      <xsl:with-param name="elements" select="$d/*[name() = 'ProductVersion']"/>
    </xsl:call-template>
    <i l="Date:"><xsl:value-of select="translate($date, $unprintable, '')"/></i>
    <i l="Time:"><xsl:value-of select="translate($time, $unprintable, '')"/></i>
    <xsl:call-template name="session-line">
      <xsl:with-param name="label" select="'Author:'"/>
      <xsl:with-param name="elements" select="$d/*[name() = 'Author']"/>
    </xsl:call-template>
    <xsl:call-template name="session-line">
      <xsl:with-param name="label" select="'Comment:'"/>
      <xsl:with-param name="elements" select="$d/*[name() = 'Comment']"/>
    </xsl:call-template>
    <xsl:call-template name="session-line">
      <xsl:with-param name="label" select="'Project Shortname:'"/>
      <xsl:with-param name="attributes" select="$project/@ShortName"/>
      <xsl:with-param name="elements" select="$project/*[name() = 'ShortName']"/>
    </xsl:call-template>
    <xsl:call-template name="session-line">
      <xsl:with-param name="label" select="'Vehicle information table Shortname:'"/>
      <xsl:with-param name="attributes" select="$vit/@ShortName"/>
      <xsl:with-param name="elements" select="$vit/*[name() = 'ShortName']"/>
    </xsl:call-template>
    <xsl:call-template name="session-line">
      <xsl:with-param name="label" select="'LogicalLink:'"/>
      <xsl:with-param name="elements" select="$vit/*[name() = 'LogicalLink']/*[name() = 'DatabaseAccessKey']"/>
    </xsl:call-template>
  </xsl:template>

  <xsl:template name="session-line">
    <xsl:param name="label"/>
    <xsl:param name="attributes" select="/.."/>
    <xsl:param name="elements" select="/.."/>
    <xsl:variable name="text">
      <xsl:for-each select="$attributes | $elements">
        <xsl:choose>
          <xsl:when test="self::*"><xsl:call-template name="own-text"/></xsl:when>
          <xsl:otherwise><xsl:value-of select="."/></xsl:otherwise>
        </xsl:choose>
      </xsl:for-each>
    </xsl:variable>
    <i l="{$label}"><xsl:value-of select="translate($text, $unprintable, '')"/></i>
  </xsl:template>

</xsl:stylesheet>

<?xml version="1.0" encoding="UTF-8"?>
<!-- The rows of a snapshot list, exactly as the list builds them: a start and a stop row
     per snapshot, project and vehicle information, links, services, primitives, fault
     codes, errors and process values. Element names are compared as written (prefix
     included), and an element that is not allowed where it stands is skipped with its
     whole subtree, known names inside it too.

     A document may be run in chunks cut between children of SnapList or of SnapShot.
     These parameters carry what a chunk cannot see:
       continued  'yes': the chunk's first SnapShot began in an earlier chunk (its start
                  row was written there);
       continues  'yes': the chunk's last SnapShot goes on in a later chunk (its stop row
                  comes there);
       file-first 'yes' / 'no': whether the chunk's first SnapShot is the file's first,
                  the only one that shows the list's own "Created" when it has none;
                  by default it is when the chunk is 'whole' or 'first'. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">

  <xsl:param name="continued" select="'no'"/>
  <xsl:param name="continues" select="'no'"/>
  <xsl:param name="file-first" select="''"/>
  <xsl:param name="file-name" select="''"/>

  <!-- Bytes the list never shows; XML can carry only these of them. -->
  <xsl:variable name="unprintable" select="'&#9;&#10;&#13;&#127;'"/>

  <xsl:variable name="export-kind" select="'Snapshot'"/>
  <!-- Text colours by colour digit: black, green, blue, red. -->
  <xsl:variable name="export-palette" select="'#000000#00AA00#0000AA#AA0000'"/>

  <xsl:template name="export-titles">
    <c w="40">Line</c><c w="80">Event</c><c w="160">Description</c><c w="160">Name</c><c w="160">Value</c><c w="160">Unit</c>
  </xsl:template>

  <!-- The session dialog: the list's "Created" holds the time, a comma, then the date. -->
  <xsl:template name="export-session">
    <xsl:variable name="created" select="translate(/*[name() = 'SnapList']/@Created, $unprintable, '')"/>
    <i l="File name:"><xsl:value-of select="$file-name"/></i>
    <xsl:choose>
      <xsl:when test="contains($created, ',')">
        <i l="Date:"><xsl:value-of select="substring-after($created, ',')"/></i>
        <i l="Time:"><xsl:value-of select="substring-before($created, ',')"/></i>
      </xsl:when>
      <xsl:otherwise>
        <i l="Date:"><xsl:value-of select="$created"/></i>
        <i l="Time:"/>
      </xsl:otherwise>
    </xsl:choose>
    <i l="Author:">ZDT V7</i>
  </xsl:template>

  <xsl:template name="export-rows">
    <xsl:variable name="snapshots" select="/*[name() = 'SnapList']/*[name() = 'SnapShot']"/>
    <xsl:variable name="count" select="count($snapshots)"/>
    <xsl:for-each select="$snapshots">
      <xsl:call-template name="snp-snapshot">
        <xsl:with-param name="start" select="not(position() = 1 and $continued = 'yes')"/>
        <xsl:with-param name="stop" select="not(position() = $count and $continues = 'yes')"/>
        <xsl:with-param name="inherit" select="position() = 1 and ($file-first = 'yes' or
                         ($file-first = '' and ($chunk = 'whole' or $chunk = 'first')))"/>
      </xsl:call-template>
    </xsl:for-each>
  </xsl:template>

  <xsl:template name="snp-row">
    <xsl:param name="k" select="0"/>
    <xsl:param name="event" select="''"/>
    <xsl:param name="description" select="''"/>
    <xsl:param name="name" select="''"/>
    <xsl:param name="value" select="''"/>
    <xsl:param name="unit" select="''"/>
    <r k="{$k}"><c><xsl:value-of select="$event"/></c><c><xsl:value-of select="$description"/></c><c><xsl:value-of select="$name"/></c><c><xsl:value-of select="$value"/></c><c><xsl:value-of select="$unit"/></c></r>
  </xsl:template>

  <!-- Text of an element as the list reads it: its own character data only, never that
       of child elements, with the unprintable bytes dropped. -->
  <xsl:template name="snp-own-text">
    <xsl:variable name="text">
      <xsl:for-each select="text()"><xsl:value-of select="."/></xsl:for-each>
    </xsl:variable>
    <xsl:value-of select="translate($text, $unprintable, '')"/>
  </xsl:template>

  <xsl:template name="snp-snapshot">
    <xsl:param name="start"/>
    <xsl:param name="stop"/>
    <xsl:param name="inherit"/>
    <xsl:variable name="short" select="translate(@ShortName, $unprintable, '')"/>
    <xsl:variable name="long" select="translate(@LongName, $unprintable, '')"/>
    <xsl:variable name="created">
      <xsl:choose>
        <xsl:when test="@Created"><xsl:value-of select="translate(@Created, $unprintable, '')"/></xsl:when>
        <xsl:when test="$inherit"><xsl:value-of select="translate(../@Created, $unprintable, '')"/></xsl:when>
      </xsl:choose>
    </xsl:variable>
    <xsl:variable name="text">
      <xsl:value-of select="$short"/>
      <xsl:if test="$long != ''"><xsl:value-of select="concat(' ', $long)"/></xsl:if>
      <xsl:if test="$created != ''"><xsl:value-of select="concat(' [ ', $created, ' ]')"/></xsl:if>
    </xsl:variable>
    <xsl:if test="$start">
      <xsl:call-template name="snp-row">
        <xsl:with-param name="event" select="'Start SnapShot'"/>
        <xsl:with-param name="description" select="$text"/>
      </xsl:call-template>
    </xsl:if>
    <xsl:apply-templates select="*" mode="snp-in-snapshot"/>
    <xsl:if test="$stop">
      <xsl:call-template name="snp-row">
        <xsl:with-param name="event" select="'Stop SnapShot'"/>
        <xsl:with-param name="description" select="$text"/>
      </xsl:call-template>
    </xsl:if>
  </xsl:template>

  <!-- Children of a snapshot. -->
  <xsl:template match="*" mode="snp-in-snapshot"/>

  <xsl:template match="*[name() = 'ZDTProject']" mode="snp-in-snapshot">
    <xsl:call-template name="snp-row">
      <xsl:with-param name="k" select="1"/>
      <xsl:with-param name="event" select="'Zdt Project'"/>
      <xsl:with-param name="description"><xsl:call-template name="snp-own-text"/></xsl:with-param>
    </xsl:call-template>
  </xsl:template>

  <xsl:template match="*[name() = 'VIT']" mode="snp-in-snapshot">
    <xsl:call-template name="snp-row">
      <xsl:with-param name="k" select="1"/>
      <xsl:with-param name="event" select="'VIT'"/>
      <xsl:with-param name="description"><xsl:call-template name="snp-own-text"/></xsl:with-param>
    </xsl:call-template>
  </xsl:template>

  <xsl:template match="*[name() = 'LogicalLink']" mode="snp-in-snapshot">
    <xsl:variable name="link" select="translate(@Name, $unprintable, '')"/>
    <xsl:call-template name="snp-row">
      <xsl:with-param name="event" select="'Start LogicalLink'"/>
      <xsl:with-param name="name" select="$link"/>
    </xsl:call-template>
    <xsl:apply-templates select="*" mode="snp-in-link"/>
    <xsl:call-template name="snp-row">
      <xsl:with-param name="event" select="'Stop LogicalLink'"/>
      <xsl:with-param name="name" select="$link"/>
    </xsl:call-template>
  </xsl:template>

  <!-- A service stands under a snapshot or a link; primitives, fault codes and errors
       only under a link. Every child of a service, primitive or fault code, whatever
       its name, is a process value. -->
  <xsl:template match="*[name() = 'Service']" mode="snp-in-snapshot">
    <xsl:call-template name="snp-named">
      <xsl:with-param name="event" select="'Service'"/>
    </xsl:call-template>
  </xsl:template>

  <xsl:template match="*" mode="snp-in-link"/>

  <xsl:template match="*[name() = 'Service' or name() = 'ComPrimitive']" mode="snp-in-link">
    <xsl:call-template name="snp-named">
      <xsl:with-param name="event" select="name()"/>
    </xsl:call-template>
  </xsl:template>

  <xsl:template match="*[name() = 'DTC']" mode="snp-in-link">
    <xsl:call-template name="snp-named">
      <xsl:with-param name="event" select="'DTC'"/>
    </xsl:call-template>
  </xsl:template>

  <xsl:template match="*[name() = 'Error']" mode="snp-in-link">
    <xsl:call-template name="snp-row">
      <xsl:with-param name="k" select="3"/>
      <xsl:with-param name="event" select="'Error'"/>
      <xsl:with-param name="description" select="translate(@Name, $unprintable, '')"/>
    </xsl:call-template>
  </xsl:template>

  <xsl:template name="snp-named">
    <xsl:param name="event"/>
    <xsl:call-template name="snp-row">
      <xsl:with-param name="event" select="$event"/>
      <xsl:with-param name="description" select="translate(@Name, $unprintable, '')"/>
    </xsl:call-template>
    <xsl:for-each select="*">
      <xsl:call-template name="snp-row">
        <xsl:with-param name="k" select="2"/>
        <xsl:with-param name="description" select="'ProcessValue'"/>
        <xsl:with-param name="name" select="translate(@Name, $unprintable, '')"/>
        <xsl:with-param name="value"><xsl:call-template name="snp-own-text"/></xsl:with-param>
        <xsl:with-param name="unit" select="translate(@Unit, $unprintable, '')"/>
      </xsl:call-template>
    </xsl:for-each>
  </xsl:template>

</xsl:stylesheet>

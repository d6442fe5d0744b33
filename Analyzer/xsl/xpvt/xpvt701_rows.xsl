<?xml version="1.0" encoding="UTF-8"?>
<!-- The rows of a process value trace of schema 7.01, exactly as the list builds them.

     Each child of Trace begins by emptying every value the rows read, so its rows
     depend on nothing before it, and a document may be run in chunks cut between
     children of Trace. Inside a child, values pile up from element to element until the
     next element that empties them (a response's ShortName shows again in front of its
     first parameter's, a second PDU carries the first one's bytes): the child is first
     turned into a flat list of events in document order (x701-events), then folded over
     with the values as parameters (x701-fold), which is how the rows come out. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:xalan="http://xml.apache.org/xalan"
                xmlns:str="http://exslt.org/strings" exclude-result-prefixes="xalan str">

  <xsl:include href="../common/xpvt_common.xsl"/>

  <xsl:template name="export-titles">
    <c w="40">Line</c><c w="80">Event</c><c w="160">LogicalLink</c><c w="50">CANID[hex]</c>
    <c w="50">Abs.Time[ms]</c><c w="200">Description</c><c w="200">Value</c><c w="120">RangeInfo</c>
  </xsl:template>

  <!-- One tree of events for all children: a tree per child would cost time that grows
       with the number of trees made before it. PDU rows are cut after the fold, from a
       <q> that stands in for them: cutting them deep inside the fold's recursion makes the
       processor's time grow with the square of the document. -->
  <xsl:template name="export-rows">
    <xsl:variable name="events-tree">
      <xsl:for-each select="/*[name() = 'ProcessValueTrace']/*[name() = 'Trace']/*">
        <g><xsl:apply-templates select="." mode="x701-trace"/></g>
      </xsl:for-each>
    </xsl:variable>
    <xsl:variable name="folded-tree">
      <xsl:for-each select="xalan:nodeset($events-tree)/g[*]">
        <xsl:call-template name="x701-fold">
          <xsl:with-param name="events" select="*"/>
        </xsl:call-template>
      </xsl:for-each>
    </xsl:variable>
    <xsl:for-each select="xalan:nodeset($folded-tree)/*">
      <xsl:choose>
        <xsl:when test="self::q">
          <xsl:call-template name="x701-pdu-rows">
            <xsl:with-param name="pdu" select="string(@pdu)"/>
            <xsl:with-param name="event" select="string(@event)"/>
            <xsl:with-param name="can-id" select="string(@can-id)"/>
            <xsl:with-param name="time-stamp" select="string(@time-stamp)"/>
            <xsl:with-param name="description" select="string(@description)"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:otherwise><xsl:copy-of select="."/></xsl:otherwise>
      </xsl:choose>
    </xsl:for-each>
  </xsl:template>

  <!-- Events: <c/> empties every value; <t n="slot"> adds text to a value; <w e="row"/>
       makes the rows of that kind; <p l="level"/> makes a response parameter's row and
       then empties every value. -->

  <xsl:template name="x701-text">
    <xsl:param name="slot"/>
    <xsl:if test="text()">
      <t n="{$slot}"><xsl:call-template name="own-text"/></t>
    </xsl:if>
  </xsl:template>

  <xsl:template match="*" mode="x701-trace"/>

  <xsl:template match="*[name() = 'StartTrace' or name() = 'StopTrace']" mode="x701-trace">
    <c/>
    <xsl:apply-templates select="*" mode="x701-stamp"/>
    <w e="{name()}"/>
  </xsl:template>

  <xsl:template match="*[name() = 'OpenLogicalLink' or name() = 'CloseLogicalLink']" mode="x701-trace">
    <c/>
    <xsl:apply-templates select="*" mode="x701-link-event"/>
    <w e="{name()}"/>
  </xsl:template>

  <xsl:template match="*[name() = 'OpenComPrimitive' or name() = 'CloseComPrimitive']" mode="x701-trace">
    <c/>
    <xsl:apply-templates select="*" mode="x701-primitive"/>
    <w e="{name()}"/>
  </xsl:template>

  <xsl:template match="*[name() = 'ZdtResult']" mode="x701-trace">
    <c/>
    <xsl:apply-templates select="*" mode="x701-result"/>
  </xsl:template>

  <!-- Date and Time: under trace, link and primitive events. -->
  <xsl:template match="*" mode="x701-stamp"/>
  <xsl:template match="*[name() = 'Date']" mode="x701-stamp">
    <xsl:call-template name="x701-text"><xsl:with-param name="slot" select="1"/></xsl:call-template>
  </xsl:template>
  <xsl:template match="*[name() = 'Time']" mode="x701-stamp">
    <xsl:call-template name="x701-text"><xsl:with-param name="slot" select="0"/></xsl:call-template>
  </xsl:template>

  <xsl:template match="*" mode="x701-link-event">
    <xsl:apply-templates select="." mode="x701-stamp"/>
  </xsl:template>
  <xsl:template match="*[name() = 'LogicalLink']" mode="x701-link-event">
    <xsl:apply-templates select="*" mode="x701-logical-link"/>
  </xsl:template>

  <xsl:template match="*" mode="x701-logical-link"/>
  <xsl:template match="*[name() = 'ShortName']" mode="x701-logical-link">
    <xsl:call-template name="x701-text"><xsl:with-param name="slot" select="2"/></xsl:call-template>
  </xsl:template>

  <xsl:template match="*" mode="x701-primitive">
    <xsl:apply-templates select="." mode="x701-link-event"/>
  </xsl:template>
  <xsl:template match="*[name() = 'ShortName']" mode="x701-primitive">
    <xsl:call-template name="x701-text"><xsl:with-param name="slot" select="7"/></xsl:call-template>
  </xsl:template>
  <xsl:template match="*[name() = 'Type']" mode="x701-primitive">
    <xsl:call-template name="x701-text"><xsl:with-param name="slot" select="3"/></xsl:call-template>
  </xsl:template>

  <xsl:template match="*" mode="x701-result"/>
  <xsl:template match="*[name() = 'LogicalLink']" mode="x701-result">
    <xsl:apply-templates select="*" mode="x701-logical-link"/>
    <w e="Result"/>
  </xsl:template>
  <xsl:template match="*[name() = 'ZdtRequest']" mode="x701-result">
    <xsl:apply-templates select="*" mode="x701-request"/>
  </xsl:template>
  <xsl:template match="*[name() = 'ZdtResponse']" mode="x701-result">
    <c/>
    <xsl:apply-templates select="*" mode="x701-response"/>
  </xsl:template>

  <xsl:template match="*" mode="x701-request"/>
  <xsl:template match="*[name() = 'ShortName']" mode="x701-request">
    <xsl:call-template name="x701-text"><xsl:with-param name="slot" select="5"/></xsl:call-template>
    <w e="RequestName"/>
  </xsl:template>
  <xsl:template match="*[name() = 'PDU']" mode="x701-request">
    <xsl:call-template name="x701-text"><xsl:with-param name="slot" select="6"/></xsl:call-template>
    <w e="RequestPdu"/>
  </xsl:template>
  <xsl:template match="*[name() = 'ZdtRequestParameter']" mode="x701-request">
    <c/>
    <xsl:apply-templates select="*" mode="x701-request-parameter"/>
  </xsl:template>

  <!-- What request and response parameters hold alike. -->
  <xsl:template match="*" mode="x701-parameter"/>
  <xsl:template match="*[name() = 'ShortName']" mode="x701-parameter">
    <xsl:call-template name="x701-text"><xsl:with-param name="slot" select="7"/></xsl:call-template>
  </xsl:template>
  <xsl:template match="*[name() = 'RangeInfo']" mode="x701-parameter">
    <xsl:for-each select="*[name() = 'Text']">
      <xsl:call-template name="x701-text"><xsl:with-param name="slot" select="8"/></xsl:call-template>
    </xsl:for-each>
  </xsl:template>
  <xsl:template match="*[name() = 'ZdtValue']" mode="x701-parameter">
    <xsl:for-each select="*[name() = 'Value']">
      <xsl:call-template name="x701-text"><xsl:with-param name="slot" select="9"/></xsl:call-template>
    </xsl:for-each>
  </xsl:template>
  <xsl:template match="*[name() = 'ZdtError']" mode="x701-parameter">
    <c/>
    <xsl:apply-templates select="*" mode="x701-error"/>
    <w e="Error"/>
  </xsl:template>

  <xsl:template match="*" mode="x701-error"/>
  <xsl:template match="*[name() = 'ShortName']" mode="x701-error">
    <xsl:call-template name="x701-text"><xsl:with-param name="slot" select="7"/></xsl:call-template>
  </xsl:template>
  <xsl:template match="*[name() = 'CodeDescription']" mode="x701-error">
    <xsl:call-template name="x701-text"><xsl:with-param name="slot" select="10"/></xsl:call-template>
  </xsl:template>
  <xsl:template match="*[name() = 'Severity']" mode="x701-error">
    <xsl:call-template name="x701-text"><xsl:with-param name="slot" select="11"/></xsl:call-template>
  </xsl:template>
  <xsl:template match="*[name() = 'SeverityInfo']" mode="x701-error">
    <xsl:call-template name="x701-text"><xsl:with-param name="slot" select="12"/></xsl:call-template>
  </xsl:template>

  <xsl:template match="*" mode="x701-request-parameter">
    <xsl:apply-templates select="." mode="x701-parameter"/>
  </xsl:template>
  <xsl:template match="*[name() = 'ZdtValue']" mode="x701-request-parameter">
    <xsl:apply-templates select="." mode="x701-parameter"/>
    <w e="RequestParameter"/>
  </xsl:template>

  <xsl:template match="*" mode="x701-response"/>
  <xsl:template match="*[name() = 'ShortName']" mode="x701-response">
    <xsl:call-template name="x701-text"><xsl:with-param name="slot" select="7"/></xsl:call-template>
  </xsl:template>
  <xsl:template match="*[name() = 'ECU']" mode="x701-response">
    <c/>
    <xsl:call-template name="x701-text"><xsl:with-param name="slot" select="13"/></xsl:call-template>
    <w e="Ecu"/>
  </xsl:template>
  <xsl:template match="*[name() = 'State']" mode="x701-response">
    <xsl:call-template name="x701-text"><xsl:with-param name="slot" select="14"/></xsl:call-template>
    <w e="State"/>
  </xsl:template>
  <xsl:template match="*[name() = 'CANID']" mode="x701-response">
    <xsl:call-template name="x701-text"><xsl:with-param name="slot" select="23"/></xsl:call-template>
  </xsl:template>
  <xsl:template match="*[name() = 'TimeStamp']" mode="x701-response">
    <xsl:call-template name="x701-text"><xsl:with-param name="slot" select="24"/></xsl:call-template>
  </xsl:template>
  <xsl:template match="*[name() = 'PDU']" mode="x701-response">
    <xsl:call-template name="x701-text"><xsl:with-param name="slot" select="6"/></xsl:call-template>
    <w e="ResponsePdu"/>
  </xsl:template>
  <xsl:template match="*[name() = 'ZdtResponseParameter']" mode="x701-response">
    <xsl:apply-templates select="." mode="x701-response-parameter">
      <xsl:with-param name="level" select="1"/>
    </xsl:apply-templates>
  </xsl:template>

  <!-- A parameter's row comes before its children's: when its first child parameter
       opens, or at its own end when it has none. -->
  <xsl:template match="*" mode="x701-response-parameter">
    <xsl:param name="level"/>
    <xsl:if test="$level &gt; 1 and not(preceding-sibling::*[name() = 'ZdtResponseParameter'])">
      <p l="{$level - 1}"/>
    </xsl:if>
    <xsl:for-each select="*">
      <xsl:choose>
        <xsl:when test="name() = 'ZdtResponseParameter'">
          <xsl:apply-templates select="." mode="x701-response-parameter">
            <xsl:with-param name="level" select="$level + 1"/>
          </xsl:apply-templates>
        </xsl:when>
        <xsl:otherwise><xsl:apply-templates select="." mode="x701-parameter"/></xsl:otherwise>
      </xsl:choose>
    </xsl:for-each>
    <xsl:if test="not(*[name() = 'ZdtResponseParameter'])">
      <p l="{$level}"/>
    </xsl:if>
  </xsl:template>

  <!-- The fold: one call per event, the values as parameters. The events still to come
       are passed as a node-set: stepping to a following sibling inside a result tree
       fragment costs time that grows with the whole fragment. -->
  <xsl:template name="x701-fold">
    <xsl:param name="events"/>
    <xsl:variable name="e" select="$events[1]"/>
    <xsl:param name="s0" select="''"/>
    <xsl:param name="s1" select="''"/>
    <xsl:param name="s2" select="''"/>
    <xsl:param name="s3" select="''"/>
    <xsl:param name="s5" select="''"/>
    <xsl:param name="s6" select="''"/>
    <xsl:param name="s7" select="''"/>
    <xsl:param name="s8" select="''"/>
    <xsl:param name="s9" select="''"/>
    <xsl:param name="s10" select="''"/>
    <xsl:param name="s11" select="''"/>
    <xsl:param name="s12" select="''"/>
    <xsl:param name="s13" select="''"/>
    <xsl:param name="s14" select="''"/>
    <xsl:param name="s23" select="''"/>
    <xsl:param name="s24" select="''"/>
    <xsl:if test="$e/self::w or $e/self::p">
      <xsl:variable name="stamp" select="translate(concat('@', $s0, ' ', $s1), $unprintable, '')"/>
      <xsl:variable name="link" select="translate($s2, $unprintable, '')"/>
      <xsl:variable name="name" select="translate($s7, $unprintable, '')"/>
      <xsl:variable name="value" select="translate($s9, $unprintable, '')"/>
      <xsl:variable name="text" select="translate($s8, $unprintable, '')"/>
      <xsl:variable name="kind" select="string($e/@e)"/>
      <xsl:choose>
        <xsl:when test="$e/self::p">
          <xsl:call-template name="x701-row">
            <xsl:with-param name="k" select="0"/>
            <xsl:with-param name="f1" select="'    Response parameter'"/>
            <xsl:with-param name="f5" select="concat(str:padding(2 * ($e/@l - 1), ' '), $name)"/>
            <xsl:with-param name="f6" select="$value"/>
            <xsl:with-param name="f7" select="$text"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:when test="$kind = 'StartTrace'">
          <xsl:call-template name="x701-row">
            <xsl:with-param name="f1" select="'Start trace'"/>
            <xsl:with-param name="f5" select="translate($s5, $unprintable, '')"/>
            <xsl:with-param name="f7" select="$stamp"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:when test="$kind = 'StopTrace'">
          <xsl:call-template name="x701-row">
            <xsl:with-param name="f1" select="'Stop trace'"/>
            <xsl:with-param name="f7" select="$stamp"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:when test="$kind = 'OpenComPrimitive'">
          <xsl:call-template name="x701-row">
            <xsl:with-param name="k" select="1"/>
            <xsl:with-param name="f1" select="'OpenComPrimitive'"/>
            <xsl:with-param name="f2" select="$link"/>
            <xsl:with-param name="f5" select="translate($s3, $unprintable, '')"/>
            <xsl:with-param name="f6" select="'open ComPrimitive'"/>
            <xsl:with-param name="f7" select="$stamp"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:when test="$kind = 'CloseComPrimitive'">
          <xsl:call-template name="x701-row">
            <xsl:with-param name="k" select="1"/>
            <xsl:with-param name="f1" select="'CloseComPrimitive'"/>
            <xsl:with-param name="f2" select="$link"/>
            <xsl:with-param name="f6" select="'close ComPrimitive'"/>
            <xsl:with-param name="f7" select="$stamp"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:when test="$kind = 'OpenLogicalLink' or $kind = 'CloseLogicalLink'">
          <xsl:call-template name="x701-row">
            <xsl:with-param name="f1" select="$kind"/>
            <xsl:with-param name="f2" select="$link"/>
            <xsl:with-param name="f6" select="concat(substring('open', 1, 4 * ($kind = 'OpenLogicalLink')),
                                                     substring('close', 1, 5 * ($kind = 'CloseLogicalLink')),
                                                     ' logical link')"/>
            <xsl:with-param name="f7" select="$stamp"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:when test="$kind = 'Result'">
          <xsl:call-template name="x701-row">
            <xsl:with-param name="f1" select="'Result'"/>
            <xsl:with-param name="f2" select="$link"/>
            <xsl:with-param name="f5" select="'[Tester]'"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:when test="$kind = 'RequestName'">
          <xsl:call-template name="x701-row">
            <xsl:with-param name="f1" select="'  Request[ShortName]'"/>
            <xsl:with-param name="f5" select="translate($s5, $unprintable, '')"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:when test="$kind = 'RequestPdu'">
          <q pdu="{translate($s6, $unprintable, '')}" event="  Request PDU" description="RequestPDU"/>
        </xsl:when>
        <xsl:when test="$kind = 'ResponsePdu'">
          <q pdu="{translate($s6, $unprintable, '')}" event="  Response[PDU]" description="ResponsePDU"
             can-id="{translate($s23, $unprintable, '')}" time-stamp="{translate($s24, $unprintable, '')}"/>
        </xsl:when>
        <xsl:when test="$kind = 'RequestParameter'">
          <xsl:call-template name="x701-row">
            <xsl:with-param name="f1" select="'  Request parameter'"/>
            <xsl:with-param name="f5" select="$name"/>
            <xsl:with-param name="f6" select="$value"/>
            <xsl:with-param name="f7" select="$text"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:when test="$kind = 'Ecu'">
          <xsl:call-template name="x701-row">
            <xsl:with-param name="f1" select="'  Response [ECU]'"/>
            <xsl:with-param name="f5" select="concat('[', translate($s13, $unprintable, ''), ']')"/>
            <xsl:with-param name="f6" select="$name"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:when test="$kind = 'State'">
          <xsl:variable name="state" select="translate($s14, $unprintable, '')"/>
          <xsl:call-template name="x701-row">
            <xsl:with-param name="k" select="2 + ($state = 'notacknowledged')"/>
            <xsl:with-param name="f1" select="'  Response [STATE]'"/>
            <xsl:with-param name="f5" select="'Response state'"/>
            <xsl:with-param name="f6" select="concat(substring('not acknowledged', 1, 16 * ($state = 'notacknowledged')),
                                                     substring($state, 1, string-length($state) * ($state != 'notacknowledged')))"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:when test="$kind = 'Error'">
          <xsl:call-template name="x701-row">
            <xsl:with-param name="k" select="3"/>
            <xsl:with-param name="f1" select="'Error'"/>
            <xsl:with-param name="f5" select="translate($s10, $unprintable, '')"/>
            <xsl:with-param name="f6" select="$name"/>
          </xsl:call-template>
          <xsl:call-template name="x701-row">
            <xsl:with-param name="k" select="3"/>
            <xsl:with-param name="f1" select="'Error'"/>
            <xsl:with-param name="f5" select="'Severity info'"/>
            <xsl:with-param name="f6" select="translate(concat($s11, '[ ', $s12, ']'), $unprintable, '')"/>
          </xsl:call-template>
        </xsl:when>
      </xsl:choose>
    </xsl:if>
    <xsl:variable name="next" select="$events[position() &gt; 1]"/>
    <xsl:if test="$next">
      <!-- Infinity keeps a value whole; NaN empties it. -->
      <xsl:variable name="keep" select="number(not($e/self::c or $e/self::p)) div 0"/>
      <xsl:variable name="t" select="$e/self::t"/>
      <xsl:call-template name="x701-fold">
        <xsl:with-param name="events" select="$next"/>
        <xsl:with-param name="s0" select="concat(substring($s0, 1, $keep), $t[@n = 0])"/>
        <xsl:with-param name="s1" select="concat(substring($s1, 1, $keep), $t[@n = 1])"/>
        <xsl:with-param name="s2" select="concat(substring($s2, 1, $keep), $t[@n = 2])"/>
        <xsl:with-param name="s3" select="concat(substring($s3, 1, $keep), $t[@n = 3])"/>
        <xsl:with-param name="s5" select="concat(substring($s5, 1, $keep), $t[@n = 5])"/>
        <xsl:with-param name="s6" select="concat(substring($s6, 1, $keep), $t[@n = 6])"/>
        <xsl:with-param name="s7" select="concat(substring($s7, 1, $keep), $t[@n = 7])"/>
        <xsl:with-param name="s8" select="concat(substring($s8, 1, $keep), $t[@n = 8])"/>
        <xsl:with-param name="s9" select="concat(substring($s9, 1, $keep), $t[@n = 9])"/>
        <xsl:with-param name="s10" select="concat(substring($s10, 1, $keep), $t[@n = 10])"/>
        <xsl:with-param name="s11" select="concat(substring($s11, 1, $keep), $t[@n = 11])"/>
        <xsl:with-param name="s12" select="concat(substring($s12, 1, $keep), $t[@n = 12])"/>
        <xsl:with-param name="s13" select="concat(substring($s13, 1, $keep), $t[@n = 13])"/>
        <xsl:with-param name="s14" select="concat(substring($s14, 1, $keep), $t[@n = 14])"/>
        <xsl:with-param name="s23" select="concat(substring($s23, 1, $keep), $t[@n = 23])"/>
        <xsl:with-param name="s24" select="concat(substring($s24, 1, $keep), $t[@n = 24])"/>
      </xsl:call-template>
    </xsl:if>
  </xsl:template>

  <!-- Fields: Event, LogicalLink, CANID, Abs.Time, Description, Value, RangeInfo. -->
  <xsl:template name="x701-row">
    <xsl:param name="k" select="2"/>
    <xsl:param name="f1" select="''"/>
    <xsl:param name="f2" select="''"/>
    <xsl:param name="f3" select="''"/>
    <xsl:param name="f4" select="''"/>
    <xsl:param name="f5" select="''"/>
    <xsl:param name="f6" select="''"/>
    <xsl:param name="f7" select="''"/>
    <r k="{$k}"><c><xsl:value-of select="$f1"/></c><c><xsl:value-of select="$f2"/></c><c><xsl:value-of select="$f3"/></c><c><xsl:value-of select="$f4"/></c><c><xsl:value-of select="$f5"/></c><c><xsl:value-of select="$f6"/></c><c><xsl:value-of select="$f7"/></c></r>
  </xsl:template>

  <!-- A PDU of "NO PDU" makes no row; any other is cut into pieces of eight bytes. The
       cutter counts bytes: a character beyond ASCII stands for as many non-digits as its
       UTF-8 form has bytes. The templates below pass their results on as parameters
       rather than returning them, since a returned text is a tree fragment and many of
       those slow the processor down. -->
  <xsl:variable name="ascii-printable"
                select="concat(' !&quot;#$%&amp;()*+,-./0123456789:;&lt;=&gt;?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\]^_`abcdefghijklmnopqrstuvwxyz{|}~', &quot;'&quot;)"/>

  <xsl:template name="x701-pdu-rows">
    <xsl:param name="pdu"/>
    <xsl:param name="event"/>
    <xsl:param name="can-id" select="''"/>
    <xsl:param name="time-stamp" select="''"/>
    <xsl:param name="description"/>
    <xsl:if test="$pdu != 'NO PDU'">
      <xsl:choose>
        <xsl:when test="translate($pdu, $ascii-printable, '') = ''">
          <xsl:call-template name="x701-pdu-piece">
            <xsl:with-param name="rest" select="$pdu"/>
            <xsl:with-param name="walk" select="$pdu"/>
            <xsl:with-param name="event" select="$event"/>
            <xsl:with-param name="can-id" select="$can-id"/>
            <xsl:with-param name="time-stamp" select="$time-stamp"/>
            <xsl:with-param name="description" select="$description"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:otherwise>
          <xsl:call-template name="x701-percent-to-z">
            <xsl:with-param name="rest" select="str:encode-uri($pdu, true())"/>
            <xsl:with-param name="event" select="$event"/>
            <xsl:with-param name="can-id" select="$can-id"/>
            <xsl:with-param name="time-stamp" select="$time-stamp"/>
            <xsl:with-param name="description" select="$description"/>
          </xsl:call-template>
        </xsl:otherwise>
      </xsl:choose>
    </xsl:if>
  </xsl:template>

  <!-- Every %XX of the encoded text is one byte that is no digit. -->
  <xsl:template name="x701-percent-to-z">
    <xsl:param name="rest"/>
    <xsl:param name="done" select="''"/>
    <xsl:param name="event"/>
    <xsl:param name="can-id"/>
    <xsl:param name="time-stamp"/>
    <xsl:param name="description"/>
    <xsl:choose>
      <xsl:when test="contains($rest, '%')">
        <xsl:call-template name="x701-percent-to-z">
          <xsl:with-param name="rest" select="substring(substring-after($rest, '%'), 3)"/>
          <xsl:with-param name="done" select="concat($done, substring-before($rest, '%'), 'z')"/>
          <xsl:with-param name="event" select="$event"/>
          <xsl:with-param name="can-id" select="$can-id"/>
          <xsl:with-param name="time-stamp" select="$time-stamp"/>
          <xsl:with-param name="description" select="$description"/>
        </xsl:call-template>
      </xsl:when>
      <xsl:otherwise>
        <xsl:call-template name="x701-pdu-piece">
          <xsl:with-param name="rest" select="concat($done, $rest)"/>
          <xsl:with-param name="walk" select="concat($done, $rest)"/>
          <xsl:with-param name="event" select="$event"/>
          <xsl:with-param name="can-id" select="$can-id"/>
          <xsl:with-param name="time-stamp" select="$time-stamp"/>
          <xsl:with-param name="description" select="$description"/>
        </xsl:call-template>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <!-- One piece: digits as they stand, one blank after a digit for any other character,
       up to 23 characters; its row, then the next piece from what is left. The cut drops
       as many characters as the piece holds, not as many as it walked. -->
  <xsl:template name="x701-pdu-piece">
    <xsl:param name="rest"/>
    <xsl:param name="walk"/>
    <xsl:param name="piece" select="''"/>
    <xsl:param name="event"/>
    <xsl:param name="can-id"/>
    <xsl:param name="time-stamp"/>
    <xsl:param name="description"/>
    <xsl:choose>
      <xsl:when test="$walk = '' or string-length($piece) &gt;= 23">
        <xsl:if test="$piece != ''">
          <xsl:call-template name="x701-row">
            <xsl:with-param name="f1" select="$event"/>
            <xsl:with-param name="f3" select="$can-id"/>
            <xsl:with-param name="f4" select="$time-stamp"/>
            <xsl:with-param name="f5" select="$description"/>
            <xsl:with-param name="f6" select="$piece"/>
          </xsl:call-template>
          <xsl:variable name="left" select="substring($rest, string-length($piece) + 1)"/>
          <xsl:call-template name="x701-pdu-piece">
            <xsl:with-param name="rest" select="$left"/>
            <xsl:with-param name="walk" select="$left"/>
            <xsl:with-param name="event" select="$event"/>
            <xsl:with-param name="can-id" select="$can-id"/>
            <xsl:with-param name="time-stamp" select="$time-stamp"/>
            <xsl:with-param name="description" select="$description"/>
          </xsl:call-template>
        </xsl:if>
      </xsl:when>
      <xsl:otherwise>
        <xsl:variable name="c" select="substring($walk, 1, 1)"/>
        <xsl:variable name="digit" select="contains($hex-digits, $c)"/>
        <xsl:variable name="after-digit"
                      select="$piece != '' and contains($hex-digits, substring($piece, string-length($piece), 1))"/>
        <xsl:call-template name="x701-pdu-piece">
          <xsl:with-param name="rest" select="$rest"/>
          <xsl:with-param name="walk" select="substring($walk, 2)"/>
          <xsl:with-param name="piece"
                          select="concat($piece, substring($c, 1, number($digit)), substring(' ', 1, number(not($digit) and $after-digit)))"/>
          <xsl:with-param name="event" select="$event"/>
          <xsl:with-param name="can-id" select="$can-id"/>
          <xsl:with-param name="time-stamp" select="$time-stamp"/>
          <xsl:with-param name="description" select="$description"/>
        </xsl:call-template>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>

</xsl:stylesheet>

<?xml version="1.0" encoding="UTF-8"?>
<!-- The rows of a process value trace of schema 7.02, exactly as the list builds them.

     Every child of Trace but VariantSelected and VariantDetected begins by emptying every
     value the rows read; those two only add to theirs (see x702-variant-carry). Inside a
     child values pile up from element to element until the next element that empties
     them, and errors wait for the next flush: the child is first turned into a flat list
     of events in document order (x702-events), then folded over with the values as
     parameters (x702-fold), which is how the rows come out. The parameter level that
     sets the indent follows the nesting and travels on the events. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:xalan="http://xml.apache.org/xalan"
                xmlns:str="http://exslt.org/strings" exclude-result-prefixes="xalan str">

  <xsl:include href="../common/xpvt_common.xsl"/>

  <xsl:template name="export-titles">
    <c w="30">Line</c><c w="150">Event</c><c w="160">LogicalLink</c><c w="160">Location</c><c w="40">ID</c>
    <c w="110">Time</c><c w="200">Description</c><c w="200">Value</c><c w="40">Unit</c><c w="120">RangeInfo</c>
  </xsl:template>

  <!-- One tree of events for all children, then one fold per child. Message lines are
       cut after the fold from a <q> that stands in for them, so that the fold's
       recursion stays shallow and its time linear. Each parameter's events stand in an
       <s> of their own: the processor appends a child in time that grows with the
       children already there, so long runs of siblings in a tree fragment cost the
       square of their length. -->
  <xsl:template name="export-rows">
    <xsl:variable name="events-tree">
      <xsl:for-each select="/*[name() = 'ProcessValueTrace']/*[name() = 'Trace']/*">
        <g><xsl:apply-templates select="." mode="x702-trace"/></g>
      </xsl:for-each>
    </xsl:variable>
    <xsl:variable name="folded-tree">
      <xsl:for-each select="xalan:nodeset($events-tree)/g[*]">
        <xsl:call-template name="x702-fold">
          <xsl:with-param name="events" select=".//*[not(self::s)]"/>
        </xsl:call-template>
      </xsl:for-each>
    </xsl:variable>
    <xsl:for-each select="xalan:nodeset($folded-tree)/*">
      <xsl:choose>
        <xsl:when test="self::q"><xsl:apply-templates select="." mode="x702-message"/></xsl:when>
        <xsl:otherwise><xsl:copy-of select="."/></xsl:otherwise>
      </xsl:choose>
    </xsl:for-each>
  </xsl:template>

  <!-- Events: <c/> empties every value; <t n="slot"> adds text to a value; <h> adds a
       name to the chain of parent primitives; <d/> notes that the message rows are due
       no more; <w e="kind"/> makes the rows of that kind; <z e="kind"> the row of a
       variant right under Trace, its value with it; <f l="level"/> writes the errors
       gathered so far; <m e="Request|Response" l="level"/> the message rows unless <d/>
       came first; <v e="side" l="level"/> ends a Value (s="1": its parameter's row is
       left out, a child response parameter came before it). -->

  <xsl:template name="x702-text">
    <xsl:param name="slot"/>
    <xsl:if test="text()">
      <t n="{$slot}"><xsl:call-template name="own-text"/></t>
    </xsl:if>
  </xsl:template>

  <xsl:template name="x702-attribute">
    <xsl:param name="slot"/>
    <xsl:param name="value"/>
    <xsl:if test="string($value) != ''">
      <t n="{$slot}"><xsl:value-of select="$value"/></t>
    </xsl:if>
  </xsl:template>

  <xsl:template match="*" mode="x702-trace"/>

  <xsl:template match="*[name() = 'StartTrace']" mode="x702-trace">
    <c/>
    <xsl:call-template name="x702-attribute">
      <xsl:with-param name="slot" select="25"/><xsl:with-param name="value" select="@DateTime"/>
    </xsl:call-template>
    <xsl:for-each select="*">
      <xsl:choose>
        <xsl:when test="name() = 'PhysicalInterfaceLink'">
          <xsl:call-template name="x702-text"><xsl:with-param name="slot" select="4"/></xsl:call-template>
        </xsl:when>
        <xsl:when test="name() = 'PhysicalVehicleLink'">
          <xsl:call-template name="x702-text"><xsl:with-param name="slot" select="26"/></xsl:call-template>
        </xsl:when>
      </xsl:choose>
    </xsl:for-each>
    <w e="StartTrace"/>
  </xsl:template>

  <xsl:template match="*[name() = 'StopTrace']" mode="x702-trace">
    <c/>
    <xsl:call-template name="x702-attribute">
      <xsl:with-param name="slot" select="25"/><xsl:with-param name="value" select="@DateTime"/>
    </xsl:call-template>
    <w e="StopTrace"/>
  </xsl:template>

  <xsl:template match="*[name() = 'OpenLogicalLink' or name() = 'CloseLogicalLink']" mode="x702-trace">
    <c/>
    <xsl:apply-templates select="*" mode="x702-link-event"/>
    <w e="{name()}"/>
  </xsl:template>

  <xsl:template match="*[name() = 'StartDiagComPrimitive']" mode="x702-trace">
    <c/>
    <xsl:apply-templates select="*" mode="x702-primitive-event">
      <xsl:with-param name="head" select="'PrimitiveStart'"/>
    </xsl:apply-templates>
  </xsl:template>

  <xsl:template match="*[name() = 'FinishDiagComPrimitive']" mode="x702-trace">
    <c/>
    <xsl:for-each select="*">
      <xsl:choose>
        <xsl:when test="name() = 'VariantDetected'">
          <xsl:call-template name="x702-text"><xsl:with-param name="slot" select="30"/></xsl:call-template>
          <w e="VariantDetectedInFinish"/>
        </xsl:when>
        <xsl:when test="name() = 'VariantSelected'">
          <xsl:call-template name="x702-text"><xsl:with-param name="slot" select="31"/></xsl:call-template>
          <w e="VariantSelectedInFinish"/>
        </xsl:when>
        <xsl:otherwise>
          <xsl:apply-templates select="." mode="x702-primitive-event">
            <xsl:with-param name="head" select="'PrimitiveFinish'"/>
          </xsl:apply-templates>
        </xsl:otherwise>
      </xsl:choose>
    </xsl:for-each>
  </xsl:template>

  <xsl:template match="*[name() = 'VariantDetected' or name() = 'VariantSelected']" mode="x702-trace">
    <xsl:variable name="value">
      <xsl:call-template name="x702-variant-carry">
        <xsl:with-param name="from" select="."/>
        <xsl:with-param name="kind" select="name()"/>
      </xsl:call-template>
      <xsl:call-template name="own-text"/>
    </xsl:variable>
    <z e="{name()}"><xsl:value-of select="$value"/></z>
  </xsl:template>

  <!-- What a variant right under Trace finds in its value before its own text: the texts
       of the variants of its kind back to the last child of Trace that emptied the
       values, and those of that child's own variants if it is a FinishDiagComPrimitive.
       Other elements (the other kind of variant, unknown ones) leave the value alone. -->
  <xsl:template name="x702-variant-carry">
    <xsl:param name="from"/>
    <xsl:param name="kind"/>
    <xsl:variable name="p" select="$from/preceding-sibling::*[1]"/>
    <xsl:variable name="n" select="name($p)"/>
    <xsl:choose>
      <xsl:when test="not($p)"/>
      <xsl:when test="$n = $kind">
        <xsl:call-template name="x702-variant-carry">
          <xsl:with-param name="from" select="$p"/>
          <xsl:with-param name="kind" select="$kind"/>
        </xsl:call-template>
        <xsl:for-each select="$p"><xsl:call-template name="own-text"/></xsl:for-each>
      </xsl:when>
      <xsl:when test="$n = 'FinishDiagComPrimitive'">
        <xsl:for-each select="$p/*[name() = $kind]"><xsl:call-template name="own-text"/></xsl:for-each>
      </xsl:when>
      <xsl:when test="$n = 'StartTrace' or $n = 'StopTrace' or $n = 'OpenLogicalLink' or $n = 'CloseLogicalLink'
                      or $n = 'StartDiagComPrimitive' or $n = 'Result'"/>
      <xsl:otherwise>
        <xsl:call-template name="x702-variant-carry">
          <xsl:with-param name="from" select="$p"/>
          <xsl:with-param name="kind" select="$kind"/>
        </xsl:call-template>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <!-- TimeStamp, LogicalLink and AccessKeyOfLocation: under link and primitive events. -->
  <xsl:template match="*" mode="x702-link-event"/>
  <xsl:template match="*[name() = 'TimeStamp']" mode="x702-link-event">
    <xsl:call-template name="x702-text"><xsl:with-param name="slot" select="24"/></xsl:call-template>
  </xsl:template>
  <xsl:template match="*[name() = 'LogicalLink']" mode="x702-link-event">
    <xsl:call-template name="x702-logical-link"/>
  </xsl:template>
  <xsl:template match="*[name() = 'AccessKeyOfLocation']" mode="x702-link-event">
    <xsl:call-template name="x702-text"><xsl:with-param name="slot" select="27"/></xsl:call-template>
  </xsl:template>

  <xsl:template name="x702-logical-link">
    <xsl:call-template name="x702-attribute">
      <xsl:with-param name="slot" select="2"/><xsl:with-param name="value" select="@ShortName"/>
    </xsl:call-template>
  </xsl:template>

  <xsl:template match="*" mode="x702-primitive-event">
    <xsl:apply-templates select="." mode="x702-link-event"/>
  </xsl:template>
  <xsl:template match="*[name() = 'ParentDiagComPrimitives']" mode="x702-primitive-event">
    <xsl:call-template name="x702-parents"/>
  </xsl:template>
  <xsl:template match="*[name() = 'DiagComPrimitive']" mode="x702-primitive-event">
    <xsl:param name="head"/>
    <xsl:call-template name="x702-primitive">
      <xsl:with-param name="head" select="$head"/>
    </xsl:call-template>
  </xsl:template>

  <xsl:template name="x702-parents">
    <xsl:for-each select="*[name() = 'DiagComPrimitive']">
      <h><xsl:value-of select="@ShortName"/></h>
    </xsl:for-each>
  </xsl:template>

  <!-- The primitive's rows come at its start, from what stands before it. -->
  <xsl:template name="x702-primitive">
    <xsl:param name="head"/>
    <xsl:call-template name="x702-attribute">
      <xsl:with-param name="slot" select="7"/><xsl:with-param name="value" select="@ShortName"/>
    </xsl:call-template>
    <xsl:call-template name="x702-attribute">
      <xsl:with-param name="slot" select="28"/><xsl:with-param name="value" select="@ID"/>
    </xsl:call-template>
    <xsl:call-template name="x702-attribute">
      <xsl:with-param name="slot" select="29"/><xsl:with-param name="value" select="@ObjectType"/>
    </xsl:call-template>
    <w e="{$head}"/>
  </xsl:template>

  <xsl:template name="x702-error">
    <xsl:call-template name="x702-attribute">
      <xsl:with-param name="slot" select="37"/><xsl:with-param name="value" select="@Code"/>
    </xsl:call-template>
    <xsl:for-each select="*">
      <xsl:choose>
        <xsl:when test="name() = 'CodeDescription'">
          <xsl:call-template name="x702-text"><xsl:with-param name="slot" select="10"/></xsl:call-template>
        </xsl:when>
        <xsl:when test="name() = 'VendorCode'">
          <xsl:call-template name="x702-text"><xsl:with-param name="slot" select="38"/></xsl:call-template>
        </xsl:when>
        <xsl:when test="name() = 'VendorCodeDescription'">
          <xsl:call-template name="x702-text"><xsl:with-param name="slot" select="39"/></xsl:call-template>
        </xsl:when>
      </xsl:choose>
    </xsl:for-each>
  </xsl:template>

  <!-- Result: level 1; Request and Response: level 2; parameters from 3 on. -->
  <xsl:template match="*[name() = 'Result']" mode="x702-trace">
    <c/>
    <xsl:for-each select="*">
      <xsl:choose>
        <xsl:when test="name() = 'LogicalLink'"><xsl:call-template name="x702-logical-link"/></xsl:when>
        <xsl:when test="name() = 'ParentDiagComPrimitives'"><xsl:call-template name="x702-parents"/></xsl:when>
        <xsl:when test="name() = 'DiagComPrimitive'">
          <xsl:call-template name="x702-primitive"><xsl:with-param name="head" select="'PrimitiveResult'"/></xsl:call-template>
        </xsl:when>
        <xsl:when test="name() = 'Error'"><xsl:call-template name="x702-error"/></xsl:when>
        <xsl:when test="name() = 'Request'"><xsl:call-template name="x702-request"/></xsl:when>
        <xsl:when test="name() = 'Response'"><xsl:call-template name="x702-response"/></xsl:when>
      </xsl:choose>
    </xsl:for-each>
    <f l="1"/>
  </xsl:template>

  <xsl:template name="x702-request">
    <f l="1"/>
    <c/>
    <xsl:call-template name="x702-attribute">
      <xsl:with-param name="slot" select="5"/><xsl:with-param name="value" select="@ShortName"/>
    </xsl:call-template>
    <xsl:for-each select="*">
      <xsl:choose>
        <xsl:when test="name() = 'TimeStamp'">
          <xsl:call-template name="x702-text"><xsl:with-param name="slot" select="24"/></xsl:call-template>
        </xsl:when>
        <xsl:when test="name() = 'Error'"><xsl:call-template name="x702-error"/></xsl:when>
        <xsl:when test="name() = 'RequestMessage'">
          <xsl:call-template name="x702-text"><xsl:with-param name="slot" select="34"/></xsl:call-template>
        </xsl:when>
        <xsl:when test="name() = 'RequestParameter'">
          <s><xsl:call-template name="x702-parameter">
            <xsl:with-param name="side" select="'Request'"/><xsl:with-param name="level" select="3"/>
          </xsl:call-template></s>
        </xsl:when>
      </xsl:choose>
    </xsl:for-each>
    <m e="Request" l="2"/>
    <f l="2"/>
  </xsl:template>

  <xsl:template name="x702-response">
    <f l="1"/>
    <c/>
    <xsl:call-template name="x702-attribute">
      <xsl:with-param name="slot" select="7"/><xsl:with-param name="value" select="@ShortName"/>
    </xsl:call-template>
    <xsl:for-each select="*">
      <xsl:choose>
        <xsl:when test="name() = 'TimeStamp'">
          <xsl:call-template name="x702-text"><xsl:with-param name="slot" select="24"/></xsl:call-template>
        </xsl:when>
        <xsl:when test="name() = 'AccessKeyOfLocation'">
          <xsl:call-template name="x702-text"><xsl:with-param name="slot" select="27"/></xsl:call-template>
        </xsl:when>
        <xsl:when test="name() = 'LocationAddress'">
          <xsl:call-template name="x702-text"><xsl:with-param name="slot" select="32"/></xsl:call-template>
        </xsl:when>
        <xsl:when test="name() = 'Error'"><xsl:call-template name="x702-error"/></xsl:when>
        <xsl:when test="name() = 'ResponseMessage'">
          <xsl:call-template name="x702-text"><xsl:with-param name="slot" select="35"/></xsl:call-template>
        </xsl:when>
        <xsl:when test="name() = 'ResponseParameter'">
          <s><xsl:call-template name="x702-parameter">
            <xsl:with-param name="side" select="'Response'"/><xsl:with-param name="level" select="3"/>
          </xsl:call-template></s>
        </xsl:when>
      </xsl:choose>
    </xsl:for-each>
    <m e="Response" l="2"/>
    <f l="2"/>
  </xsl:template>

  <!-- A parameter at $level. A response parameter's errors at its end are written one
       level up, a request parameter's at its own. A response parameter's Value that
       follows a child parameter (with no Value between) makes no row. -->
  <xsl:template name="x702-parameter">
    <xsl:param name="side"/>
    <xsl:param name="level"/>
    <m e="{$side}" l="{$level - 1}"/>
    <f l="{$level - 1}"/>
    <c/>
    <d/>
    <xsl:call-template name="x702-attribute">
      <xsl:with-param name="slot" select="7"/><xsl:with-param name="value" select="@ShortName"/>
    </xsl:call-template>
    <xsl:call-template name="x702-attribute">
      <xsl:with-param name="slot" select="41"/><xsl:with-param name="value" select="@Type"/>
    </xsl:call-template>
    <xsl:variable name="child" select="concat($side, 'Parameter')"/>
    <xsl:for-each select="*">
      <xsl:choose>
        <xsl:when test="name() = 'Unit'">
          <xsl:call-template name="x702-text"><xsl:with-param name="slot" select="33"/></xsl:call-template>
        </xsl:when>
        <xsl:when test="name() = 'ValueRangeInfo'">
          <xsl:call-template name="x702-attribute">
            <xsl:with-param name="slot" select="43"/><xsl:with-param name="value" select="@Type"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:when test="name() = 'Value'">
          <xsl:call-template name="x702-attribute">
            <xsl:with-param name="slot" select="42"/><xsl:with-param name="value" select="@Radix"/>
          </xsl:call-template>
          <xsl:for-each select="*[name() = 'ValueAsString']">
            <xsl:call-template name="x702-text"><xsl:with-param name="slot" select="36"/></xsl:call-template>
          </xsl:for-each>
          <v e="{$child}" l="{$level}">
            <xsl:if test="$side = 'Response'
                          and preceding-sibling::*[name() = 'Value' or name() = 'ResponseParameter'][1][name() = 'ResponseParameter']">
              <xsl:attribute name="s">1</xsl:attribute>
            </xsl:if>
          </v>
        </xsl:when>
        <xsl:when test="name() = 'Error'"><xsl:call-template name="x702-error"/></xsl:when>
        <xsl:when test="name() = $child">
          <s><xsl:call-template name="x702-parameter">
            <xsl:with-param name="side" select="$side"/><xsl:with-param name="level" select="$level + 1"/>
          </xsl:call-template></s>
        </xsl:when>
      </xsl:choose>
    </xsl:for-each>
    <d/>
    <f l="{$level - ($side = 'Response')}"/>
  </xsl:template>

  <!-- Indents: two blanks a level above the first. -->
  <xsl:variable name="x702-blanks-run" select="str:padding(2000, ' ')"/>

  <!-- The fold: one call per event, the values as parameters. The events still to come
       are passed as a node-set: stepping to a following sibling inside a result tree
       fragment costs time that grows with the whole fragment. -->
  <xsl:template name="x702-fold">
    <xsl:param name="events"/>
    <xsl:param name="i" select="1"/>
    <xsl:variable name="e" select="$events[$i]"/>
    <xsl:param name="s2" select="''"/>
    <xsl:param name="s4" select="''"/>
    <xsl:param name="s5" select="''"/>
    <xsl:param name="s7" select="''"/>
    <xsl:param name="s10" select="''"/>
    <xsl:param name="s24" select="''"/>
    <xsl:param name="s25" select="''"/>
    <xsl:param name="s26" select="''"/>
    <xsl:param name="s27" select="''"/>
    <xsl:param name="s28" select="''"/>
    <xsl:param name="s29" select="''"/>
    <xsl:param name="s30" select="''"/>
    <xsl:param name="s31" select="''"/>
    <xsl:param name="s32" select="''"/>
    <xsl:param name="s33" select="''"/>
    <xsl:param name="s34" select="''"/>
    <xsl:param name="s35" select="''"/>
    <xsl:param name="s36" select="''"/>
    <xsl:param name="s37" select="''"/>
    <xsl:param name="s38" select="''"/>
    <xsl:param name="s39" select="''"/>
    <xsl:param name="s41" select="''"/>
    <xsl:param name="s42" select="''"/>
    <xsl:param name="s43" select="''"/>
    <xsl:param name="s46" select="''"/>
    <xsl:param name="s47" select="''"/>
    <xsl:variable name="indent" select="substring($x702-blanks-run, 1, 2 * ($e/@l - 1))"/>
    <xsl:variable name="link" select="translate($s2, $unprintable, '')"/>
    <xsl:variable name="name" select="translate($s7, $unprintable, '')"/>
    <xsl:variable name="object-type" select="translate($s29, $unprintable, '')"/>
    <xsl:variable name="chain" select="translate($s46, $unprintable, '')"/>
    <xsl:variable name="kind" select="string($e/@e)"/>
    <!-- A Value: the text its radix makes of it, before its row. -->
    <xsl:variable name="converted">
      <xsl:if test="$e/self::v">
        <xsl:call-template name="x702-convert-value">
          <xsl:with-param name="value" select="$s36"/>
          <xsl:with-param name="radix" select="$s42"/>
        </xsl:call-template>
      </xsl:if>
    </xsl:variable>
    <xsl:choose>
      <xsl:when test="$e/self::w">
        <xsl:choose>
          <xsl:when test="$kind = 'StartTrace'">
            <xsl:call-template name="x702-row">
              <xsl:with-param name="f1" select="'Start Trace'"/>
              <xsl:with-param name="f2" select="translate(concat($s4, ' ', $s26), $unprintable, '')"/>
              <xsl:with-param name="f5" select="translate($s25, $unprintable, '')"/>
            </xsl:call-template>
          </xsl:when>
          <xsl:when test="$kind = 'StopTrace'">
            <xsl:call-template name="x702-row">
              <xsl:with-param name="f1" select="'Stop Trace'"/>
              <xsl:with-param name="f5" select="translate($s25, $unprintable, '')"/>
            </xsl:call-template>
          </xsl:when>
          <xsl:when test="$kind = 'OpenLogicalLink' or $kind = 'CloseLogicalLink'">
            <xsl:call-template name="x702-row">
              <xsl:with-param name="f1" select="$kind"/>
              <xsl:with-param name="f2" select="$link"/>
              <xsl:with-param name="f3" select="translate($s27, $unprintable, '')"/>
              <xsl:with-param name="f5" select="translate($s24, $unprintable, '')"/>
            </xsl:call-template>
          </xsl:when>
          <xsl:when test="$kind = 'VariantDetectedInFinish'">
            <xsl:call-template name="x702-row">
              <xsl:with-param name="f1" select="'  VariantDetected'"/>
              <xsl:with-param name="f3" select="translate($s30, $unprintable, '')"/>
            </xsl:call-template>
          </xsl:when>
          <xsl:when test="$kind = 'VariantSelectedInFinish'">
            <xsl:call-template name="x702-row">
              <xsl:with-param name="f1" select="'  VariantSelected'"/>
              <xsl:with-param name="f3" select="translate($s31, $unprintable, '')"/>
            </xsl:call-template>
          </xsl:when>
          <xsl:otherwise>
            <!-- The head row of a primitive, the chain of its parents, the primitive. -->
            <xsl:choose>
              <xsl:when test="$kind = 'PrimitiveResult'">
                <xsl:call-template name="x702-row">
                  <xsl:with-param name="f1" select="concat('Result [', $object-type, ']')"/>
                  <xsl:with-param name="f2" select="$link"/>
                  <xsl:with-param name="f4" select="translate($s28, $unprintable, '')"/>
                </xsl:call-template>
              </xsl:when>
              <xsl:otherwise>
                <xsl:call-template name="x702-row">
                  <xsl:with-param name="k" select="1"/>
                  <xsl:with-param name="f1" select="concat(substring('Start [', 1, 7 * ($kind = 'PrimitiveStart')),
                                                           substring('Stop [', 1, 6 * ($kind = 'PrimitiveFinish')),
                                                           $object-type, ']')"/>
                  <xsl:with-param name="f2" select="$link"/>
                  <xsl:with-param name="f3" select="translate($s27, $unprintable, '')"/>
                  <xsl:with-param name="f4" select="translate($s28, $unprintable, '')"/>
                  <xsl:with-param name="f5" select="translate($s24, $unprintable, '')"/>
                  <xsl:with-param name="f7" select="$name"/>
                </xsl:call-template>
              </xsl:otherwise>
            </xsl:choose>
            <xsl:if test="$s46 != ''">
              <xsl:call-template name="x702-row">
                <xsl:with-param name="f1" select="'   Called by'"/>
                <xsl:with-param name="f7" select="$chain"/>
              </xsl:call-template>
            </xsl:if>
            <xsl:call-template name="x702-row">
              <xsl:with-param name="f1" select="'  DiagComPrimitive'"/>
              <xsl:with-param name="f4" select="translate($s28, $unprintable, '')"/>
              <xsl:with-param name="f6" select="concat($name, ':', $object-type)"/>
              <xsl:with-param name="f7">
                <xsl:call-template name="x702-cut-three-bytes"><xsl:with-param name="text" select="$chain"/></xsl:call-template>
              </xsl:with-param>
            </xsl:call-template>
          </xsl:otherwise>
        </xsl:choose>
      </xsl:when>
      <xsl:when test="$e/self::z">
        <xsl:call-template name="x702-row">
          <xsl:with-param name="f1" select="$kind"/>
          <xsl:with-param name="f3" select="translate($e, $unprintable, '')"/>
        </xsl:call-template>
      </xsl:when>
      <xsl:when test="$e/self::f">
        <xsl:variable name="code" select="translate($s37, $unprintable, '')"/>
        <xsl:variable name="description" select="translate($s10, $unprintable, '')"/>
        <xsl:variable name="vendor" select="translate($s38, $unprintable, '')"/>
        <xsl:variable name="vendor-description" select="translate($s39, $unprintable, '')"/>
        <xsl:if test="concat($code, $description, $vendor, $vendor-description) != ''">
          <xsl:call-template name="x702-row">
            <xsl:with-param name="k" select="3"/>
            <xsl:with-param name="f1" select="concat($indent, 'Error')"/>
            <xsl:with-param name="f4" select="$code"/>
            <xsl:with-param name="f6" select="$description"/>
          </xsl:call-template>
          <xsl:if test="concat($vendor, $vendor-description) != ''">
            <xsl:call-template name="x702-row">
              <xsl:with-param name="k" select="3"/>
              <xsl:with-param name="f1" select="concat($indent, 'Error (Vendor)')"/>
              <xsl:with-param name="f2" select="$link"/>
              <xsl:with-param name="f4" select="$vendor"/>
              <xsl:with-param name="f6" select="$vendor-description"/>
            </xsl:call-template>
          </xsl:if>
        </xsl:if>
      </xsl:when>
      <xsl:when test="$e/self::m">
        <xsl:if test="$s47 = ''">
          <q e="{$kind}" indent="{$indent}" time="{translate($s24, $unprintable, '')}"
             location="{translate($s27, $unprintable, '')}" address="{translate($s32, $unprintable, '')}">
            <xsl:attribute name="name">
              <xsl:choose>
                <xsl:when test="$kind = 'Request'"><xsl:value-of select="translate($s5, $unprintable, '')"/></xsl:when>
                <xsl:otherwise><xsl:value-of select="$name"/></xsl:otherwise>
              </xsl:choose>
            </xsl:attribute>
            <xsl:attribute name="hex">
              <xsl:choose>
                <xsl:when test="$kind = 'Request'">
                  <xsl:value-of select="translate(translate($s34, translate($s34, $hex-digits, ''), ''), 'abcdef', 'ABCDEF')"/>
                </xsl:when>
                <xsl:otherwise>
                  <xsl:value-of select="translate(translate($s35, translate($s35, $hex-digits, ''), ''), 'abcdef', 'ABCDEF')"/>
                </xsl:otherwise>
              </xsl:choose>
            </xsl:attribute>
          </q>
        </xsl:if>
      </xsl:when>
      <xsl:when test="$e/self::v">
        <xsl:if test="not($e/@s)">
          <xsl:call-template name="x702-row">
            <xsl:with-param name="k" select="2 * ($kind = 'RequestParameter')"/>
            <xsl:with-param name="f1" select="concat($indent, 'Parameter [', translate($s41, $unprintable, ''), ']')"/>
            <xsl:with-param name="f6" select="$name"/>
            <xsl:with-param name="f7" select="translate($converted, $unprintable, '')"/>
            <xsl:with-param name="f8" select="translate($s33, $unprintable, '')"/>
            <xsl:with-param name="f9" select="translate($s43, $unprintable, '')"/>
          </xsl:call-template>
        </xsl:if>
      </xsl:when>
    </xsl:choose>
    <xsl:if test="$i &lt; count($events)">
      <!-- Infinity keeps a value whole; NaN empties it. -->
      <xsl:variable name="keep" select="number(not($e/self::c)) div 0"/>
      <xsl:variable name="keep-errors" select="number(not($e/self::c or $e/self::f)) div 0"/>
      <xsl:variable name="t" select="$e/self::t"/>
      <xsl:variable name="h" select="$e/self::h"/>
      <xsl:variable name="primitive" select="boolean($e/self::w[starts-with(@e, 'Primitive')])"/>
      <xsl:call-template name="x702-fold">
        <xsl:with-param name="events" select="$events"/>
        <xsl:with-param name="i" select="$i + 1"/>
        <xsl:with-param name="s2" select="concat(substring($s2, 1, $keep), $t[@n = 2])"/>
        <xsl:with-param name="s4" select="concat(substring($s4, 1, $keep), $t[@n = 4])"/>
        <xsl:with-param name="s5" select="concat(substring($s5, 1, $keep), $t[@n = 5])"/>
        <xsl:with-param name="s7" select="concat(substring($s7, 1, $keep), $t[@n = 7])"/>
        <xsl:with-param name="s10" select="concat(substring($s10, 1, $keep-errors), $t[@n = 10])"/>
        <xsl:with-param name="s24" select="concat(substring($s24, 1, $keep), $t[@n = 24])"/>
        <xsl:with-param name="s25" select="concat(substring($s25, 1, $keep), $t[@n = 25])"/>
        <xsl:with-param name="s26" select="concat(substring($s26, 1, $keep), $t[@n = 26])"/>
        <xsl:with-param name="s27" select="concat(substring($s27, 1, $keep), $t[@n = 27])"/>
        <xsl:with-param name="s28" select="concat(substring($s28, 1, $keep), $t[@n = 28])"/>
        <xsl:with-param name="s29" select="concat(substring($s29, 1, $keep), $t[@n = 29])"/>
        <xsl:with-param name="s30" select="concat(substring($s30, 1, $keep), $t[@n = 30])"/>
        <xsl:with-param name="s31" select="concat(substring($s31, 1, $keep), $t[@n = 31])"/>
        <xsl:with-param name="s32" select="concat(substring($s32, 1, $keep), $t[@n = 32])"/>
        <xsl:with-param name="s33" select="concat(substring($s33, 1, $keep), $t[@n = 33])"/>
        <xsl:with-param name="s34" select="concat(substring($s34, 1, $keep), $t[@n = 34])"/>
        <xsl:with-param name="s35" select="concat(substring($s35, 1, $keep), $t[@n = 35])"/>
        <xsl:with-param name="s36">
          <xsl:choose>
            <!-- A row cleans the value it shows, in place. -->
            <xsl:when test="$e/self::v and not($e/@s)"><xsl:value-of select="translate($converted, $unprintable, '')"/></xsl:when>
            <xsl:when test="$e/self::v"><xsl:value-of select="$converted"/></xsl:when>
            <xsl:otherwise><xsl:value-of select="concat(substring($s36, 1, $keep), $t[@n = 36])"/></xsl:otherwise>
          </xsl:choose>
        </xsl:with-param>
        <xsl:with-param name="s37" select="concat(substring($s37, 1, $keep-errors), $t[@n = 37])"/>
        <xsl:with-param name="s38" select="concat(substring($s38, 1, $keep-errors), $t[@n = 38])"/>
        <xsl:with-param name="s39" select="concat(substring($s39, 1, $keep-errors), $t[@n = 39])"/>
        <xsl:with-param name="s41" select="concat(substring($s41, 1, $keep), $t[@n = 41])"/>
        <xsl:with-param name="s42" select="concat(substring($s42, 1, $keep), $t[@n = 42])"/>
        <xsl:with-param name="s43" select="concat(substring($s43, 1, $keep), $t[@n = 43])"/>
        <!-- The primitive rows clean the chain in place: what is left decides the next
             "Called by" row and the next "-\->". -->
        <xsl:with-param name="s46"
                        select="concat(substring($s46, 1, $keep * not($primitive)), substring($chain, 1, $keep * $primitive),
                                       substring('-->', 1, 3 * ($s46 != '' and $h)), $h)"/>
        <xsl:with-param name="s47"
                        select="concat(substring($s47, 1, $keep), substring('RequestResponse', 1, 15 * boolean($e/self::d or $e/self::v)))"/>
      </xsl:call-template>
    </xsl:if>
  </xsl:template>

  <!-- Radix 10 shows the value as it stands, 16 as "$" and the hexadecimal of its decimal
       reading, any other radix as nothing; without a radix the value is kept. -->
  <xsl:template name="x702-convert-value">
    <xsl:param name="value"/>
    <xsl:param name="radix"/>
    <xsl:choose>
      <xsl:when test="$radix = ''"><xsl:value-of select="$value"/></xsl:when>
      <xsl:otherwise>
        <xsl:variable name="r">
          <xsl:call-template name="x702-atoi"><xsl:with-param name="text" select="$radix"/></xsl:call-template>
        </xsl:variable>
        <xsl:choose>
          <xsl:when test="$r = 10"><xsl:value-of select="translate($value, $unprintable, '')"/></xsl:when>
          <xsl:when test="$r = 16">
            <xsl:variable name="n">
              <xsl:call-template name="x702-atoi"><xsl:with-param name="text" select="$value"/></xsl:call-template>
            </xsl:variable>
            <xsl:text>$</xsl:text>
            <xsl:call-template name="x702-hex">
              <xsl:with-param name="n" select="number($n) + 4294967296 * (number($n) &lt; 0)"/>
            </xsl:call-template>
          </xsl:when>
        </xsl:choose>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <!-- A decimal number read as the C library reads it: leading white space, a sign,
       the digits up to the first other character; held within a 32-bit int. -->
  <xsl:variable name="x702-blanks" select="' &#9;&#10;&#13;'"/>
  <xsl:template name="x702-atoi">
    <xsl:param name="text"/>
    <xsl:variable name="first" select="substring(translate($text, $x702-blanks, ''), 1, 1)"/>
    <xsl:variable name="rest" select="substring($text, string-length(substring-before($text, $first)) + 1)"/>
    <xsl:variable name="signed" select="$first = '-' or $first = '+'"/>
    <xsl:variable name="body" select="substring($rest, 1 + $signed)"/>
    <xsl:variable name="stop" select="substring(translate($body, '0123456789', ''), 1, 1)"/>
    <xsl:variable name="digits">
      <xsl:choose>
        <xsl:when test="$stop = ''"><xsl:value-of select="$body"/></xsl:when>
        <xsl:otherwise><xsl:value-of select="substring-before($body, $stop)"/></xsl:otherwise>
      </xsl:choose>
    </xsl:variable>
    <xsl:variable name="magnitude" select="number(concat('0', $digits))"/>
    <xsl:choose>
      <xsl:when test="$first = '-'">
        <xsl:value-of select="-1 * ($magnitude * ($magnitude &lt;= 2147483648) + 2147483648 * ($magnitude &gt; 2147483648))"/>
      </xsl:when>
      <xsl:otherwise>
        <xsl:value-of select="$magnitude * ($magnitude &lt;= 2147483647) + 2147483647 * ($magnitude &gt; 2147483647)"/>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <!-- Upper-case hexadecimal of a whole number, no leading zeros. -->
  <xsl:template name="x702-hex">
    <xsl:param name="n"/>
    <xsl:if test="$n &gt;= 16">
      <xsl:call-template name="x702-hex"><xsl:with-param name="n" select="floor($n div 16)"/></xsl:call-template>
    </xsl:if>
    <xsl:value-of select="substring('0123456789ABCDEF', ($n mod 16) + 1, 1)"/>
  </xsl:template>

  <!-- The chain without its first three bytes (a character beyond ASCII is as many bytes
       as its UTF-8 form has); a chain of fewer stays whole. The bytes left of a character
       that the cut splits are no text: each shows as a replacement character. -->
  <xsl:variable name="x702-ascii"
                select="concat(' !&quot;#$%&amp;()*+,-./0123456789:;&lt;=&gt;?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\]^_`abcdefghijklmnopqrstuvwxyz{|}~', &quot;'&quot;)"/>
  <xsl:template name="x702-cut-three-bytes">
    <xsl:param name="text"/>
    <xsl:choose>
      <xsl:when test="translate(substring($text, 1, 3), $x702-ascii, '') = ''">
        <xsl:value-of select="substring($text, 1 + 3 * (string-length($text) &gt;= 3))"/>
      </xsl:when>
      <xsl:otherwise>
        <xsl:variable name="b1">
          <xsl:call-template name="x702-utf8-bytes"><xsl:with-param name="c" select="substring($text, 1, 1)"/></xsl:call-template>
        </xsl:variable>
        <xsl:variable name="b2">
          <xsl:call-template name="x702-utf8-bytes"><xsl:with-param name="c" select="substring($text, 2, 1)"/></xsl:call-template>
        </xsl:variable>
        <xsl:variable name="b3">
          <xsl:call-template name="x702-utf8-bytes"><xsl:with-param name="c" select="substring($text, 3, 1)"/></xsl:call-template>
        </xsl:variable>
        <xsl:variable name="c2" select="$b1 + $b2"/>
        <xsl:variable name="c3" select="$c2 + $b3"/>
        <!-- Characters that lie wholly in the first three bytes, and the bytes the cut
             leaves of the next one. -->
        <xsl:variable name="whole" select="($b1 &lt;= 3) + ($c2 &lt;= 3) + ($c3 &lt;= 3)"/>
        <xsl:variable name="kept" select="$b1 * ($whole = 1) + $c2 * ($whole = 2) + $c3 * ($whole = 3)"/>
        <xsl:variable name="reach" select="$b1 * ($whole = 0) + $c2 * ($whole = 1) + $c3 * ($whole = 2)"/>
        <xsl:choose>
          <xsl:when test="$c3 &lt; 3"><xsl:value-of select="$text"/></xsl:when>
          <xsl:when test="$kept = 3"><xsl:value-of select="substring($text, $whole + 1)"/></xsl:when>
          <xsl:otherwise>
            <xsl:value-of select="concat(substring('&#xFFFD;&#xFFFD;&#xFFFD;', 1, $reach - 3), substring($text, $whole + 2))"/>
          </xsl:otherwise>
        </xsl:choose>
      </xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <xsl:template name="x702-utf8-bytes">
    <xsl:param name="c"/>
    <xsl:choose>
      <xsl:when test="contains($x702-ascii, $c)"><xsl:value-of select="string-length($c)"/></xsl:when>
      <xsl:otherwise><xsl:value-of select="string-length(str:encode-uri($c, true())) div 3"/></xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <!-- Message rows: 16 bytes a line, two groups of eight; the first row names the
       message, the others show only their line. An empty message still has its row. -->
  <xsl:template match="q" mode="x702-message">
    <xsl:variable name="hex" select="concat(substring(@hex, 1, string-length(@hex) - (string-length(@hex) mod 2)),
                                            substring(concat('0', substring(@hex, string-length(@hex))), 1, 2 * (string-length(@hex) mod 2)))"/>
    <xsl:variable name="request" select="@e = 'Request'"/>
    <xsl:call-template name="x702-row">
      <xsl:with-param name="k" select="2 * $request"/>
      <xsl:with-param name="f1" select="concat(@indent, @e)"/>
      <xsl:with-param name="f3" select="substring(@location, 1, string-length(@location) * not($request))"/>
      <xsl:with-param name="f4" select="substring(@address, 1, string-length(@address) * not($request))"/>
      <xsl:with-param name="f5" select="@time"/>
      <xsl:with-param name="f6" select="@name"/>
      <xsl:with-param name="f7">
        <xsl:call-template name="x702-line"><xsl:with-param name="hex" select="substring($hex, 1, 32)"/></xsl:call-template>
      </xsl:with-param>
    </xsl:call-template>
    <xsl:call-template name="x702-more-lines">
      <xsl:with-param name="hex" select="substring($hex, 33)"/>
      <xsl:with-param name="k" select="2 * $request"/>
      <xsl:with-param name="event" select="concat(@indent, substring('Request[Message]', 1, 16 * $request))"/>
    </xsl:call-template>
  </xsl:template>

  <!-- Halving keeps the recursion shallow for long messages. -->
  <xsl:template name="x702-more-lines">
    <xsl:param name="hex"/>
    <xsl:param name="k"/>
    <xsl:param name="event"/>
    <xsl:variable name="lines" select="ceiling(string-length($hex) div 32)"/>
    <xsl:choose>
      <xsl:when test="$lines = 1">
        <xsl:call-template name="x702-row">
          <xsl:with-param name="k" select="$k"/>
          <xsl:with-param name="f1" select="$event"/>
          <xsl:with-param name="f7">
            <xsl:call-template name="x702-line"><xsl:with-param name="hex" select="$hex"/></xsl:call-template>
          </xsl:with-param>
        </xsl:call-template>
      </xsl:when>
      <xsl:when test="$lines &gt; 1">
        <xsl:variable name="half" select="32 * floor($lines div 2)"/>
        <xsl:call-template name="x702-more-lines">
          <xsl:with-param name="hex" select="substring($hex, 1, $half)"/>
          <xsl:with-param name="k" select="$k"/>
          <xsl:with-param name="event" select="$event"/>
        </xsl:call-template>
        <xsl:call-template name="x702-more-lines">
          <xsl:with-param name="hex" select="substring($hex, $half + 1)"/>
          <xsl:with-param name="k" select="$k"/>
          <xsl:with-param name="event" select="$event"/>
        </xsl:call-template>
      </xsl:when>
    </xsl:choose>
  </xsl:template>

  <!-- One line of up to 16 bytes (32 digits): the first eight, then, when there are more,
       blanks to column 26 and the rest. -->
  <xsl:template name="x702-line">
    <xsl:param name="hex"/>
    <xsl:call-template name="x702-group"><xsl:with-param name="hex" select="substring($hex, 1, 16)"/></xsl:call-template>
    <xsl:if test="string-length($hex) &gt; 16">
      <xsl:text>   </xsl:text>
      <xsl:call-template name="x702-group"><xsl:with-param name="hex" select="substring($hex, 17)"/></xsl:call-template>
    </xsl:if>
  </xsl:template>

  <xsl:template name="x702-group">
    <xsl:param name="hex"/>
    <xsl:value-of select="substring($hex, 1, 2)"/>
    <xsl:value-of select="concat(substring(concat(' ', substring($hex, 3, 2)), 1, 3 * (string-length($hex) &gt; 2)),
                                 substring(concat(' ', substring($hex, 5, 2)), 1, 3 * (string-length($hex) &gt; 4)),
                                 substring(concat(' ', substring($hex, 7, 2)), 1, 3 * (string-length($hex) &gt; 6)),
                                 substring(concat(' ', substring($hex, 9, 2)), 1, 3 * (string-length($hex) &gt; 8)),
                                 substring(concat(' ', substring($hex, 11, 2)), 1, 3 * (string-length($hex) &gt; 10)),
                                 substring(concat(' ', substring($hex, 13, 2)), 1, 3 * (string-length($hex) &gt; 12)),
                                 substring(concat(' ', substring($hex, 15, 2)), 1, 3 * (string-length($hex) &gt; 14)))"/>
  </xsl:template>

  <!-- Fields: Event, LogicalLink, Location, ID, Time, Description, Value, Unit, RangeInfo. -->
  <xsl:template name="x702-row">
    <xsl:param name="k" select="2"/>
    <xsl:param name="f1" select="''"/>
    <xsl:param name="f2" select="''"/>
    <xsl:param name="f3" select="''"/>
    <xsl:param name="f4" select="''"/>
    <xsl:param name="f5" select="''"/>
    <xsl:param name="f6" select="''"/>
    <xsl:param name="f7" select="''"/>
    <xsl:param name="f8" select="''"/>
    <xsl:param name="f9" select="''"/>
    <r k="{$k}"><c><xsl:value-of select="$f1"/></c><c><xsl:value-of select="$f2"/></c><c><xsl:value-of select="$f3"/></c><c><xsl:value-of select="$f4"/></c><c><xsl:value-of select="$f5"/></c><c><xsl:value-of select="$f6"/></c><c><xsl:value-of select="$f7"/></c><c><xsl:value-of select="$f8"/></c><c><xsl:value-of select="$f9"/></c></r>
  </xsl:template>

</xsl:stylesheet>

<?xml version="1.0" encoding="UTF-8"?>
<!-- The rows of a process value trace of schema 7.02, exactly as the list builds them.

     Every child of Trace but VariantSelected and VariantDetected begins by emptying every
     value the rows read; those two only add to theirs (see x702-variant-carry). Inside a
     child values pile up from element to element until the next element that empties
     them, and errors wait for the next flush: each child is first turned into a list of
     events in document order (a <g>), then folded over (x702-fold), which is how the
     rows come out. The parameter level that sets the indent travels on the events.

     What Xalan-C makes slow, and how this sheet keeps clear of it:
     - every live string value and every template parameter slows down the next ones, so
       the fold starts afresh at every event that empties the values (its recursion is
       as short as the stretch between two of them) and carries the texts gathered as a
       node-set of events, not as a parameter per value;
     - a step along an axis gathers the whole axis before a predicate picks from it, and
       position() searches the list for its node: the fold steps from sibling to sibling
       within a parameter's events (an <s> each), and nothing walks the children of
       Trace by axis;
     - the values of attributes in its trees go to one table that slows down as distinct
       values pile up: texts that vary stay texts;
     - a tree fragment with elements made per row slows down every later one: the rows
       are written straight out. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:xalan="http://xml.apache.org/xalan"
                xmlns:str="http://exslt.org/strings" exclude-result-prefixes="xalan str">

  <xsl:include href="../common/xpvt_common.xsl"/>

  <!-- The key is a text, not an attribute: the processor keeps every attribute value of
       its trees in one table, which slows down as distinct values pile up. -->
  <xsl:key name="x702-trace-child" match="trace-child" use="i"/>

  <xsl:template name="export-titles">
    <c w="30">Line</c><c w="150">Event</c><c w="160">LogicalLink</c><c w="160">Location</c><c w="40">ID</c>
    <c w="110">Time</c><c w="200">Description</c><c w="200">Value</c><c w="40">Unit</c><c w="120">RangeInfo</c>
  </xsl:template>

  <xsl:template name="export-rows">
    <xsl:variable name="traces" select="/*[name() = 'ProcessValueTrace']/*[name() = 'Trace']"/>
    <xsl:variable name="children-tree">
      <xsl:if test="$traces/*[name() = 'VariantDetected' or name() = 'VariantSelected']">
        <xsl:for-each select="$traces">
          <xsl:call-template name="x702-trace-children">
            <xsl:with-param name="trace" select="position()"/>
          </xsl:call-template>
        </xsl:for-each>
      </xsl:if>
    </xsl:variable>
    <xsl:variable name="children" select="xalan:nodeset($children-tree)"/>
    <!-- A <g> of events per child of Trace; a variant right under Trace is a single <z>. -->
    <xsl:variable name="events-tree">
      <xsl:for-each select="$traces">
        <xsl:variable name="trace" select="position()"/>
        <xsl:for-each select="*">
          <xsl:choose>
            <xsl:when test="name() = 'VariantDetected' or name() = 'VariantSelected'">
              <xsl:call-template name="x702-variant">
                <xsl:with-param name="children" select="$children"/>
                <xsl:with-param name="trace" select="$trace"/>
                <xsl:with-param name="at" select="position()"/>
              </xsl:call-template>
            </xsl:when>
            <xsl:otherwise>
              <g><xsl:apply-templates select="." mode="x702-trace"/></g>
            </xsl:otherwise>
          </xsl:choose>
        </xsl:for-each>
      </xsl:for-each>
    </xsl:variable>
    <xsl:for-each select="xalan:nodeset($events-tree)/*">
      <xsl:choose>
        <xsl:when test="self::z">
          <r k="2"><c><xsl:value-of select="@e"/></c><c/><c><xsl:value-of select="translate(., $unprintable, '')"/></c><c/><c/><c/><c/><c/><c/></r>
        </xsl:when>
        <xsl:otherwise>
          <!-- Every other child of Trace begins with <c/>. -->
          <xsl:for-each select="descendant::c">
            <xsl:call-template name="x702-fold">
              <xsl:with-param name="e" select="following-sibling::*[1]"/>
            </xsl:call-template>
          </xsl:for-each>
        </xsl:otherwise>
      </xsl:choose>
    </xsl:for-each>
  </xsl:template>

  <!-- Events: <c/> empties every value; <t n="slot"> adds text to a value; <h> adds a
       name to the chain of parent primitives; <d/> notes that the message rows are due
       no more; <w e="kind"/> makes the rows of that kind; <z e="kind"> the row of a
       variant right under Trace, its value with it; <f l="level"/> writes the errors
       gathered so far; <m e="Request|Response" l="level"/> the message rows unless <d/>
       came first; <v e="side" l="level"/> ends a Value (s="1": its parameter's row is
       left out, a child response parameter came before it). A parameter's events stand
       in an <s> of their own, closed by <u/>. -->

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

  <!-- A variant right under Trace: its value is what the variants of its kind before it
       left there (see x702-variant-carry), then its own text. -->
  <xsl:template name="x702-variant">
    <xsl:param name="children"/>
    <xsl:param name="trace"/>
    <xsl:param name="at"/>
    <xsl:variable name="kind" select="name()"/>
    <z e="{$kind}">
      <xsl:for-each select="$children">
        <xsl:call-template name="x702-variant-carry">
          <xsl:with-param name="trace" select="$trace"/>
          <xsl:with-param name="at" select="$at - 1"/>
          <xsl:with-param name="kind" select="$kind"/>
        </xsl:call-template>
      </xsl:for-each>
      <xsl:call-template name="own-text"/>
    </z>
  </xsl:template>

  <!-- The children of Trace by number, as far as a variant's value needs them: the text of
       a variant, the texts of a FinishDiagComPrimitive's variants, whether a child empties
       the values (X) or leaves them alone (O). A variant looks back by key: a step to the
       preceding sibling would gather every sibling before it. -->
  <xsl:template name="x702-trace-children">
    <xsl:param name="trace"/>
    <xsl:for-each select="*">
      <xsl:variable name="n" select="name()"/>
      <xsl:choose>
        <xsl:when test="$n = 'VariantDetected' or $n = 'VariantSelected'">
          <trace-child c="{$n}">
            <i><xsl:value-of select="concat($trace, '.', position())"/></i>
            <xsl:element name="{$n}"><xsl:call-template name="own-text"/></xsl:element>
          </trace-child>
        </xsl:when>
        <xsl:when test="$n = 'FinishDiagComPrimitive'">
          <trace-child c="F">
            <i><xsl:value-of select="concat($trace, '.', position())"/></i>
            <VariantDetected>
              <xsl:for-each select="*[name() = 'VariantDetected']"><xsl:call-template name="own-text"/></xsl:for-each>
            </VariantDetected>
            <VariantSelected>
              <xsl:for-each select="*[name() = 'VariantSelected']"><xsl:call-template name="own-text"/></xsl:for-each>
            </VariantSelected>
          </trace-child>
        </xsl:when>
        <xsl:when test="$n = 'StartTrace' or $n = 'StopTrace' or $n = 'OpenLogicalLink' or $n = 'CloseLogicalLink'
                        or $n = 'StartDiagComPrimitive' or $n = 'Result'">
          <trace-child c="X"><i><xsl:value-of select="concat($trace, '.', position())"/></i></trace-child>
        </xsl:when>
        <xsl:otherwise>
          <trace-child c="O"><i><xsl:value-of select="concat($trace, '.', position())"/></i></trace-child>
        </xsl:otherwise>
      </xsl:choose>
    </xsl:for-each>
  </xsl:template>

  <!-- What a variant right under Trace finds in its value before its own text: the texts
       of the variants of its kind back to the last child of Trace that emptied the
       values, and those of that child's own variants if it is a FinishDiagComPrimitive.
       Other elements (the other kind of variant, unknown ones) leave the value alone.
       The context is the tree of x702-trace-children; $at numbers a child of the
       $trace-th Trace. -->
  <xsl:template name="x702-variant-carry">
    <xsl:param name="trace"/>
    <xsl:param name="at"/>
    <xsl:param name="kind"/>
    <xsl:variable name="p" select="key('x702-trace-child', concat($trace, '.', $at))"/>
    <xsl:choose>
      <xsl:when test="not($p) or $p/@c = 'X'"/>
      <xsl:when test="$p/@c = 'F'"><xsl:value-of select="$p/*[name() = $kind]"/></xsl:when>
      <xsl:otherwise>
        <xsl:call-template name="x702-variant-carry">
          <xsl:with-param name="trace" select="$trace"/>
          <xsl:with-param name="at" select="$at - 1"/>
          <xsl:with-param name="kind" select="$kind"/>
        </xsl:call-template>
        <xsl:if test="$p/@c = $kind"><xsl:value-of select="$p/*[name() = $kind]"/></xsl:if>
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
          <xsl:call-template name="x702-parameter">
            <xsl:with-param name="side" select="'Request'"/><xsl:with-param name="level" select="3"/>
          </xsl:call-template>
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
          <xsl:call-template name="x702-parameter">
            <xsl:with-param name="side" select="'Response'"/><xsl:with-param name="level" select="3"/>
          </xsl:call-template>
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
    <s>
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
          <xsl:call-template name="x702-parameter">
            <xsl:with-param name="side" select="$side"/><xsl:with-param name="level" select="$level + 1"/>
          </xsl:call-template>
        </xsl:when>
      </xsl:choose>
    </xsl:for-each>
    <d/>
    <f l="{$level - ($side = 'Response')}"/>
    <u/>
    </s>
  </xsl:template>

  <!-- Indents: two blanks a level above the first. -->
  <xsl:variable name="x702-blanks-run" select="str:padding(2000, ' ')"/>

  <!-- The fold from the event after a <c/> up to the next <c/> or the end of the <g>. The
       values are the <t> events in $acc (the texts of a slot join in document order), but
       for the value of a Value, which a row leaves cleaned: what it left is in $s36, the
       texts that came after it are in $acc. $s46 is the chain of parent primitives; $due
       holds until the first <d/> or Value. Only the values a row shows are ever joined. -->
  <xsl:template name="x702-fold">
    <xsl:param name="e"/>
    <xsl:param name="acc" select="/.."/>
    <xsl:param name="s36" select="''"/>
    <xsl:param name="s46" select="''"/>
    <xsl:param name="due" select="true()"/>
    <xsl:if test="$e and not($e/self::c)">
      <xsl:choose>
        <xsl:when test="$e/self::t">
          <xsl:call-template name="x702-fold">
            <xsl:with-param name="e" select="$e/following-sibling::*[1]"/>
            <xsl:with-param name="acc" select="$acc | $e"/>
            <xsl:with-param name="s36" select="$s36"/>
            <xsl:with-param name="s46" select="$s46"/>
            <xsl:with-param name="due" select="$due"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:when test="$e/self::v">
          <!-- The text its radix makes of the value, before its row. -->
          <xsl:variable name="converted">
            <xsl:call-template name="x702-convert-value">
              <xsl:with-param name="value">
                <xsl:value-of select="$s36"/>
                <xsl:for-each select="$acc[@n = 36]"><xsl:value-of select="."/></xsl:for-each>
              </xsl:with-param>
              <xsl:with-param name="radix">
                <xsl:for-each select="$acc[@n = 42]"><xsl:value-of select="."/></xsl:for-each>
              </xsl:with-param>
            </xsl:call-template>
          </xsl:variable>
          <xsl:variable name="cleaned" select="translate($converted, $unprintable, '')"/>
          <xsl:if test="not($e/@s)">
            <r k="{2 * ($e/@e = 'RequestParameter')}">
              <c>
                <xsl:value-of select="concat(substring($x702-blanks-run, 1, 2 * ($e/@l - 1)), 'Parameter [')"/>
                <xsl:for-each select="$acc[@n = 41]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each>
                <xsl:text>]</xsl:text>
              </c>
              <c/><c/><c/><c/>
              <c><xsl:for-each select="$acc[@n = 7]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each></c>
              <c><xsl:value-of select="$cleaned"/></c>
              <c><xsl:for-each select="$acc[@n = 33]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each></c>
              <c><xsl:for-each select="$acc[@n = 43]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each></c>
            </r>
          </xsl:if>
          <xsl:call-template name="x702-fold">
            <xsl:with-param name="e" select="$e/following-sibling::*[1]"/>
            <xsl:with-param name="acc" select="$acc[@n != 36]"/>
            <!-- A row cleans the value it shows, in place. -->
            <xsl:with-param name="s36"
                            select="concat(substring($cleaned, 1, string-length($cleaned) * not($e/@s)),
                                           substring($converted, 1, string-length($converted) * boolean($e/@s)))"/>
            <xsl:with-param name="s46" select="$s46"/>
            <xsl:with-param name="due" select="false()"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:when test="$e/self::f">
          <xsl:variable name="errors" select="$acc[@n = 10 or @n = 37 or @n = 38 or @n = 39]"/>
          <xsl:if test="$errors[translate(., $unprintable, '') != '']">
            <xsl:variable name="indent" select="substring($x702-blanks-run, 1, 2 * ($e/@l - 1))"/>
            <r k="3">
              <c><xsl:value-of select="concat($indent, 'Error')"/></c><c/><c/>
              <c><xsl:for-each select="$errors[@n = 37]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each></c>
              <c/>
              <c><xsl:for-each select="$errors[@n = 10]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each></c>
              <c/><c/><c/>
            </r>
            <xsl:if test="$errors[@n = 38 or @n = 39][translate(., $unprintable, '') != '']">
              <r k="3">
                <c><xsl:value-of select="concat($indent, 'Error (Vendor)')"/></c>
                <c><xsl:for-each select="$acc[@n = 2]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each></c>
                <c/>
                <c><xsl:for-each select="$errors[@n = 38]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each></c>
                <c/>
                <c><xsl:for-each select="$errors[@n = 39]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each></c>
                <c/><c/><c/>
              </r>
            </xsl:if>
          </xsl:if>
          <xsl:call-template name="x702-fold">
            <xsl:with-param name="e" select="$e/following-sibling::*[1]"/>
            <!-- Writing the errors empties them. -->
            <xsl:with-param name="acc" select="$acc[not(@n = 10 or @n = 37 or @n = 38 or @n = 39)]"/>
            <xsl:with-param name="s36" select="$s36"/>
            <xsl:with-param name="s46" select="$s46"/>
            <xsl:with-param name="due" select="$due"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:when test="$e/self::w">
          <xsl:call-template name="x702-event-rows">
            <xsl:with-param name="kind" select="string($e/@e)"/>
            <xsl:with-param name="acc" select="$acc"/>
            <xsl:with-param name="s46" select="$s46"/>
          </xsl:call-template>
          <xsl:call-template name="x702-fold">
            <xsl:with-param name="e" select="$e/following-sibling::*[1]"/>
            <xsl:with-param name="acc" select="$acc"/>
            <xsl:with-param name="s36" select="$s36"/>
            <!-- The primitive rows clean the chain in place: what is left decides the next
                 "Called by" row and the next "-\->". -->
            <xsl:with-param name="s46"
                            select="concat(substring($s46, 1, string-length($s46) * not(starts-with($e/@e, 'Primitive'))),
                                           substring(translate($s46, $unprintable, ''), 1, string-length($s46) * starts-with($e/@e, 'Primitive')))"/>
            <xsl:with-param name="due" select="$due"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:when test="$e/self::m">
          <xsl:if test="$due">
            <!-- Slots of a request: name 5, bytes 34; of a response: name 7, bytes 35. -->
            <xsl:variable name="request" select="$e/@e = 'Request'"/>
            <xsl:call-template name="x702-message">
              <xsl:with-param name="kind" select="string($e/@e)"/>
              <xsl:with-param name="indent" select="substring($x702-blanks-run, 1, 2 * ($e/@l - 1))"/>
              <xsl:with-param name="time">
                <xsl:for-each select="$acc[@n = 24]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each>
              </xsl:with-param>
              <xsl:with-param name="location">
                <xsl:for-each select="$acc[@n = 27]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each>
              </xsl:with-param>
              <xsl:with-param name="address">
                <xsl:for-each select="$acc[@n = 32]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each>
              </xsl:with-param>
              <xsl:with-param name="name">
                <xsl:for-each select="$acc[@n = 7 - 2 * $request]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each>
              </xsl:with-param>
              <xsl:with-param name="bytes">
                <xsl:for-each select="$acc[@n = 35 - $request]"><xsl:value-of select="."/></xsl:for-each>
              </xsl:with-param>
            </xsl:call-template>
          </xsl:if>
          <xsl:call-template name="x702-fold">
            <xsl:with-param name="e" select="$e/following-sibling::*[1]"/>
            <xsl:with-param name="acc" select="$acc"/>
            <xsl:with-param name="s36" select="$s36"/>
            <xsl:with-param name="s46" select="$s46"/>
            <xsl:with-param name="due" select="$due"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:when test="$e/self::s or $e/self::u">
          <!-- Into a parameter's events, or out of them to what follows the parameter. -->
          <xsl:call-template name="x702-fold">
            <xsl:with-param name="e" select="$e/self::s/*[1] | $e/self::u/../following-sibling::*[1]"/>
            <xsl:with-param name="acc" select="$acc"/>
            <xsl:with-param name="s36" select="$s36"/>
            <xsl:with-param name="s46" select="$s46"/>
            <xsl:with-param name="due" select="$due"/>
          </xsl:call-template>
        </xsl:when>
        <xsl:otherwise>
          <!-- <h> and <d/>. -->
          <xsl:call-template name="x702-fold">
            <xsl:with-param name="e" select="$e/following-sibling::*[1]"/>
            <xsl:with-param name="acc" select="$acc"/>
            <xsl:with-param name="s36" select="$s36"/>
            <xsl:with-param name="s46" select="concat($s46, substring('-->', 1, 3 * ($e/self::h and $s46 != '')), $e/self::h)"/>
            <xsl:with-param name="due" select="$due and not($e/self::d)"/>
          </xsl:call-template>
        </xsl:otherwise>
      </xsl:choose>
    </xsl:if>
  </xsl:template>

  <!-- The rows of a <w e="kind"/>. -->
  <xsl:template name="x702-event-rows">
    <xsl:param name="kind"/>
    <xsl:param name="acc"/>
    <xsl:param name="s46"/>
    <xsl:choose>
      <xsl:when test="$kind = 'StartTrace'">
        <r k="2">
          <c>Start Trace</c>
          <c>
            <xsl:for-each select="$acc[@n = 4]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each>
            <xsl:text> </xsl:text>
            <xsl:for-each select="$acc[@n = 26]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each>
          </c>
          <c/><c/>
          <c><xsl:for-each select="$acc[@n = 25]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each></c>
          <c/><c/><c/><c/>
        </r>
      </xsl:when>
      <xsl:when test="$kind = 'StopTrace'">
        <r k="2">
          <c>Stop Trace</c><c/><c/><c/>
          <c><xsl:for-each select="$acc[@n = 25]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each></c>
          <c/><c/><c/><c/>
        </r>
      </xsl:when>
      <xsl:when test="$kind = 'OpenLogicalLink' or $kind = 'CloseLogicalLink'">
        <r k="2">
          <c><xsl:value-of select="$kind"/></c>
          <c><xsl:for-each select="$acc[@n = 2]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each></c>
          <c><xsl:for-each select="$acc[@n = 27]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each></c>
          <c/>
          <c><xsl:for-each select="$acc[@n = 24]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each></c>
          <c/><c/><c/><c/>
        </r>
      </xsl:when>
      <xsl:when test="$kind = 'VariantDetectedInFinish'">
        <r k="2">
          <c>  VariantDetected</c><c/>
          <c><xsl:for-each select="$acc[@n = 30]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each></c>
          <c/><c/><c/><c/><c/><c/>
        </r>
      </xsl:when>
      <xsl:when test="$kind = 'VariantSelectedInFinish'">
        <r k="2">
          <c>  VariantSelected</c><c/>
          <c><xsl:for-each select="$acc[@n = 31]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each></c>
          <c/><c/><c/><c/><c/><c/>
        </r>
      </xsl:when>
      <xsl:otherwise>
        <!-- The head row of a primitive, the chain of its parents, the primitive. -->
        <xsl:variable name="link">
          <xsl:for-each select="$acc[@n = 2]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each>
        </xsl:variable>
        <xsl:variable name="name">
          <xsl:for-each select="$acc[@n = 7]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each>
        </xsl:variable>
        <xsl:variable name="object-type">
          <xsl:for-each select="$acc[@n = 29]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each>
        </xsl:variable>
        <xsl:variable name="id">
          <xsl:for-each select="$acc[@n = 28]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each>
        </xsl:variable>
        <xsl:variable name="chain" select="translate($s46, $unprintable, '')"/>
        <xsl:choose>
          <xsl:when test="$kind = 'PrimitiveResult'">
            <r k="2">
              <c><xsl:value-of select="concat('Result [', $object-type, ']')"/></c>
              <c><xsl:value-of select="$link"/></c><c/>
              <c><xsl:value-of select="$id"/></c>
              <c/><c/><c/><c/><c/>
            </r>
          </xsl:when>
          <xsl:otherwise>
            <r k="1">
              <c>
                <xsl:value-of select="concat(substring('Start [', 1, 7 * ($kind = 'PrimitiveStart')),
                                             substring('Stop [', 1, 6 * ($kind = 'PrimitiveFinish')),
                                             $object-type, ']')"/>
              </c>
              <c><xsl:value-of select="$link"/></c>
              <c><xsl:for-each select="$acc[@n = 27]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each></c>
              <c><xsl:value-of select="$id"/></c>
              <c><xsl:for-each select="$acc[@n = 24]"><xsl:value-of select="translate(., $unprintable, '')"/></xsl:for-each></c>
              <c/>
              <c><xsl:value-of select="$name"/></c>
              <c/><c/>
            </r>
          </xsl:otherwise>
        </xsl:choose>
        <xsl:if test="$s46 != ''">
          <r k="2"><c>   Called by</c><c/><c/><c/><c/><c/><c><xsl:value-of select="$chain"/></c><c/><c/></r>
        </xsl:if>
        <r k="2">
          <c>  DiagComPrimitive</c><c/><c/>
          <c><xsl:value-of select="$id"/></c>
          <c/>
          <c><xsl:value-of select="concat($name, ':', $object-type)"/></c>
          <c><xsl:call-template name="x702-cut-three-bytes"><xsl:with-param name="text" select="$chain"/></xsl:call-template></c>
          <c/><c/>
        </r>
      </xsl:otherwise>
    </xsl:choose>
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
       message, the others show only their line. An empty message still has its row.
       $bytes is the message's text as it stands: only its hexadecimal digits count. -->
  <xsl:template name="x702-message">
    <xsl:param name="kind"/>
    <xsl:param name="indent"/>
    <xsl:param name="time"/>
    <xsl:param name="location"/>
    <xsl:param name="address"/>
    <xsl:param name="name"/>
    <xsl:param name="bytes"/>
    <xsl:variable name="digits" select="translate(translate($bytes, translate($bytes, $hex-digits, ''), ''), 'abcdef', 'ABCDEF')"/>
    <xsl:variable name="hex" select="concat(substring($digits, 1, string-length($digits) - (string-length($digits) mod 2)),
                                            substring(concat('0', substring($digits, string-length($digits))), 1, 2 * (string-length($digits) mod 2)))"/>
    <xsl:variable name="request" select="$kind = 'Request'"/>
    <xsl:call-template name="x702-row">
      <xsl:with-param name="k" select="2 * $request"/>
      <xsl:with-param name="f1" select="concat($indent, $kind)"/>
      <xsl:with-param name="f3" select="substring($location, 1, string-length($location) * not($request))"/>
      <xsl:with-param name="f4" select="substring($address, 1, string-length($address) * not($request))"/>
      <xsl:with-param name="f5" select="$time"/>
      <xsl:with-param name="f6" select="$name"/>
      <xsl:with-param name="f7">
        <xsl:call-template name="x702-line"><xsl:with-param name="hex" select="substring($hex, 1, 32)"/></xsl:call-template>
      </xsl:with-param>
    </xsl:call-template>
    <xsl:call-template name="x702-more-lines">
      <xsl:with-param name="hex" select="substring($hex, 33)"/>
      <xsl:with-param name="k" select="2 * $request"/>
      <xsl:with-param name="event" select="concat($indent, substring('Request[Message]', 1, 16 * $request))"/>
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

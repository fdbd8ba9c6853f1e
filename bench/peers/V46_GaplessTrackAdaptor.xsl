<?xml version="1.0"?>
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:template match="@*|node()">
  <xsl:copy><xsl:apply-templates select="@*|node()"/></xsl:copy>
</xsl:template>

<xsl:template match="RootObject[@type='Timeline::Track']">
  <xsl:copy>
    <xsl:apply-templates select="@*|node()"/>
    <gapless type="bool" value="{number(type[1]/@value = 16)}"/>
  </xsl:copy>
</xsl:template>
</xsl:stylesheet>

<?xml version="1.0"?>
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:template match="@*|node()">
  <xsl:copy><xsl:apply-templates select="@*|node()"/></xsl:copy>
</xsl:template>

<xsl:template match="RootObject[@type='Timeline::Clip'][type[1]/@value = 8 or type[1]/@value = 16]/unlimitedDuration[1]/@value">
  <xsl:attribute name="value">0</xsl:attribute>
</xsl:template>
</xsl:stylesheet>

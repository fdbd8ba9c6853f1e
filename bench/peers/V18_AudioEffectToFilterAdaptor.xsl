<?xml version="1.0"?>
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:template match="@*|node()">
  <xsl:copy><xsl:apply-templates select="@*|node()"/></xsl:copy>
</xsl:template>

<xsl:template match="RootObject[@type='Effect::AudioEqualizer' or @type='Effect::AudioNoiseReduction']/BaseOfObject[1]/@type">
  <xsl:attribute name="type">Effect::AudioFilter</xsl:attribute>
</xsl:template>
</xsl:stylesheet>

#include "OrbShaderCodeBuilder.h"

template <typename T>
void OrbShaderCodeBuilder::assign(T &member, T value, void (OrbShaderCodeBuilder::*changed)())
{
    if (member == value)
        return;
    member = value;
    emit(this->*changed)();
}

void OrbShaderCodeBuilder::setOculusMode(bool oculusMode)
{
    assign(m_oculusMode, oculusMode, &OrbShaderCodeBuilder::oculusModeChanged);
}

void OrbShaderCodeBuilder::setEffect(int effect)
{
    assign(m_settings.effect, effect, &OrbShaderCodeBuilder::effectChanged);
}

void OrbShaderCodeBuilder::setProjection(int projection)
{
    assign(m_settings.projection, projection, &OrbShaderCodeBuilder::projectionChanged);
}

void OrbShaderCodeBuilder::setStereoMode(int stereoMode)
{
    assign(m_settings.stereoMode, stereoMode, &OrbShaderCodeBuilder::stereoModeChanged);
}

void OrbShaderCodeBuilder::setProjectionSource(int projectionSource)
{
    assign(m_settings.projectionSource, projectionSource,
           &OrbShaderCodeBuilder::projectionSourceChanged);
}

void OrbShaderCodeBuilder::setRotationSource(int rotationSource)
{
    assign(m_settings.rotationSource, rotationSource, &OrbShaderCodeBuilder::rotationSourceChanged);
}

void OrbShaderCodeBuilder::setInvertedColors(bool invertedColors)
{
    assign(m_settings.invertedColors, invertedColors, &OrbShaderCodeBuilder::invertedColorsChanged);
}

void OrbShaderCodeBuilder::setNextEffect()
{
    const int next = effect() + 1;
    setEffect(next == LAST_VALUE_EFFECT ? NO_EFFECT : next);
}

void OrbShaderCodeBuilder::setNextProjection()
{
    const int next = projection() + 1;
    setProjection(next == LAST_VALUE_PROJECTION ? NO_PROJECTION : next);
}

QString OrbShaderCodeBuilder::build(bool oculusMode) const
{
    return fragmentShaderText(m_settings, oculusMode);
}

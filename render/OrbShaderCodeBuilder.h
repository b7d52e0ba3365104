#pragma once

#include "ShaderText.h"

#include <QObject>

/// The settings of the picture, and the fragment shader that follows from them. The scene sees it
/// as "orbShaderCodeBuilder". A change of any property makes every renderer build its program
/// again.
///
/// Threads: the setters run on the main thread; `build` runs on whatever thread draws, without a
/// lock, since each change is followed by its signal and so by another build.
class OrbShaderCodeBuilder : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool oculusMode READ oculusMode WRITE setOculusMode NOTIFY oculusModeChanged)
    Q_PROPERTY(int effect READ effect WRITE setEffect NOTIFY effectChanged)
    Q_PROPERTY(int projection READ projection WRITE setProjection NOTIFY projectionChanged)
    Q_PROPERTY(int stereoMode READ stereoMode WRITE setStereoMode NOTIFY stereoModeChanged)
    Q_PROPERTY(int projectionSource READ projectionSource WRITE setProjectionSource NOTIFY
                   projectionSourceChanged)
    Q_PROPERTY(
        int rotationSource READ rotationSource WRITE setRotationSource NOTIFY rotationSourceChanged)
    Q_PROPERTY(bool invertedColors READ invertedColors WRITE setInvertedColors NOTIFY
                   invertedColorsChanged)

public:
    enum ShaderProjection {
        NO_PROJECTION, ///< the source as a flat picture
        RECTILINEAR,
        LITTLE_PLANET, ///< stereographic
        MIRROR_BALL,
        FISHEYE, ///< equidistant
        LAST_VALUE_PROJECTION
    };
    Q_ENUM(ShaderProjection)

    enum ShaderEffect {
        NO_EFFECT,
        SEPIA,
        BLACK_AND_WHITE,
        TV,
        INVERT,
        RED_ONLY,
        YELLOW_ONLY,
        BLUE_ONLY,
        LAST_VALUE_EFFECT
    };
    Q_ENUM(ShaderEffect)

    enum StereoMode {
        STEREO_2D,
        STEREO_3D_OVERUNDER,  ///< first eye in the upper half of the source
        STEREO_3D_SIDEBYSIDE, ///< first eye in the left half of the source
    };
    Q_ENUM(StereoMode)

    bool oculusMode() const { return m_oculusMode; }
    int effect() const { return m_settings.effect; }
    int projection() const { return m_settings.projection; }
    int stereoMode() const { return m_settings.stereoMode; }
    int projectionSource() const { return m_settings.projectionSource; }
    int rotationSource() const { return m_settings.rotationSource; }
    bool invertedColors() const { return m_settings.invertedColors; }

    void setOculusMode(bool oculusMode);
    void setEffect(int effect);
    void setProjection(int projection);
    void setStereoMode(int stereoMode);
    void setProjectionSource(int projectionSource);
    void setRotationSource(int rotationSource);
    void setInvertedColors(bool invertedColors);

    Q_INVOKABLE void setNextEffect();
    Q_INVOKABLE void setNextProjection();

    /// The complete fragment shader; `oculusMode` is the renderer's own, not the property.
    QString build(bool oculusMode) const;

    /// Has the slot called whenever what `build` gives may be another.
    template <typename Receiver>
    void onTextChanged(Receiver *receiver, void (Receiver::*slot)())
    {
        using Builder = OrbShaderCodeBuilder;
        for (const auto changed :
             {&Builder::oculusModeChanged, &Builder::effectChanged, &Builder::projectionChanged,
              &Builder::stereoModeChanged, &Builder::projectionSourceChanged,
              &Builder::rotationSourceChanged, &Builder::invertedColorsChanged})
            connect(this, changed, receiver, slot);
    }

signals:
    void oculusModeChanged();
    void effectChanged();
    void projectionChanged();
    void stereoModeChanged();
    void projectionSourceChanged();
    void rotationSourceChanged();
    void invertedColorsChanged();

private:
    template <typename T>
    void assign(T &member, T value, void (OrbShaderCodeBuilder::*changed)());

    bool m_oculusMode = false;
    ShaderSettings m_settings;
};

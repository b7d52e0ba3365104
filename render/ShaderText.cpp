#include "ShaderText.h"

#include "OrbShaderCodeBuilder.h"
#include "ShaderSnippets.h"

using namespace ShaderSnippets;
using Builder = OrbShaderCodeBuilder;

namespace {

constexpr int kEquirectangularSource = 1;
constexpr int kFisheyeSource = 4;
constexpr int kAxisAlongX = 2;

class Text
{
public:
    Text() { m_text.reserve(8192); }

    template <std::size_t size>
    void add(const char (&snippet)[size])
    {
        m_text.append(QLatin1String(snippet, static_cast<int>(size) - 1));
    }

    QString take() { return std::move(m_text); }

private:
    QString m_text;
};

void addProjection(Text &text, int projection, bool headset)
{
    switch (projection) {
    case Builder::NO_PROJECTION:
        text.add(kFlat);
        break;
    case Builder::RECTILINEAR:
        text.add(kRectilinearRay);
        if (headset)
            text.add(kRectilinearHeadsetScale);
        text.add(kRectilinearLookup);
        break;
    case Builder::LITTLE_PLANET:
        text.add(kLittlePlanet);
        break;
    case Builder::MIRROR_BALL:
        text.add(kMirrorBall);
        break;
    case Builder::FISHEYE:
        text.add(kFisheye);
        break;
    default:
        break;
    }
}

void addSourceMapping(Text &text, const ShaderSettings &settings)
{
    if (settings.projectionSource == kEquirectangularSource && settings.limits) {
        text.add(kYawLimits);
        text.add(kPitchLimits);
    }
    if (settings.projectionSource == kFisheyeSource) {
        text.add(kFisheyeSourceAngles);
        if (settings.rotationSource == kAxisAlongX)
            text.add(kFisheyeSourceAlongX);
        else
            text.add(kFisheyeSourceAlongZ);
        text.add(kFisheyeSourceLookup);
    }
}

void addStereoSplit(Text &text, int stereoMode)
{
    if (stereoMode == Builder::STEREO_3D_SIDEBYSIDE)
        text.add(kSideBySide);
    else if (stereoMode == Builder::STEREO_3D_OVERUNDER)
        text.add(kOverUnder);
}

void addEffect(Text &text, int effect)
{
    switch (effect) {
    case Builder::SEPIA:
        text.add(kSepia);
        break;
    case Builder::BLACK_AND_WHITE:
        text.add(kBlackAndWhite);
        break;
    case Builder::TV:
        text.add(kTv);
        break;
    case Builder::INVERT:
        text.add(kInvert);
        break;
    case Builder::RED_ONLY:
        text.add(kRedOnly);
        break;
    case Builder::YELLOW_ONLY:
        text.add(kYellowOnly);
        break;
    case Builder::BLUE_ONLY:
        text.add(kBlueOnly);
        break;
    default:
        break;
    }
}

} // namespace

QString fragmentShaderText(const ShaderSettings &settings, bool headset)
{
    constexpr char kClose[] = "}";
    Text text;
    text.add(kHeader);
    text.add(kUniforms);
    text.add(kLimitUniforms);
    if (headset)
        text.add(kHeadsetViewHelpers);
    else
        text.add(kWindowViewHelpers);
    addProjection(text, settings.projection, headset);

    text.add(kMainStart);
    if (settings.inShaderDistortion)
        text.add(kDistortedCoordinate);
    else
        text.add(kPlainCoordinate);
    text.add(kClose);
    if (settings.flip)
        text.add(kFlip);
    addSourceMapping(text, settings);
    text.add(kRejectOutside);
    addStereoSplit(text, settings.stereoMode);
    if (settings.invertedColors)
        text.add(kFetchExchanged);
    else
        text.add(kFetch);
    text.add(kMaskOutside);

    text.add(kColorMatrix);
    text.add(kVibrance);
    text.add(kHueAndSaturation);
    text.add(kBrightnessAndContrast);
    addEffect(text, settings.effect);
    text.add(kVignetting);
    text.add(kOutput);
    text.add(kClose);
    return text.take();
}

#include "VlcOptions.h"

#include "OrbSettingsManager.h"

namespace {
const QString kHardwareDecoding = QStringLiteral("vlc/hardwareDecoding");
const QString kDisableAudio = QStringLiteral("vlc/disableAudio");
const QString kTextureTransfer = QStringLiteral("vlc/textureTransfer");
} // namespace

VlcOptions &VlcOptions::process()
{
    static VlcOptions options;
    return options;
}

void VlcOptions::load(const OrbSettingsManager &settings)
{
    hardwareDecoding = settings.boolValue(kHardwareDecoding, hardwareDecoding);
    disableAudio = settings.boolValue(kDisableAudio, disableAudio);
    textureTransfer = settings.intValue(kTextureTransfer, textureTransfer);
}

void VlcOptions::save(OrbSettingsManager &settings) const
{
    settings.write(kHardwareDecoding, hardwareDecoding);
    settings.write(kDisableAudio, disableAudio);
    settings.write(kTextureTransfer, textureTransfer);
}

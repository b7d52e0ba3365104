#include "TransferMode.h"

QString transferModeText(TransferMode mode)
{
    switch (mode) {
    case TransferIntelMapTexture:
        return QStringLiteral("Intel Map Texture");
    case TransferPixelBufferObject:
        return QStringLiteral("Pixel Buffer Object");
    case TransferCpu:
        return QStringLiteral("CPU");
    case TransferAuto:
        break;
    }
    return {};
}

TransferMode chooseTransferMode(int requested, bool mapsTextures, bool hasDesktopFunctions)
{
    if ((requested == TransferAuto || requested == TransferIntelMapTexture) && mapsTextures)
        return TransferIntelMapTexture;
    return requested != TransferCpu && hasDesktopFunctions ? TransferPixelBufferObject
                                                           : TransferCpu;
}

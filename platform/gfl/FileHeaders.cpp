#include "FileHeaders.h"

std::optional<GflFileInformation> FileHeaders::any(const FileSlice &file)
{
    for (const auto header : {jpeg, png, tiff, psd, exr, radiance}) {
        const std::optional<GflFileInformation> information = header(file);
        if (information)
            return information;
    }
    return std::nullopt;
}

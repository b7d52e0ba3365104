#include "FileHeaders.h"

std::optional<GflFileInformation> FileHeaders::any(const RegularFile &file, const std::string &path)
{
    const FileSlice slice(file);
    for (const auto header : {jpeg, png, psd, tiff}) {
        const std::optional<GflFileInformation> information = header(slice);
        if (information)
            return information;
    }
    return other(path);
}

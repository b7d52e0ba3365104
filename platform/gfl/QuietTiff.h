#pragma once

#include <tiffio.h>

#include <memory>

/// How libtiff opens a file.
using TiffOptions = std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)>;

/// Nothing is printed; no allocation is larger than `largestBlock` bytes, 0 for any size. Null
/// without memory.
inline TiffOptions quietTiffOptions(tmsize_t largestBlock)
{
    constexpr auto saidNothing = [](TIFF *, void *, const char *, const char *, va_list) {
        return 1;
    };
    TiffOptions options(TIFFOpenOptionsAlloc(), TIFFOpenOptionsFree);
    if (options) {
        TIFFOpenOptionsSetErrorHandlerExtR(options.get(), saidNothing, nullptr);
        TIFFOpenOptionsSetWarningHandlerExtR(options.get(), saidNothing, nullptr);
        TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), largestBlock);
    }
    return options;
}

#pragma once

#include <QSize>

#include <functional>

struct GflBitmap;

/// Makes a picture smaller: each target pixel is the mean of the source's area that it covers,
/// where a source pixel on the area's border counts by its share. Pure, any thread; keeps a few
/// lines in memory.
namespace PixelReduction {

/// Takes the target's line `y`: floats from 0 to 1 in the source's components, valid for the call.
using LineTaker = std::function<void(int y, const unsigned char *line)>;

/// Gives all lines of `source` at `size` to `take`, from the top. The size is at least 1 x 1 and at
/// most the source's, whose type and depth have to be known ones. Throws std::bad_alloc.
void reduce(const GflBitmap &source, const QSize &size, const LineTaker &take);

} // namespace PixelReduction

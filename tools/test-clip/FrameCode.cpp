#include "FrameCode.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kCellDeg = 2.5;

// A ring of white cells, in it one of black cells, in it the number's upper byte, its lower byte
// and the complement of either, a row each, from the most significant bit.
constexpr int kColumns = 12;
constexpr int kRows = 8;
constexpr int kRings = 2;
constexpr int kBits = 8; ///< in a row

constexpr int kWhite = 170;      ///< from here on a pixel counts as white
constexpr int kBlack = 85;       ///< and up to here as black
constexpr int kSmallestCell = 5; ///< pixels

constexpr double kPatchDeg = 20;
constexpr double kPatchLatitudeDeg = 23;
constexpr int kPatchLevel = 191; ///< 75 % of 255
constexpr int kBackground = 64;

/// The four rows, the first in the highest byte.
quint32 coded(int number)
{
    const auto value = static_cast<quint32>(number);
    return value << 16U | (~value & 0xffffU);
}

bool isWhite(int column, int row, quint32 code)
{
    const int depth = std::min({column, row, kColumns - 1 - column, kRows - 1 - row});
    if (depth < kRings)
        return depth == 0;
    const int bit = (row - kRings) * kBits + column - kRings;
    return code >> (static_cast<unsigned>(31 - bit) & 31U) & 1U;
}

/// The pixels of a part of the sphere in an equirectangular picture.
QRect pixels(const QSize &picture, double leftDeg, double topDeg, double rightDeg, double bottomDeg)
{
    const auto x = [&](double deg) { return qRound((deg + 180) / 360 * picture.width()); };
    const auto y = [&](double deg) { return qRound((90 - deg) / 180 * picture.height()); };
    return {QPoint(x(leftDeg), y(topDeg)), QPoint(x(rightDeg) - 1, y(bottomDeg) - 1)};
}

/// A connected set of white pixels.
struct Blob
{
    QRect bounds;
    QVector<int> top; ///< its first and last line, one entry a column of the bounds
    QVector<int> bottom;
};

/// Takes the blob around a white pixel out of the mask.
Blob takeBlob(QImage &mask, const QPoint &start)
{
    QVector<QPoint> found{start};
    mask.scanLine(start.y())[start.x()] = 0;
    QRect bounds(start, start);
    for (int i = 0; i < found.size(); ++i) {
        const QPoint at = found.at(i);
        bounds |= QRect(at, at);
        for (const QPoint &step : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)}) {
            const QPoint next = at + step;
            if (!mask.rect().contains(next) || !mask.constScanLine(next.y())[next.x()])
                continue;
            mask.scanLine(next.y())[next.x()] = 0;
            found.append(next);
        }
    }
    Blob blob{bounds, QVector<int>(bounds.width(), bounds.bottom()),
              QVector<int>(bounds.width(), bounds.top())};
    for (const QPoint &at : qAsConst(found)) {
        const int column = at.x() - bounds.left();
        blob.top[column] = std::min(blob.top[column], at.y());
        blob.bottom[column] = std::max(blob.bottom[column], at.y());
    }
    return blob;
}

/// Whether the middle of a cell is white; none if it is neither white nor black.
std::optional<bool> cell(const QImage &grey, const Blob &ring, int column, int row)
{
    const int inRing = static_cast<int>((column + 0.5) * ring.bounds.width() / kColumns);
    const double top = ring.top.at(inRing);
    const double height = ring.bottom.at(inRing) + 1 - top;
    const QPoint middle(ring.bounds.left() + inRing,
                        static_cast<int>(top + (row + 0.5) * height / kRows));
    const QRect around = QRect(middle - QPoint(1, 1), QSize(3, 3)) & grey.rect();
    int sum = 0;
    for (int y = around.top(); y <= around.bottom(); ++y) {
        for (int x = around.left(); x <= around.right(); ++x)
            sum += grey.constScanLine(y)[x];
    }
    const int level = sum / std::max(1, around.width() * around.height());
    if (level > kBlack && level < kWhite)
        return {};
    return level >= kWhite;
}

/// The number in a blob, if it is the ring of a block.
std::optional<int> number(const QImage &grey, const Blob &ring)
{
    quint32 code = 0;
    for (int row = 0; row < kRows; ++row) {
        for (int column = 0; column < kColumns; ++column) {
            const std::optional<bool> white = cell(grey, ring, column, row);
            const int depth = std::min({column, row, kColumns - 1 - column, kRows - 1 - row});
            if (!white || (depth < kRings && *white != isWhite(column, row, 0)))
                return {};
            if (depth >= kRings)
                code = code << 1U | (*white ? 1U : 0U);
        }
    }
    const int value = static_cast<int>(code >> 16U);
    return coded(value) == code ? std::optional<int>(value) : std::nullopt;
}

/// The largest difference of a patch, near its corners and in its middle, from its colour. `place`
/// tells where in the picture a longitude and a latitude lie.
template <typename Place>
int largestError(const QImage &picture, const Place &place)
{
    constexpr double kNearCornerDeg = 0.4 * kPatchDeg;
    int largest = 0;
    const QVector<FrameCode::Patch> all = FrameCode::patches();
    for (const FrameCode::Patch &patch : all) {
        for (int point = 0; point < 9; ++point) {
            const int row = point / 3 - 1;
            const int column = point % 3 - 1;
            const QPointF at = place(patch.longitudeDeg + column * kNearCornerDeg,
                                     patch.latitudeDeg + row * kNearCornerDeg);
            const QColor shown = picture.pixelColor(int(at.x()), int(at.y()));
            largest = std::max({largest, std::abs(shown.red() - patch.colour.red()),
                                std::abs(shown.green() - patch.colour.green()),
                                std::abs(shown.blue() - patch.colour.blue())});
        }
    }
    return largest;
}

} // namespace

QImage FrameCode::frame(const QSize &size, int number)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor(kBackground, kBackground, kBackground));
    QPainter painter(&image);
    const QVector<Patch> all = patches();
    for (const Patch &patch : all) {
        const double half = kPatchDeg / 2;
        painter.fillRect(pixels(size, patch.longitudeDeg - half, patch.latitudeDeg + half,
                                patch.longitudeDeg + half, patch.latitudeDeg - half),
                         patch.colour);
    }
    painter.end();
    draw(image, number);
    return image;
}

void FrameCode::draw(QImage &picture, int number)
{
    constexpr int kMiddleColumn = kColumns / 2;
    constexpr int kMiddleRow = kRows / 2;
    QPainter painter(&picture);
    for (int row = 0; row < kRows; ++row) {
        for (int column = 0; column < kColumns; ++column) {
            const double left = (column - kMiddleColumn) * kCellDeg;
            const double top = (kMiddleRow - row) * kCellDeg;
            painter.fillRect(pixels(picture.size(), left, top, left + kCellDeg, top - kCellDeg),
                             isWhite(column, row, coded(number)) ? Qt::white : Qt::black);
        }
    }
}

std::optional<int> FrameCode::read(const QImage &screenshot)
{
    const QImage grey = screenshot.convertToFormat(QImage::Format_Grayscale8);
    QImage mask = grey;
    for (int y = 0; y < mask.height(); ++y) {
        uchar *line = mask.scanLine(y);
        std::transform(line, line + mask.width(), line,
                       [](uchar level) { return uchar(level >= kWhite); });
    }
    for (int y = 0; y < mask.height(); ++y) {
        for (int x = 0; x < mask.width(); ++x) {
            if (!mask.constScanLine(y)[x])
                continue;
            const Blob blob = takeBlob(mask, {x, y});
            if (blob.bounds.width() < kColumns * kSmallestCell
                || blob.bounds.height() < kRows * kSmallestCell)
                continue;
            if (const std::optional<int> found = number(grey, blob))
                return found;
        }
    }
    return {};
}

QVector<FrameCode::Patch> FrameCode::patches()
{
    QVector<Patch> all;
    for (int i = 0; i < 8; ++i) {
        // In the order of the bars green goes off after four of them, red after two, blue after
        // one.
        const QColor colour(i & 2 ? 0 : kPatchLevel, i & 4 ? 0 : kPatchLevel,
                            i & 1 ? 0 : kPatchLevel);
        all.append(
            {(i % 4 - 1.5) * kPatchDeg, i < 4 ? kPatchLatitudeDeg : -kPatchLatitudeDeg, colour});
    }
    return all;
}

QPointF FrameCode::onScreen(double longitudeDeg, double latitudeDeg, double fovDeg,
                            const QSize &window)
{
    const double longitude = longitudeDeg * kPi / 180;
    const double latitude = latitudeDeg * kPi / 180;
    const double focal = std::min(window.width(), window.height()) / 2.0
        / std::tan(fovDeg * kPi / 360);
    return {window.width() / 2.0 + focal * std::tan(longitude),
            window.height() / 2.0 - focal * std::tan(latitude) / std::cos(longitude)};
}

int FrameCode::colourError(const QImage &screenshot, double fovDeg)
{
    return largestError(screenshot, [&](double longitudeDeg, double latitudeDeg) {
        return onScreen(longitudeDeg, latitudeDeg, fovDeg, screenshot.size());
    });
}

int FrameCode::flatColourError(const QImage &picture)
{
    return largestError(picture, [&](double longitudeDeg, double latitudeDeg) {
        return QPointF((longitudeDeg / 360 + 0.5) * picture.width(),
                       (0.5 - latitudeDeg / 180) * picture.height());
    });
}

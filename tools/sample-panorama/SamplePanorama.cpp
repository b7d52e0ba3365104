#include "SamplePanorama.h"

#include "Noise.h"
#include "Scenery.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int kGridStep = 30;         // degrees
constexpr double kGridLine = 1.6;     // pixels
constexpr double kGridStrength = 0.5; // 1 is white
constexpr QColor kAccent(0xff, 0x40, 0x12);
constexpr QColor kPlate(0x14, 0x18, 0x20, 0xb4);

double radians(double degrees)
{
    return degrees * kPi / 180.0;
}

/// How much of a pixel a line covers whose middle is @p distance away; both in radians.
double lineCoverage(double distance, double widthInPixels, double pixelAngle)
{
    return std::clamp(0.5 * widthInPixels + 0.5 - distance / pixelAngle, 0.0, 1.0);
}

double toNearestGridLine(double angle)
{
    const double step = radians(kGridStep);
    return std::abs(angle - step * std::round(angle / step));
}

/// Strength of the lines that follow a row: parallels, and the ring and dot of the zenith.
double rowLines(double latitude, double pixelAngle)
{
    const double polar = radians(90) - latitude;
    const double mark = std::max(lineCoverage(std::abs(polar - radians(3.4)), 3, pixelAngle),
                                 lineCoverage(polar, 10, pixelAngle));
    const bool nearPole = std::abs(latitude) > radians(80);
    const double parallel = lineCoverage(toNearestGridLine(latitude), kGridLine, pixelAngle);
    return std::max(0.9 * mark, nearPole ? 0.0 : kGridStrength * parallel);
}

void paintScenery(QImage &image)
{
    const int width = image.width();
    const int height = image.height();
    const double pixelAngle = kPi / height;
    const auto columns = static_cast<std::size_t>(width);
    std::vector<Azimuth> azimuths(columns);
    std::vector<double> meridianDistances(columns); // at the equator, in radians
    for (std::size_t x = 0; x < columns; ++x) {
        const double longitude = (static_cast<double>(x) + 0.5 - 0.5 * width) * pixelAngle;
        azimuths[x] = azimuthAt(static_cast<float>(longitude));
        meridianDistances[x] = toNearestGridLine(longitude);
    }

    const auto channel = [](float value, float dither) {
        return static_cast<int>(std::clamp(255.0f * value + dither, 0.0f, 255.0f));
    };
    const auto angle = static_cast<float>(pixelAngle);
    for (int y = 0; y < height; ++y) {
        auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        const double latitude = (0.5 * height - y - 0.5) * pixelAngle;
        const auto up = static_cast<float>(std::sin(latitude));
        const double narrowing = std::cos(latitude);
        const auto level = static_cast<float>(narrowing);
        const double parallel = rowLines(latitude, pixelAngle);
        // Meridians end before they crowd at the poles.
        const double fade = std::clamp((radians(81) - std::abs(latitude)) / radians(8), 0.0, 1.0);
        for (std::size_t x = 0; x < columns; ++x) {
            const Azimuth &azimuth = azimuths[x];
            const Direction direction = {level * azimuth.sine, up, level * azimuth.cosine};
            Colour colour = up >= 0 ? skyAndHills(azimuth, direction, angle)
                                    : ground(azimuth, direction, angle);
            const double meridian = lineCoverage(narrowing * meridianDistances[x], kGridLine,
                                                 pixelAngle);
            const double line = std::max(parallel, kGridStrength * fade * meridian);
            colour = mix(colour, {1.0f, 1.0f, 1.0f}, static_cast<float>(line));
            const float dither = latticeValue(static_cast<int>(x), y);
            row[x] = qRgb(channel(colour.r, dither), channel(colour.g, dither),
                          channel(colour.b, dither));
        }
    }
}

/// Writes labels at angles of view, with sizes in degrees.
class Labels
{
public:
    explicit Labels(QImage &image)
        : m_painter(&image)
        , m_pixelsPerDegree(image.height() / 180.0)
    {
        m_painter.setRenderHint(QPainter::Antialiasing);
        m_painter.setPen(Qt::NoPen);
    }

    /// Centres @p text on a plate at an angle of view in degrees. The label is as much wider as
    /// the projection widens its parallel, and so looks the same from the viewer's place.
    void write(const QString &text, double longitude, double latitude, double size,
               const QColor &plate)
    {
        const QFont font = fontOfSize(size * m_pixelsPerDegree);
        const QRectF bounds = QFontMetricsF(font).tightBoundingRect(text);
        const double height = 1.9 * size * m_pixelsPerDegree;
        const double width = std::max(height, bounds.width() + 0.8 * size * m_pixelsPerDegree);
        QPainterPath letters;
        letters.addText(-bounds.center(), font, text);

        m_painter.save();
        m_painter.translate((longitude + 180.0) * m_pixelsPerDegree,
                            (90.0 - latitude) * m_pixelsPerDegree);
        m_painter.scale(1.0 / std::cos(radians(latitude)), 1.0);
        m_painter.setBrush(plate);
        m_painter.drawRoundedRect(QRectF(-0.5 * width, -0.5 * height, width, height), 0.5 * height,
                                  0.5 * height);
        m_painter.fillPath(letters, Qt::white);
        m_painter.restore();
    }

    /// Writes @p text beside a pole, upright for a viewer who turns up or down from the north.
    void writeAtPole(const QString &text, bool zenith, double polarAngle, double size)
    {
        const QFont font = fontOfSize(100.0);
        const QRectF bounds = QFontMetricsF(font).tightBoundingRect(text);
        QPainterPath letters;
        letters.addText(-bounds.center(), font, text);

        QPainterPath projected;
        projected.setFillRule(Qt::WindingFill);
        const QList<QPolygonF> outlines = letters.toSubpathPolygons();
        for (const QPolygonF &outline : outlines) {
            QPolygonF bent;
            for (int i = 0; i + 1 < outline.size(); ++i) {
                for (int part = 0; part < kEdgeParts; ++part) {
                    const QLineF edge(outline[i], outline[i + 1]);
                    const QPointF point = edge.pointAt(double(part) / kEdgeParts) * size / 100.0;
                    const double north = zenith ? polarAngle + point.y() : polarAngle - point.y();
                    const double longitude = std::atan2(point.x(), north) * 180.0 / kPi;
                    const double polar = std::hypot(point.x(), north);
                    bent << QPointF((longitude + 180.0) * m_pixelsPerDegree,
                                    (zenith ? polar : 180.0 - polar) * m_pixelsPerDegree);
                }
            }
            projected.addPolygon(bent);
            projected.closeSubpath();
        }
        m_painter.fillPath(projected, Qt::white);
    }

private:
    static constexpr int kEdgeParts = 8;

    static QFont fontOfSize(double pixels)
    {
        QFont font(panoramaFontFamily());
        font.setBold(true);
        font.setPixelSize(std::max(1, static_cast<int>(std::lround(pixels))));
        font.setHintingPreference(QFont::PreferNoHinting);
        return font;
    }

    QPainter m_painter;
    double m_pixelsPerDegree; ///< along the equator and every meridian
};

QString degrees(int angle, char positive, char negative)
{
    return QString::number(std::abs(angle)) + QChar(0xb0)
        + QLatin1Char(angle > 0 ? positive : negative);
}

void paintLabels(QImage &image)
{
    Labels labels(image);
    for (int longitude = -180; longitude <= 180; longitude += kGridStep) {
        if (longitude % 90 != 0) {
            labels.write(degrees(longitude, 'E', 'W'), longitude, 0, 1.9, kPlate);
            continue;
        }
        for (int latitude = -60; latitude <= 60; latitude += kGridStep) {
            if (latitude != 0)
                labels.write(degrees(latitude, 'N', 'S'), longitude, latitude, 1.9, kPlate);
        }
    }
    labels.write(QStringLiteral("N"), 0, 0, 4.2, kAccent);
    labels.write(QStringLiteral("E"), 90, 0, 4.2, kPlate);
    labels.write(QStringLiteral("W"), -90, 0, 4.2, kPlate);
    // South lies on the seam: half at either edge of the image.
    labels.write(QStringLiteral("S"), -180, 0, 4.2, kPlate);
    labels.write(QStringLiteral("S"), 180, 0, 4.2, kPlate);
    labels.writeAtPole(QStringLiteral("ZENITH"), true, 6.0, 2.0);
    labels.writeAtPole(QStringLiteral("NADIR"), false, 4.0, 2.0);
}

} // namespace

QString panoramaFontFamily()
{
    return QStringLiteral("DejaVu Sans");
}

QImage drawSamplePanorama(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    paintScenery(image);
    paintLabels(image);
    return image;
}

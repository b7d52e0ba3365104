#include "ExifMapping.h"

#include "ExifText.h"
#include "FocalLength.h"
#include "TextScanner.h"

#include <QCoreApplication>
#include <QTextStream>

#include <algorithm>
#include <cmath>

namespace {

struct Reading
{
    ImageMetadata metadata;
    double shutterTime = 0; // seconds
    FocalLength focal;
};

struct PlaneUnit
{
    std::string_view word; // what a value begins with
    double millimetres;
    QStringView shown;
};

constexpr PlaneUnit kPlaneUnits[] = {{"Inch", 25.4, u"inch"},
                                     {"cm", 10.0, u"cm"},
                                     {"um", 0.001, u"\u00b5m"}};

const PlaneUnit *planeUnit(std::string_view text)
{
    for (const PlaneUnit &unit : kPlaneUnits) {
        if (text.substr(0, unit.word.size()) == unit.word)
            return &unit;
    }
    return nullptr;
}

struct Tag
{
    unsigned tag;
    const char *label; // in the summary; null for one that does not stand there
    void (*take)(const std::string &value, Reading &reading);
};

constexpr unsigned kPlaneUnitTag = 0xA210;
constexpr unsigned kUserCommentTag = 0x9286;

using namespace ExifText;
using Text = std::string;

constexpr Tag kTags[] = {
    {0x10F, QT_TRANSLATE_NOOP("ImageDef", "Maker"),
     [](const Text &v, Reading &r) { r.metadata.maker = QString::fromStdString(v); }},
    {0x110, QT_TRANSLATE_NOOP("ImageDef", "Model"),
     [](const Text &v, Reading &r) { r.metadata.model = QString::fromStdString(v); }},
    {0x112, nullptr, [](const Text &v, Reading &r) { r.metadata.orientation = orientation(v); }},
    {0x829A, QT_TRANSLATE_NOOP("ImageDef", "Exposure time"),
     [](const Text &v, Reading &r) { r.metadata.exposureTime = parseRational(v); }},
    {0x829D, QT_TRANSLATE_NOOP("ImageDef", "F Number"),
     [](const Text &v, Reading &r) { r.metadata.fNumber = double(leadingNumber<float>(v)); }},
    {0x8827, QT_TRANSLATE_NOOP("ImageDef", "ISO"),
     [](const Text &v, Reading &r) { r.metadata.iso = leadingNumber<int>(v); }},
    {0x9003, QT_TRANSLATE_NOOP("ImageDef", "Date Time"),
     [](const Text &v, Reading &r) { r.metadata.dateTime = secondsOfLocalTime(v); }},
    {0x9201, QT_TRANSLATE_NOOP("ImageDef", "Shutter speed"),
     [](const Text &v, Reading &r) { r.shutterTime = parseRational(v); }},
    {0x9204, QT_TRANSLATE_NOOP("ImageDef", "Exposure bias value"),
     [](const Text &v, Reading &r) { r.metadata.exposureBias = parseRational(v); }},
    {0x920A, QT_TRANSLATE_NOOP("ImageDef", "Real focal length"),
     [](const Text &v, Reading &r) { r.focal.realMm = leadingNumber<double>(v); }},
    {0xA002, QT_TRANSLATE_NOOP("ImageDef", "Width"),
     [](const Text &v, Reading &r) { r.metadata.imageWidth = leadingNumber<int>(v); }},
    {0xA003, QT_TRANSLATE_NOOP("ImageDef", "Height"),
     [](const Text &v, Reading &r) { r.metadata.imageHeight = leadingNumber<int>(v); }},
    {0xA20E, QT_TRANSLATE_NOOP("ImageDef", "Focal plane res X"),
     [](const Text &v, Reading &r) { r.focal.planeResolutionX = parseRational(v); }},
    {0xA20F, QT_TRANSLATE_NOOP("ImageDef", "Focal plane res Y"),
     [](const Text &v, Reading &r) { r.focal.planeResolutionY = parseRational(v); }},
    {kPlaneUnitTag, QT_TRANSLATE_NOOP("ImageDef", "Focal plan res. unit"),
     [](const Text &v, Reading &r) {
         const PlaneUnit *const unit = planeUnit(v);
         r.focal.planeUnitMm = unit ? unit->millimetres : 0;
     }},
    {0xA405, QT_TRANSLATE_NOOP("ImageDef", "35mm f.length"),
     [](const Text &v, Reading &r) { r.focal.in35mmFilmMm = leadingNumber<double>(v); }},
};

QString summaryItem(const char *label, const GflExifEntry &item)
{
    const PlaneUnit *const unit = item.tag == kPlaneUnitTag ? planeUnit(item.value) : nullptr;
    return QCoreApplication::translate("ImageDef", label) + QLatin1String(": \"")
        + (unit ? unit->shown.toString() : QString::fromStdString(item.value))
        + QLatin1String("\";");
}

void takeMakerNote(const GflExifEntry &item, ImageMetadata &metadata)
{
    constexpr std::string_view lensId = "LensID";
    if (item.name.compare(0, lensId.size(), lensId) == 0)
        metadata.lensId = QString::fromStdString(item.value).trimmed();
    if (item.name == "ZenithEs") {
        TextScanner scan(item.value);
        float roll = 0;
        float pitch = 0;
        if (scan.read(roll))
            scan.read(pitch);
        metadata.zenithRoll = double(roll);
        metadata.zenithPitch = double(pitch);
    }
}

void takeGps(const GflExifEntry &item, ImageMetadata &metadata)
{
    const QString value = QString::fromStdString(item.value);
    switch (item.tag) {
    case 1:
        metadata.latitudeReference = value;
        break;
    case 2:
        metadata.latitude = latitudeOrLongitude(value);
        break;
    case 3:
        metadata.longitudeReference = value;
        break;
    case 4:
        metadata.longitude = latitudeOrLongitude(value);
        break;
    case 6:
        metadata.altitude = 0.0;
        break;
    case 16:
        metadata.directionReference = value;
        break;
    case 17:
        metadata.imageDirection = imageDirection(value);
        break;
    default:
        break;
    }
}

double exposureValue(const ImageMetadata &metadata)
{
    if (metadata.exposureTime == 0 || metadata.fNumber == 0)
        return 0;
    const double value = std::log(metadata.fNumber * metadata.fNumber / metadata.exposureTime);
    return std::isfinite(value) ? value : 0; // a negative time has none
}

double nextNumber(QTextStream &stream)
{
    double number = 0;
    stream >> number;
    return std::isfinite(number) ? number : 0;
}

/// Takes the fields of view of "FOV: 120 ~ 60 ~ 30".
void takeUserComment(const QString &comment, ImageMetadata &metadata)
{
    const int start = comment.indexOf(QLatin1String("FOV:"));
    if (start < 0)
        return;
    QString numbers = comment.mid(start + 5);
    QTextStream stream(&numbers, QIODevice::ReadOnly);
    QString word;
    metadata.horizontalFieldOfView = nextNumber(stream);
    stream >> word;
    metadata.verticalFieldOfView = nextNumber(stream);
    stream >> word;
    const double third = nextNumber(stream);
    if (word == QLatin1String("~"))
        metadata.thirdFieldOfView = third;
}

} // namespace

ExifMapping::Result ExifMapping::map(const GflExifData &items, const GflExif2Data &rawItems,
                                     const CropFactor &cropFactor)
{
    if (items.empty())
        return {};
    Reading reading;
    ImageMetadata &metadata = reading.metadata;
    QString summary;
    for (const GflExifEntry &item : items) {
        const Tag *const tag = std::find_if(std::begin(kTags), std::end(kTags),
                                            [&item](const Tag &t) { return t.tag == item.tag; });
        if (tag != std::end(kTags)) {
            tag->take(item.value, reading);
            if (tag->label) {
                if (!summary.isEmpty())
                    summary += QLatin1Char('\n');
                summary += summaryItem(tag->label, item);
            }
        } else if (item.flag == GflExifEntry::MakerNote) {
            takeMakerNote(item, metadata);
        }
        if (item.flag == GflExifEntry::Gps)
            takeGps(item, metadata);
    }
    if (metadata.exposureTime == 0)
        metadata.exposureTime = reading.shutterTime;
    reading.focal.planeWidth = metadata.imageWidth;
    reading.focal.planeHeight = metadata.imageHeight;
    const FocalLength::In35mm reduced = reading.focal.reduce(
        cropFactor(metadata.maker, metadata.model));
    metadata.focalLength35mm = reduced.focalLengthMm;
    metadata.scaleFactor = reduced.scaleFactor;
    metadata.exposureValue = exposureValue(metadata);
    for (const GflExif2Entry &item : rawItems) {
        if (item.tag == kUserCommentTag)
            takeUserComment(QString::fromStdString(item.value), metadata);
    }
    return {metadata, summary, reduced.isKnown};
}

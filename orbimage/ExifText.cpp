#include "ExifText.h"

#include "ImageMetadata.h"
#include "TextScanner.h"

#include <QRegularExpression>

#include <cmath>
#include <ctime>
#include <limits>

namespace {

// A match that starts within a row of digits starts at its first one too; to try only there spares
// a time that grows with the square of the row's length.
const char kRowStart[] = "(?<!\\d)";

QRegularExpression expression(const char *pattern)
{
    return QRegularExpression(QLatin1String(kRowStart) + QLatin1String(pattern),
                              QRegularExpression::DotMatchesEverythingOption
                                  | QRegularExpression::UseUnicodePropertiesOption);
}

double fraction(const QString &text)
{
    const int slash = text.indexOf(QLatin1Char('/'));
    return slash < 0 ? text.toDouble()
                     : text.leftRef(slash).toDouble() / text.midRef(slash + 1).toDouble();
}

double finiteOrUnknown(double degrees)
{
    return std::isfinite(degrees) ? degrees : ImageMetadata::kUnknownPlace;
}

} // namespace

double ExifText::parseRational(std::string_view text)
{
    const auto quotient = [text](auto dividend, auto divisor) {
        TextScanner scan(text);
        const bool isRead = scan.read(dividend) && scan.skip('/') && scan.read(divisor);
        return isRead && dividend != 0 && divisor != 0 ? double(dividend) / double(divisor) : 0.0;
    };
    double number = 0;
    if (text.find('/') != std::string_view::npos) {
        number = quotient(0, 0);
        if (number == 0)
            number = quotient(0.0F, 0.0F);
    }
    if (number == 0 && text.find_first_of(".,") != std::string_view::npos)
        number = double(leadingNumber<float>(text));
    return number == 0 ? leadingNumber<int>(text) : number;
}

int ExifText::orientation(std::string_view text)
{
    TextScanner scan(text);
    scan.skipWord();
    scan.skipBlanks();
    int number = 0;
    if (scan.skip('('))
        scan.read(number);
    return number;
}

qint64 ExifText::secondsOfLocalTime(std::string_view text)
{
    constexpr qint64 lastSecond = 32535215999; // of the year 3000, in UTC
    constexpr int least = std::numeric_limits<int>::min() + 1900;
    std::tm time{};
    time.tm_isdst = -1; // whatever was in force
    TextScanner scan(text);
    const bool isRead = scan.read(time.tm_year) && scan.skip(':') && scan.read(time.tm_mon)
        && scan.skip(':') && scan.read(time.tm_mday) && scan.read(time.tm_hour) && scan.skip(':')
        && scan.read(time.tm_min) && scan.skip(':') && scan.read(time.tm_sec);
    if (!isRead || time.tm_year < least || time.tm_mon < least)
        return 0;
    time.tm_year -= 1900;
    time.tm_mon -= 1;
    const qint64 seconds = std::mktime(&time);
    return seconds >= 0 && seconds <= lastSecond ? seconds : 0;
}

double ExifText::latitudeOrLongitude(const QString &text)
{
    static const QRegularExpression form = expression(
        "(\\d+).\\s+(\\d+(?:[\\.,/]\\d+)?)'\\s+(\\d+(?:[\\.,/]\\d+)?)\"");
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return ImageMetadata::kUnknownPlace;
    return finiteOrUnknown(match.captured(1).toDouble() + fraction(match.captured(2)) / 60.0
                           + fraction(match.captured(3)) / 3600.0);
}

double ExifText::imageDirection(const QString &text)
{
    static const QRegularExpression form = expression("(\\d+)([\\.,/]\\d+)");
    const QRegularExpressionMatch match = form.match(text);
    if (match.capturedRef(2).startsWith(QLatin1Char('/')))
        return finiteOrUnknown(fraction(match.captured()));
    bool isRead = false;
    const float degrees = text.toFloat(&isRead);
    return isRead ? finiteOrUnknown(double(degrees)) : ImageMetadata::kUnknownPlace;
}

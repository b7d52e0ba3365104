#pragma once

#include <QString>

#include <string_view>

/// The readable values of EXIF items. Pure, for any bytes, and in a time that grows with the text's
/// length alone; all results are finite.
namespace ExifText {

/// Of "1/250", "0.5" or "2"; 0 for a text that is no number.
double parseRational(std::string_view text);

/// The number in brackets after the first word of the text, as of "Top-left (1)"; 0 if none is
/// there.
int orientation(std::string_view text);

/// Seconds since 1970 of a local "year:month:day hour:minute:second", where a part beyond its range
/// carries over into the next; 0 for another text and for a time before 1970 or after 3000.
qint64 secondsOfLocalTime(std::string_view text);

/// Degrees of "48° 51' 30.5\"", with any one letter for the sign of degrees and with minutes and
/// seconds that may be fractions such as "61/2"; ImageMetadata::kUnknownPlace for another text.
double latitudeOrLongitude(const QString &text);

/// Degrees of "123.5" or "247/2"; ImageMetadata::kUnknownPlace for another text.
double imageDirection(const QString &text);

} // namespace ExifText

#pragma once

#include <QStringList>
#include <QVector>

#include <optional>

class QTextStream;

/// The form of the library's tables: text, a row a line, its cells divided by ";". All of a line
/// from the first "#" on is a comment.
namespace TableRows {

/// So many characters of what an image file says of its camera count for a look-up: no name is
/// longer, and a file may say anything.
constexpr int kLongestText = 1024;

/// The cells of each line, as they stand, in the order of the lines. A line that is empty without
/// its comment is no row.
QVector<QStringList> parse(QTextStream &text);

/// The rows of a file. None for what is no regular file, cannot be opened or is larger than 4 MiB.
QVector<QStringList> read(const QString &fileName);

/// The finite number that a cell holds, with a point whatever the locale; blanks around it are
/// allowed.
std::optional<float> number(const QString &cell);

} // namespace TableRows

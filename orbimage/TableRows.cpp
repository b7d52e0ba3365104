#include "TableRows.h"

#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QTextStream>

#include <cmath>

Q_LOGGING_CATEGORY(lcImage, "orbix.image", QtInfoMsg)

namespace {
constexpr qint64 kLargestFile = qint64(4) * 1024 * 1024;
}

QVector<QStringList> TableRows::parse(QTextStream &text)
{
    QVector<QStringList> rows;
    QString line;
    while (text.readLineInto(&line)) {
        const int comment = line.indexOf(QLatin1Char('#'));
        if (comment >= 0)
            line.truncate(comment);
        if (!line.isEmpty())
            rows.append(line.split(QLatin1Char(';')));
    }
    return rows;
}

QVector<QStringList> TableRows::read(const QString &fileName)
{
    QFile file(fileName);
    if (!QFileInfo(fileName).isFile() || file.size() > kLargestFile
        || !file.open(QIODevice::ReadOnly)) {
        // A program without its tables still plays everything, so nobody is told.
        qCDebug(lcImage, "Can't open %s", qUtf8Printable(fileName));
        return {};
    }
    QTextStream text(file.read(kLargestFile));
    return parse(text);
}

std::optional<float> TableRows::number(const QString &cell)
{
    bool isNumber = false;
    const float value = cell.toFloat(&isNumber);
    if (!isNumber || !std::isfinite(value))
        return std::nullopt;
    return value;
}

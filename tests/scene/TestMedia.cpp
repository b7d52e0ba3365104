#include "TestMedia.h"

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QProcess>

namespace {
constexpr int kColumns = 4;
constexpr int kRows = 2;
} // namespace

QColor TestMedia::octant(int column, int row)
{
    static const QColor kColours[kRows][kColumns] = {
        {{200, 40, 40}, {40, 160, 40}, {40, 40, 200}, {200, 200, 40}},
        {{200, 40, 200}, {40, 200, 200}, {220, 120, 20}, {110, 60, 160}},
    };
    return kColours[row][column];
}

QString TestMedia::octants(const QString &name, const QSize &size)
{
    // A file that is being read stays as it is.
    if (QFile::exists(path(name)))
        return path(name);
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    const QSize cell(size.width() / kColumns, size.height() / kRows);
    for (int row = 0; row < kRows; ++row) {
        for (int column = 0; column < kColumns; ++column)
            painter.fillRect(QRect({column * cell.width(), row * cell.height()}, cell),
                             octant(column, row));
    }
    painter.end();
    image.save(path(name));
    return path(name);
}

QString TestMedia::flat(const QString &name, const QColor &colour, const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    image.save(path(name));
    return path(name);
}

QString TestMedia::bytes(const QString &name, const QByteArray &content)
{
    QFile file(path(name));
    if (file.open(QIODevice::WriteOnly))
        file.write(content);
    return path(name);
}

QString TestMedia::film()
{
    const QString target = path(QStringLiteral("film.mp4"));
    if (QFile::exists(target))
        return target;
    const auto half = [](const QColor &colour) {
        return QStringLiteral("color=0x%1:s=160x160:r=25:d=2").arg(colour.name().mid(1));
    };
    QProcess encoder;
    encoder.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    encoder.start(QStringLiteral(FFMPEG),
                  {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-filter_complex"),
                   half(filmLeft()) + QStringLiteral("[left];") + half(filmRight())
                       + QStringLiteral("[right];[left][right]hstack"),
                   QStringLiteral("-c:v"), QStringLiteral("libx264"), QStringLiteral("-pix_fmt"),
                   QStringLiteral("yuv420p"), QStringLiteral("-t"), QStringLiteral("2"), target});
    const bool done = encoder.waitForFinished() && encoder.exitStatus() == QProcess::NormalExit
        && encoder.exitCode() == 0;
    return done ? target : QString();
}

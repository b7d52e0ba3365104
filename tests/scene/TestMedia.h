#pragma once

#include <QColor>
#include <QSize>
#include <QTemporaryDir>
#include <QUrl>

/// Pictures, films and broken files for the tests, made when they are asked for in a folder of
/// their own. Files keep their path, so that asking twice gives the same file.
class TestMedia
{
public:
    /// The full sphere cut into octants, each of one colour. A column is a quarter turn of yaw from
    /// -180 degrees on, row 0 is above the horizon.
    static QColor octant(int column, int row);

    /// The two colours of the film: its left and its right half.
    static QColor filmLeft() { return {200, 60, 40}; }
    static QColor filmRight() { return {40, 80, 210}; }

    QString folder() const { return m_folder.path(); }
    QString octants() { return octants(QStringLiteral("octants.png"), {512, 256}); }
    QString octants(const QString &name, const QSize &size);
    QString flat(const QString &name, const QColor &colour, const QSize &size = {64, 32});
    QString bytes(const QString &name, const QByteArray &content);

    /// Two seconds without sound; empty if the encoder fails, whose words are then on the output.
    QString film();

private:
    QString path(const QString &name) const { return m_folder.filePath(name); }

    QTemporaryDir m_folder;
};

/// The address of a local file, as a drop or a file manager gives it.
inline QUrl fileUrl(const QString &path)
{
    return QUrl::fromLocalFile(path);
}

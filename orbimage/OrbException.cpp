#include "OrbException.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {

const char *name(GflError error)
{
    switch (error) {
    case GflError::FileOpen:
        return "GFL_ERROR_FILE_OPEN";
    case GflError::FileRead:
        return "GFL_ERROR_FILE_READ";
    case GflError::FileCreate:
        return "GFL_ERROR_FILE_CREATE";
    case GflError::FileWrite:
        return "GFL_ERROR_FILE_WRITE";
    case GflError::NoMemory:
        return "GFL_ERROR_NO_MEMORY";
    case GflError::UnknownFormat:
        return "GFL_ERROR_UNKNOWN_FORMAT";
    case GflError::BadBitmap:
        return "GFL_ERROR_BAD_BITMAP";
    case GflError::BadFormatIndex:
        return "GFL_ERROR_BAD_FORMAT_INDEX";
    case GflError::BadParameters:
        return "GFL_ERROR_BAD_PARAMETERS";
    case GflError::None:
        break;
    }
    return "GFL_UNKNOWN_ERROR";
}

QString text(GflError error, const QString &fileName)
{
    const QString first = QCoreApplication::translate("OrbException", "Error GFL : \"%1\"")
                              .arg(QLatin1String(name(error)));
    if (fileName.isEmpty())
        return first;
    return first + QLatin1Char('\n')
        + QCoreApplication::translate("OrbException", "File : \"%1\"")
              .arg(QFileInfo(fileName).absoluteFilePath());
}

} // namespace

OrbException::OrbException(const QString &message, const char *file, int line)
    : m_location(
        QStringLiteral("File: \"%1\" Line: %2").arg(QString::fromUtf8(file), QString::number(line)))
    , m_message(message)
    , m_what(message.toLocal8Bit())
{}

OrbException::OrbException(GflError error, const QString &fileName, const char *file, int line)
    : OrbException(text(error, fileName), file, line)
{}

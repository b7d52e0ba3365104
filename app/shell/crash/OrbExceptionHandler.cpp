#include "OrbExceptionHandler.h"

#include <QFile>

#include <unistd.h>

#include <cstring>

namespace {

constexpr int kIdLength = 36; ///< 8-4-4-8-8 hexadecimal digits

google_breakpad::MinidumpDescriptor descriptorIn(const QString &folder)
{
    return google_breakpad::MinidumpDescriptor(QFile::encodeName(folder).toStdString());
}

} // namespace

OrbExceptionHandler::OrbExceptionHandler(const QString &dumpFolder, void *context)
    : ExceptionHandler(descriptorIn(dumpFolder), nullptr, onDumped, this, true, -1)
    , m_context(context)
    , m_dumpPath(dumpFolder)
    , m_minidumpId(kIdLength, QLatin1Char('0'))
    , m_idLetters(m_minidumpId.data())
{}

bool OrbExceptionHandler::write()
{
    const bool written = WriteMinidump();
    set_minidump_descriptor(descriptorIn(m_dumpPath)); // a crash after this has a file of its own
    return written;
}

bool OrbExceptionHandler::onDumped(const google_breakpad::MinidumpDescriptor &descriptor,
                                   void *handler, bool succeeded)
{
    auto *self = static_cast<OrbExceptionHandler *>(handler);
    const char *letter = std::strrchr(descriptor.path(), '/') + 1;
    for (int i = 0; i < kIdLength && *letter; ++i, ++letter)
        self->m_idLetters[i] = QLatin1Char(*letter);
    if (!succeeded)
        ::unlink(descriptor.path()); // what the disk had no room for is no dump
    emit self->crash_report_dumped(self->m_dumpPath, self->m_minidumpId, self->m_context,
                                   succeeded);
    return true;
}

#include "OrbImageLibrary.h"

#include "ImageDefCache.h"
#include "ImageLoadOptions.h"
#include "TemporaryStore.h"
#include "gfl.h"

#include <QDir>
#include <QMutex>
#include <QMutexLocker>

#include <memory>
#include <mutex>

namespace {

const QString kDataPrefix = QStringLiteral("Data");
constexpr int kMostMessages = 32 * 1024; // characters

struct Library
{
    ImageLoadOptions options;
    TemporaryStore store;
    std::once_flag storeMade;
    ImageDefCache cache; // its descriptions give their files back to the store
    QMutex messagesMutex;
    QString messages; // guarded by messagesMutex
};

/// Null before the start and after the stop.
std::unique_ptr<Library> &library()
{
    static std::unique_ptr<Library> made;
    return made;
}

} // namespace

// The resource of a static library has to be asked for, outside any namespace.
static void initTables()
{
    Q_INIT_RESOURCE(data);
}

void OrbImageLibrary::start()
{
    initTables();
    QDir::setSearchPaths(kDataPrefix, {QStringLiteral(":/Data")});
    gflLibraryInitEx();
    library() = std::make_unique<Library>();
}

void OrbImageLibrary::stop()
{
    library().reset();
    QDir::setSearchPaths(kDataPrefix, {});
}

ImageDefCache *OrbImageLibrary::cache()
{
    return library() ? &library()->cache : nullptr;
}

ImageLoadOptions &OrbImageLibrary::loadOptions()
{
    return library()->options;
}

TemporaryStore &OrbImageLibrary::temporaryStore()
{
    std::call_once(library()->storeMade, [] { library()->store.removeLeftovers(); });
    return library()->store;
}

QString OrbImageLibrary::gflLastMessages()
{
    const QMutexLocker lock(&library()->messagesMutex);
    return library()->messages;
}

void OrbImageLibrary::appendMessage(const QString &message)
{
    const QMutexLocker lock(&library()->messagesMutex);
    library()->messages += message + QLatin1Char('\n');
    library()->messages = library()->messages.right(kMostMessages);
}

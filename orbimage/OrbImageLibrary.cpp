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

std::unique_ptr<Library> g_library;

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
    g_library = std::make_unique<Library>();
}

void OrbImageLibrary::stop()
{
    g_library.reset();
    gflLibraryExit();
    QDir::setSearchPaths(kDataPrefix, {});
}

ImageDefCache *OrbImageLibrary::cache()
{
    return g_library ? &g_library->cache : nullptr;
}

ImageLoadOptions &OrbImageLibrary::loadOptions()
{
    return g_library->options;
}

TemporaryStore &OrbImageLibrary::temporaryStore()
{
    std::call_once(g_library->storeMade, [] { g_library->store.removeLeftovers(); });
    return g_library->store;
}

QString OrbImageLibrary::gflLastMessages()
{
    const QMutexLocker lock(&g_library->messagesMutex);
    return g_library->messages;
}

void OrbImageLibrary::appendMessage(const QString &message)
{
    const QMutexLocker lock(&g_library->messagesMutex);
    g_library->messages += message + QLatin1Char('\n');
    g_library->messages = g_library->messages.right(kMostMessages);
}

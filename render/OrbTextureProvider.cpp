#include "OrbTextureProvider.h"

#include "OrbSettingsManager.h"
#include "SharedMemoryManager.h"

#include <QOpenGLContext>
#include <QQuickWindow>
#include <QSGTexture>
#include <QSGTextureProvider>

namespace {
const QString kSharedMemory = QStringLiteral("application/sharedmemory");
} // namespace

OrbTextureProvider::OrbTextureProvider(QQuickWindow *view, OrbSettingsManager *settings)
    : m_view(view)
{
    if (settings->seededValue(kSharedMemory, false).toBool()) {
        m_liveFeed = std::make_unique<SharedMemoryManager>();
        connect(m_liveFeed.get(), &SharedMemoryManager::frameArrived, this,
                &OrbTextureProvider::contentsChanged);
    }
    connect(view, &QQuickWindow::afterRendering, this, &OrbTextureProvider::onQsgTextureChanged,
            Qt::DirectConnection);
    listenForSynchronisation();
}

OrbTextureProvider::~OrbTextureProvider() = default;

int OrbTextureProvider::textureId() const
{
    return m_liveFeed ? m_liveFeed->currentTexture() : m_textureId.load();
}

int OrbTextureProvider::shownTextureId() const
{
    return m_liveFeed ? m_liveFeed->textureName() : m_textureId.load();
}

void OrbTextureProvider::setTextureId(int id)
{
    if (takeTextureId(id))
        emit textureIdChanged();
}

/// False if it is the one already.
bool OrbTextureProvider::takeTextureId(int id)
{
    if (m_textureId.exchange(id) == id)
        return false;
    m_framesAnnounced = false;
    return true;
}

void OrbTextureProvider::frameArrived()
{
    ++m_contents;
    m_framesAnnounced = true;
    emit contentsChanged();
}

std::optional<int> OrbTextureProvider::contents() const
{
    if (m_liveFeed)
        return m_liveFeed->contents();
    if (!(m_provider || m_framesAnnounced))
        return std::nullopt;
    return m_contents;
}

void OrbTextureProvider::setShaderEffectSource(QQuickItem *quickItem)
{
    m_sourceItem = quickItem;
    {
        const std::lock_guard lock(m_providerLock);
        m_providerIsLeft = true;
    }
    listenForSynchronisation();
}

void OrbTextureProvider::listenForSynchronisation()
{
    connect(m_view, &QQuickWindow::beforeSynchronizing, this,
            &OrbTextureProvider::onBeforeSynchronizing,
            static_cast<Qt::ConnectionType>(Qt::DirectConnection | Qt::UniqueConnection));
}

void OrbTextureProvider::onBeforeSynchronizing()
{
    if (!m_context)
        m_context = QOpenGLContext::currentContext();
    takeProvider(m_sourceItem && m_sourceItem->isTextureProvider() ? m_sourceItem->textureProvider()
                                                                   : nullptr);
    disconnect(m_view, &QQuickWindow::beforeSynchronizing, this,
               &OrbTextureProvider::onBeforeSynchronizing);
}

void OrbTextureProvider::takeProvider(QSGTextureProvider *provider)
{
    if (m_provider)
        m_provider->disconnect(this);
    m_provider = provider;
    m_providerIsLeft = false;
    if (provider)
        connect(
            provider, &QSGTextureProvider::textureChanged, this, [this] { ++m_contents; },
            Qt::DirectConnection);
    ++m_contents;
}

void OrbTextureProvider::onQsgTextureChanged()
{
    bool isNew = false;
    {
        const std::lock_guard lock(m_providerLock);
        const QSGTexture *texture = m_provider && !m_providerIsLeft ? m_provider->texture()
                                                                    : nullptr;
        isNew = texture && texture->textureId() != 0 && takeTextureId(texture->textureId());
    }
    if (isNew)
        emit textureIdChanged();
}

#pragma once

#include <QObject>
#include <QOpenGLContext>
#include <QPointer>
#include <QQuickItem>
#include <QSGTextureProvider>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>

class OrbSettingsManager;
class QQuickWindow;
class SharedMemoryManager;

/// Which OpenGL texture holds the current frame of the panorama: the live feed's when that is
/// switched on, else the one that a player names or that an item of the scene provides. The scene
/// sees it as "orbTextureProvider".
///
/// Threads: it lives on the main thread. `onBeforeSynchronizing` runs on the render thread while
/// the main thread waits. The provider belongs to the render thread and is touched there alone; an
/// item's texture is asked for after every frame, since it can be replaced without a signal; but
/// not once the scene has named another source, whose texture the end of a frame of before must not
/// replace. The name is written on either thread and read on the render thread while painting.
class OrbTextureProvider : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int textureId READ textureId WRITE setTextureId NOTIFY textureIdChanged)

public:
    /// Neither argument is owned.
    OrbTextureProvider(QQuickWindow *view, OrbSettingsManager *settings);
    ~OrbTextureProvider() override;

    /// The texture's OpenGL name in the render thread's context; 0 for none.
    int textureId() const;
    void setTextureId(int id);

    /// The same for a window beside the scene's, which must not bring what a texture contains.
    int shownTextureId() const;

    /// Takes the texture of `quickItem` from the next synchronisation on. An item without a texture
    /// provider changes nothing.
    Q_INVOKABLE void setShaderEffectSource(QQuickItem *quickItem);

    /// True when the live feed is the source.
    Q_INVOKABLE bool isSharedMemory() const { return m_liveFeed != nullptr; }

    /// A player has put a new frame into the texture that it named. Says that it will for each.
    Q_INVOKABLE void frameArrived();

    /// A number that changes with what the texture shows; none where a change cannot be seen, since
    /// others fill the texture without a word. Render thread.
    std::optional<int> contents() const;

    /// The render thread's context, null before the first synchronisation.
    QOpenGLContext *context() const { return m_context; }

signals:
    void textureIdChanged();

    /// There is a new frame to paint. Main thread.
    void contentsChanged();

public slots:
    void onBeforeSynchronizing();
    void onQsgTextureChanged();

private:
    void listenForSynchronisation();

    void takeProvider(QSGTextureProvider *provider);
    bool takeTextureId(int id);

    std::atomic<int> m_textureId{0};
    std::atomic<int> m_contents{0};
    std::atomic<bool> m_framesAnnounced{false}; ///< by the player that named the texture
    QPointer<QQuickItem> m_sourceItem;
    QQuickWindow *m_view;
    QPointer<QOpenGLContext> m_context;
    QPointer<QSGTextureProvider> m_provider;
    std::mutex m_providerLock;
    bool m_providerIsLeft = false; ///< another takes its place at the next synchronisation
    std::unique_ptr<SharedMemoryManager> m_liveFeed;
};

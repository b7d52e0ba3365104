#pragma once

#include "FrameCounter.h"
#include "OrbGlobalObject.h"
#include "OrbShaderCodeBuilder.h"
#include "OrbTextureProvider.h"
#include "PanoramaProgram.h"

#include <QQuickPaintedItem>
#include <QTimer>

#include <atomic>
#include <memory>
#include <optional>

/// The panorama in the window: one quad drawn with the generated shader, from whatever texture the
/// provider names, a hundred times a second, and at once when the provider tells of a new frame. A
/// picture that would come out the same is not painted again, though it counts.
///
/// Threads: the item lives on the main thread; `updatePaintNode` and `paint` run on the render
/// thread, own the program, the viewport, the frame counter and the picture that was painted, and
/// read the view state and the builder, the latter without a lock. The
/// program is deleted on the render thread, when the window drops its OpenGL resources or the item
/// leaves it. Both let no exception out: past them Qt would catch it, and a crash report would not
/// hold its place.
class OrbixSightView : public QQuickPaintedItem
{
    Q_OBJECT
    Q_PROPERTY(int fps READ fps NOTIFY fpsChanged)

public:
    explicit OrbixSightView(QQuickItem *parent = nullptr);
    ~OrbixSightView() override;

    /// Links the item to what it draws from; none is owned. Until then it draws nothing.
    Q_INVOKABLE void init(OrbShaderCodeBuilder *builder, OrbGlobalObject *state,
                          OrbTextureProvider *textureProvider);

    /// Frames painted in the last whole second.
    int fps() const { return m_fps; }

    void paint(QPainter *painter) noexcept override;

signals:
    void fpsChanged();

public slots:
    /// The next paint builds the program anew.
    void dirtyShader();

protected:
    QSGNode *updatePaintNode(QSGNode *oldNode, UpdatePaintNodeData *data) noexcept override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;
    void releaseResources() override;

private:
    /// All that a painted picture depends on, beside the program.
    struct Picture
    {
        PanoramaView view;
        QSizeF itemPixels;
        int texture = 0;
        int contents = 0;

        bool operator==(const Picture &other) const
        {
            return view == other.view && itemPixels == other.itemPixels && texture == other.texture
                && contents == other.contents;
        }
    };

    /// The picture as it would be painted now; none if it may change unseen. Render thread.
    std::optional<Picture> currentPicture() const;

    void computeViewportParameters(const QSize &targetPixels);
    void computeFps();

    std::unique_ptr<PanoramaProgram> m_program;
    OrbShaderCodeBuilder *m_builder = nullptr;
    OrbGlobalObject *m_state = nullptr;
    OrbTextureProvider *m_textureProvider = nullptr;
    std::atomic<bool> m_initialised{false};
    std::atomic<bool> m_shaderDirty{true};
    int m_fps = 0;
    FrameCounter m_frames;
    Viewport m_viewport;
    std::optional<Picture> m_painted; ///< what stands in the item; none: paint in any case
    QTimer m_repaintTimer;
};

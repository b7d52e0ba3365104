#include "OrbixSightView.h"

#include <QDateTime>
#include <QOpenGLContext>
#include <QPainter>
#include <QQuickWindow>
#include <QRunnable>

namespace {

constexpr int kRepaintsPerSecond = 100;

/// Deletes a program on the thread that runs the job.
class DeleteProgram : public QRunnable
{
public:
    explicit DeleteProgram(std::unique_ptr<PanoramaProgram> program)
        : m_program(std::move(program))
    {}

    void run() override { m_program.reset(); }

private:
    std::unique_ptr<PanoramaProgram> m_program;
};

} // namespace

OrbixSightView::OrbixSightView(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
    setMipmap(false);
    setSmooth(false); // its pixels are those of the window
    setRenderTarget(QQuickPaintedItem::InvertedYFramebufferObject);
    connect(&m_repaintTimer, &QTimer::timeout, this, [this] { update(); });
    m_repaintTimer.start(1000 / kRepaintsPerSecond);
}

OrbixSightView::~OrbixSightView() = default;

void OrbixSightView::init(OrbShaderCodeBuilder *builder, OrbGlobalObject *state,
                          OrbTextureProvider *textureProvider)
{
    m_builder = builder;
    m_state = state;
    m_textureProvider = textureProvider;
    builder->onTextChanged(this, &OrbixSightView::dirtyShader);
    connect(textureProvider, &OrbTextureProvider::contentsChanged, this, [this] { update(); });
    setOpaquePainting(true); // from now on it covers its ground
    m_initialised = true;
}

void OrbixSightView::dirtyShader()
{
    m_shaderDirty = true;
}

QSGNode *OrbixSightView::updatePaintNode(QSGNode *oldNode, UpdatePaintNodeData *data) noexcept
{
    if (oldNode && m_initialised && !m_shaderDirty && m_painted) {
        const std::optional<Picture> picture = currentPicture();
        if (picture && *picture == *m_painted) {
            computeFps();
            return oldNode;
        }
    }
    return QQuickPaintedItem::updatePaintNode(oldNode, data);
}

std::optional<OrbixSightView::Picture> OrbixSightView::currentPicture() const
{
    const int texture = m_textureProvider->textureId(); // may bring what it contains
    const std::optional<int> contents = m_textureProvider->contents();
    if (!contents || !window())
        return std::nullopt;
    return Picture{PanoramaView::of(*m_state, m_viewport),
                   size() * window()->effectiveDevicePixelRatio(), texture, *contents};
}

void OrbixSightView::paint(QPainter *painter) noexcept
{
    if (!m_initialised)
        return;
    painter->beginNativePainting();
    if (QOpenGLContext::currentContext()) {
        if (m_shaderDirty.exchange(false)) {
            m_program.reset();
            m_program = PanoramaProgram::create(m_builder->build(false));
        }
        computeViewportParameters({painter->device()->width(), painter->device()->height()});
        // Taken before it is drawn: what changes meanwhile is drawn anew.
        m_painted = currentPicture();
        if (m_program)
            m_program->draw(m_painted ? m_painted->view : PanoramaView::of(*m_state, m_viewport),
                            static_cast<GLuint>(m_textureProvider->textureId()));
    }
    painter->endNativePainting();
    computeFps();
}

void OrbixSightView::computeViewportParameters(const QSize &targetPixels)
{
    const QVector2D size(static_cast<float>(targetPixels.width()),
                         static_cast<float>(targetPixels.height()));
    if (m_viewport.size != size)
        m_viewport = Viewport::ofTarget(targetPixels);
}

void OrbixSightView::computeFps()
{
    const std::optional<int> frames = m_frames.frameShown(QDateTime::currentMSecsSinceEpoch());
    if (!frames)
        return;
    QMetaObject::invokeMethod(
        this,
        [this, count = *frames] {
            m_fps = count;
            emit fpsChanged();
        },
        Qt::QueuedConnection);
}

void OrbixSightView::itemChange(ItemChange change, const ItemChangeData &data)
{
    if (change == ItemSceneChange && data.window)
        connect(
            data.window, &QQuickWindow::sceneGraphInvalidated, this,
            [this] {
                m_program.reset();
                m_painted.reset();
                m_shaderDirty = true;
            },
            Qt::DirectConnection);
    QQuickPaintedItem::itemChange(change, data);
}

void OrbixSightView::releaseResources()
{
    if (m_program)
        window()->scheduleRenderJob(new DeleteProgram(std::move(m_program)),
                                    QQuickWindow::BeforeSynchronizingStage);
    m_shaderDirty = true;
    QQuickPaintedItem::releaseResources();
}

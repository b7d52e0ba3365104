#include "VlcStage.h"

#include "FrameCode.h"
#include "VlcOptions.h"

#include <QOpenGLExtraFunctions>
#include <QProcess>
#include <QTest>

VlcStage::VlcStage(int transfer)
{
    VlcOptions::process().textureTransfer = transfer;
    player = std::make_unique<OrbuiQuickVideoPlayerVlc>();
    window.resize(320, 200);
    player->setParentItem(window.contentItem());
    player->setSize({320, 200});
    QObject::connect(player.get(), &OrbuiQuickVideoPlayerVlc::vlcStateChanged, &window,
                     [this](int state) { states += state; });
    QObject::connect(player.get(), &OrbuiQuickVideoPlayerVlc::errorStringChanged, &window,
                     [this](const QString &error) { errors += error; });
    m_context.setShareContext(QOpenGLContext::globalShareContext());
    m_context.setFormat(QOpenGLContext::globalShareContext()->format());
    m_context.create();
    m_surface.setFormat(m_context.format());
    m_surface.create();
}

VlcStage::~VlcStage()
{
    player.reset();
    window.hide();
}

void VlcStage::show()
{
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(QTest::qWaitFor([this] { return !player->textureTransfer().isEmpty(); }));
    // A route through the caller's context finds this one.
    m_context.makeCurrent(&m_surface);
}

QImage VlcStage::texture()
{
    const auto name = static_cast<GLuint>(player->textureId());
    if (name == 0 || !m_context.makeCurrent(&m_surface))
        return {};
    QOpenGLExtraFunctions *gl = m_context.extraFunctions();
    GLint width = 0;
    GLint height = 0;
    gl->glBindTexture(GL_TEXTURE_2D, name);
    gl->glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    gl->glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &height);
    gl->glBindTexture(GL_TEXTURE_2D, 0);
    GLuint framebuffer = 0;
    gl->glGenFramebuffers(1, &framebuffer);
    gl->glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    gl->glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, name, 0);
    QImage image(width, height, QImage::Format_RGBA8888);
    gl->glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, image.bits());
    gl->glBindFramebuffer(GL_FRAMEBUFFER, 0);
    gl->glDeleteFramebuffers(1, &framebuffer);
    return image.rgbSwapped();
}

std::optional<int> VlcStage::numberIn(const QImage &image)
{
    return image.isNull() ? std::nullopt : FrameCode::read(image.scaled(image.size() * 2));
}

std::optional<int> VlcStage::frameNumber()
{
    return numberIn(texture());
}

bool VlcStage::waitForFrame(const std::function<bool(int)> &isWanted)
{
    return QTest::qWaitFor([&] {
        const std::optional<int> number = frameNumber();
        return number && isWanted(*number);
    });
}

OrbuiQuickVideoPlayerVlc::VlcState VlcStage::state() const
{
    return states.isEmpty() ? OrbuiQuickVideoPlayerVlc::Idle
                            : OrbuiQuickVideoPlayerVlc::VlcState(states.last());
}

bool VlcStage::waitForState(OrbuiQuickVideoPlayerVlc::VlcState wanted) const
{
    return QTest::qWaitFor([&] { return state() == wanted; });
}

QString writeStill(const QString &path, const QImage &picture, int frames)
{
    QProcess encoder;
    encoder.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    encoder.start(QStringLiteral("ffmpeg"),
                  QStringLiteral("-y -v error -f rawvideo -pix_fmt gray -s %1x%2 -r 25 -i - -vf "
                                 "scale=in_range=pc:out_range=tv,format=yuv444p -c:v libx264 -qp 0 "
                                 "-preset ultrafast %3")
                      .arg(picture.width())
                      .arg(picture.height())
                      .arg(path)
                      .split(QLatin1Char(' ')));
    const QImage gray = picture.convertToFormat(QImage::Format_Grayscale8);
    for (int frame = 0; frame < frames; ++frame) {
        for (int row = 0; row < gray.height(); ++row)
            encoder.write(reinterpret_cast<const char *>(gray.constScanLine(row)), gray.width());
    }
    encoder.closeWriteChannel();
    return encoder.waitForFinished() && encoder.exitCode() == 0 ? path : QString();
}

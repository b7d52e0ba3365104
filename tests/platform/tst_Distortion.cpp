#include "DistortionRenderer.h"
#include "TestHeadset.h"
#include "WarningsFail.h"
#include "gl.h"

#include <QImage>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>
#include <QOpenGLTexture>
#include <QScreen>
#include <QWindow>
#include <QtTest>

#include <optional>

class tst_Distortion : public WarningsFail
{
    Q_OBJECT

private slots:
    void init();
    void everyPixelFollowsTheLens_data();
    void everyPixelFollowsTheLens();
    void eyesStayApartAndTheCallersStateAsItWas();
    void aFrameReachesItsWindowAlone();

private:
    QImage drawn(const TestHeadset &headset, unsigned caps, const QImage &pictures, QSize panel);
    std::vector<GLint> state();

    std::unique_ptr<QWindow> m_window;
    std::unique_ptr<QOpenGLContext> m_context;
};

namespace {

constexpr QSize kEye(1100, 1358); // about as fine as the panel in the middle of a lens

std::unique_ptr<QWindow> makeWindow(int x)
{
    QSurfaceFormat format;
    format.setRenderableType(qgetenv("TEST_OPENGL") == "es" ? QSurfaceFormat::OpenGLES
                                                            : QSurfaceFormat::OpenGL);
    auto window = std::make_unique<QWindow>();
    window->setFormat(format);
    window->setSurfaceType(QSurface::OpenGLSurface);
    window->setFlags(Qt::FramelessWindowHint);
    window->setGeometry(x, 0, 320, 180);
    window->show();
    return QTest::qWaitForWindowExposed(window.get()) ? std::move(window) : nullptr;
}

std::unique_ptr<QOpenGLContext> makeContext(QWindow *window)
{
    auto context = std::make_unique<QOpenGLContext>();
    context->setFormat(window->requestedFormat());
    return context->create() && context->makeCurrent(window) ? std::move(context) : nullptr;
}

/// Soft waves, of another direction for each eye and colour, from 51 to 204.
double wave(int eye, int colour, double u, double v)
{
    const double along = eye == 0 ? u + colour * v : v - colour * u;
    return 127.5 + 76.5 * std::sin(6.283185307179586 * along);
}

/// Both eyes' pictures side by side, without a texel between them; the lowest row first.
std::array<ovrGLTexture, 2> eyesIn(const QOpenGLTexture &texture)
{
    const int half = texture.width() / 2;
    ovrGLTexture eye{ovrRenderAPI_OpenGL, {2 * half, texture.height()}, {}, texture.textureId()};
    eye.RenderViewport.Size = {half, texture.height()};
    std::array<ovrGLTexture, 2> eyes = {eye, eye};
    eyes[1].RenderViewport.Pos.x = half;
    return eyes;
}

/// What a pixel's channel should show, 0 to 255; none on the edge of the picture, where a part of a
/// texel decides.
std::optional<double> expected(const TestHeadset &headset, unsigned caps, double across, double up,
                               int colour)
{
    const int eye = across < 0.5 ? 0 : 1;
    const auto toEdge = [](const std::array<double, 2> &at) {
        return std::min({at[0], at[1], 1 - at[0], 1 - at[1]});
    };
    const bool chromatic = (caps & ovrDistortionCap_Chromatic) != 0;
    const auto at = headset.seenAt(eye, across, up, chromatic ? std::size_t(colour) : 1);
    if (std::abs(toEdge(at)) * kEye.width() < 1)
        return {};
    const double fade = (caps & ovrDistortionCap_Vignette) == 0
        ? 1
        : std::clamp(toEdge(at) / 0.0125, 0.0, 1.0);
    return toEdge(at) < 0 ? 0 : fade * wave(eye, colour, at[0], at[1]);
}

/// How many warnings two frames give rise to.
int warningsOfTwoFrames(ovrHmd hmd, const ovrGLTexture *eyes)
{
    static int warnings;
    warnings = 0;
    const auto count = [](QtMsgType type, const QMessageLogContext &, const QString &) {
        warnings += type == QtWarningMsg ? 1 : 0;
    };
    const QtMessageHandler before = qInstallMessageHandler(count);
    ovrHmd_EndFrame(hmd, nullptr, eyes);
    ovrHmd_EndFrame(hmd, nullptr, eyes);
    qInstallMessageHandler(before);
    return warnings;
}

QRgb shown(const QWindow &window, int x)
{
    return window.screen()->grabWindow(window.winId()).toImage().pixel(x, 90);
}

} // namespace

void tst_Distortion::init()
{
    WarningsFail::init();
    m_context.reset();
    m_window = makeWindow(0);
    QVERIFY(m_window != nullptr);
    m_context = makeContext(m_window.get());
    QVERIFY(m_context != nullptr);
    QCOMPARE(m_context->isOpenGLES(), qgetenv("TEST_OPENGL") == "es");
}

QImage tst_Distortion::drawn(const TestHeadset &headset, unsigned caps, const QImage &pictures,
                             QSize panel)
{
    QOpenGLFunctions *gl = m_context->functions();
    QOpenGLTexture texture(pictures, QOpenGLTexture::DontGenerateMipMaps);
    texture.setMinMagFilters(QOpenGLTexture::Nearest, QOpenGLTexture::Nearest);
    QOpenGLFramebufferObject target(panel);
    target.bind();
    gl->glViewport(0, 0, panel.width(), panel.height());
    texture.bind();
    const std::vector<GLint> before = state();
    std::array<DistortionMesh, 2> meshes;
    for (const ovrEyeType eye : {ovrEye_Left, ovrEye_Right})
        meshes.at(eye) = distortionMesh(headset.lens, eye, headset.desc.DefaultEyeFov[eye],
                                        (caps & ovrDistortionCap_Chromatic) != 0,
                                        (caps & ovrDistortionCap_HqDistortion) != 0 ? kFineMeshCells
                                                                                    : kMeshCells);
    const auto renderer = DistortionRenderer::create(meshes,
                                                     (caps & ovrDistortionCap_Vignette) != 0);
    renderer->draw(eyesIn(texture).data());
    if (state() != before)
        qWarning("The state has changed.");
    return target.toImage().convertToFormat(QImage::Format_RGBA8888);
}

std::vector<GLint> tst_Distortion::state()
{
    QOpenGLFunctions *gl = m_context->functions();
    std::vector<GLint> values;
    std::array<GLint, 4> value{};
    for (const GLenum name :
         {GL_ACTIVE_TEXTURE, GL_TEXTURE_BINDING_2D, GL_CURRENT_PROGRAM, GL_ARRAY_BUFFER_BINDING,
          GL_ELEMENT_ARRAY_BUFFER_BINDING, GL_DEPTH_TEST, GL_STENCIL_TEST, GL_SCISSOR_TEST,
          GL_CULL_FACE, GL_BLEND, GL_COLOR_WRITEMASK}) {
        gl->glGetIntegerv(name, value.data());
        values.insert(values.end(), value.begin(), value.end());
    }
    for (const GLenum name :
         {GL_VERTEX_ATTRIB_ARRAY_ENABLED, GL_VERTEX_ATTRIB_ARRAY_SIZE, GL_VERTEX_ATTRIB_ARRAY_TYPE,
          GL_VERTEX_ATTRIB_ARRAY_STRIDE, GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING}) {
        gl->glGetVertexAttribiv(2, name, value.data());
        values.push_back(value[0]);
    }
    gl->glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, value.data());
    values.push_back(value[0]);
    return values;
}

void tst_Distortion::everyPixelFollowsTheLens_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QSize>("panel");
    QTest::addColumn<uint>("caps");
    const uint all = ovrDistortionCap_Chromatic | ovrDistortionCap_Vignette
        | ovrDistortionCap_HqDistortion | ovrDistortionCap_TimeWarp;
    const QSize panel(1920, 1080);
    QTest::newRow("plain") << int(ovrHmd_DK2) << panel << 0U;
    QTest::newRow("colours") << int(ovrHmd_DK2) << panel << uint(ovrDistortionCap_Chromatic);
    QTest::newRow("faded edges") << int(ovrHmd_DK2) << panel << uint(ovrDistortionCap_Vignette);
    QTest::newRow("all, odd width") << int(ovrHmd_DK2) << QSize(1921, 1080) << all;
    QTest::newRow("all, small panel") << int(ovrHmd_DK1) << QSize(1280, 800) << all;
}

void tst_Distortion::everyPixelFollowsTheLens()
{
    QFETCH(int, type);
    QFETCH(QSize, panel);
    QFETCH(uint, caps);
    const TestHeadset headset{ovrHmdType(type)};
    QImage pictures(2 * kEye.width(), kEye.height(), QImage::Format_RGBA8888);
    for (int row = 0; row < pictures.height(); ++row) {
        for (int column = 0; column < pictures.width(); ++column) {
            const int eye = column / kEye.width();
            const double u = (column % kEye.width() + 0.5) / kEye.width();
            const double v = (row + 0.5) / kEye.height();
            pictures.setPixelColor(column, row,
                                   QColor(qRound(wave(eye, 0, u, v)), qRound(wave(eye, 1, u, v)),
                                          qRound(wave(eye, 2, u, v))));
        }
    }
    const QImage image = drawn(headset, caps, pictures, panel);

    int compared = 0;
    int off = 0;
    for (int row = 0; row < panel.height(); ++row) {
        const uchar *pixels = image.constScanLine(row);
        for (int i = 0; i < 4 * panel.width(); ++i) {
            if (i % 4 == 3 || 2 * (i / 4) + 1 == panel.width())
                continue; // alpha; a pixel of which half belongs to each eye
            const int column = i / 4;
            const auto wanted = expected(headset, caps, (column + 0.5) / panel.width(),
                                         1 - (row + 0.5) / panel.height(), i % 4);
            compared += wanted ? 1 : 0;
            off += wanted && std::abs(pixels[i] - *wanted) > 2 ? 1 : 0;
        }
    }
    QVERIFY(compared > 0.98 * 3 * panel.width() * panel.height());
    QVERIFY2(off < compared * 0.005, qPrintable(QString::number(off)));
}

void tst_Distortion::eyesStayApartAndTheCallersStateAsItWas()
{
    QOpenGLFunctions *gl = m_context->functions();
    QOpenGLBuffer buffer;
    buffer.create();
    buffer.bind();
    gl->glEnableVertexAttribArray(2);
    gl->glVertexAttribPointer(2, 3, GL_SHORT, GL_TRUE, 8, nullptr);
    buffer.release();
    QImage pictures(4, 2, QImage::Format_RGBA8888);
    for (int column = 0; column < 4; ++column)
        for (int row = 0; row < 2; ++row)
            pictures.setPixelColor(column, row,
                                   std::array{Qt::black, Qt::red, Qt::blue, Qt::black}.at(
                                       std::size_t(column)));
    QOpenGLTexture callers(pictures);
    callers.bind(0);
    gl->glActiveTexture(GL_TEXTURE1);
    for (const GLenum name : {GL_DEPTH_TEST, GL_SCISSOR_TEST, GL_CULL_FACE, GL_BLEND})
        gl->glEnable(name);
    gl->glScissor(0, 0, 1, 1);
    gl->glCullFace(GL_FRONT_AND_BACK);
    gl->glColorMask(GL_FALSE, GL_TRUE, GL_FALSE, GL_FALSE);

    const QImage image = drawn(TestHeadset(), ovrDistortionCap_Chromatic, pictures, {640, 360});
    for (int row = 0; row < 360; ++row)
        for (int column = 0; column < 640; ++column)
            QCOMPARE(column < 320 ? image.pixelColor(column, row).blue()
                                  : image.pixelColor(column, row).red(),
                     0);
    QCOMPARE(image.pixelColor(280, 180), QColor(Qt::red));
    for (int column = 100; column < 220; ++column) // smooth, although its filter is not
        QVERIFY(image.pixelColor(column + 1, 180).red() - image.pixelColor(column, 180).red() < 8);
    gl->glActiveTexture(GL_TEXTURE0);
    QCOMPARE(state()[4], GLint(callers.textureId()));
}

void tst_Distortion::aFrameReachesItsWindowAlone()
{
    TestHeadset headset;
    const ovrHmd hmd = create(&headset);
    QImage red(4, 4, QImage::Format_RGBA8888);
    red.fill(Qt::red);
    const QOpenGLTexture texture(red);
    std::array<ovrGLTexture, 2> eyes = eyesIn(texture);
    eyes[1].TextureSize = {};
    ovrEyeRenderDesc descs[2];
    ovrGLConfig configuration;
    configuration.RTSize = {320, 180};
    configuration.DC = gl::currentSurface().drawable;
    const auto configure = [&] {
        return ovrHmd_ConfigureRendering(hmd, &configuration, 0, hmd->DefaultEyeFov, descs);
    };
    QVERIFY(!configure()); // no API
    configuration.API = ovrRenderAPI_OpenGL;
    QVERIFY(configure());
    QCOMPARE(descs[1].DistortedViewport.Pos.x, 961);
    QOpenGLFramebufferObject callers(8, 8);
    callers.bind();
    QCOMPARE(warningsOfTwoFrames(hmd, eyes.data()), 0);
    QTRY_COMPARE(shown(*m_window, 80), QColor(Qt::red).rgb());
    QCOMPARE(shown(*m_window, 240), QColor(Qt::black).rgb());

    const auto other = makeWindow(400);
    QVERIFY(other != nullptr && m_context->makeCurrent(other.get()));
    QCOMPARE(warningsOfTwoFrames(hmd, eyes.data()), 1); // another window's turn
    QVERIFY(m_context->makeCurrent(m_window.get()) && configure());
    auto next = makeContext(m_window.get());
    QCOMPARE(warningsOfTwoFrames(hmd, eyes.data()), 1); // another context's
    QVERIFY(configure());
    QVERIFY(m_context->makeCurrent(m_window.get()));
    next.reset(); // before what was made in it
    QCOMPARE(warningsOfTwoFrames(hmd, eyes.data()), 1);
    QVERIFY(configure());
    QCOMPARE(warningsOfTwoFrames(hmd, eyes.data()), 0);
    m_context->doneCurrent();
    ovrHmd_Destroy(hmd);
    QVERIFY(m_context->makeCurrent(m_window.get()));
}

QTEST_MAIN(tst_Distortion)
#include "tst_Distortion.moc"

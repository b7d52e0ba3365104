#include "OrbShaderCodeBuilder.h"
#include "PanoramaProgram.h"
#include "WarningsFail.h"

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QtTest>

#include <memory>

using Builder = OrbShaderCodeBuilder;

namespace {

/// A current context of one kind of OpenGL, without a window.
class OffscreenOpenGl
{
public:
    explicit OffscreenOpenGl(bool es)
    {
        QSurfaceFormat format;
        format.setRenderableType(es ? QSurfaceFormat::OpenGLES : QSurfaceFormat::OpenGL);
        m_context.setFormat(format);
        m_surface.setFormat(format);
        m_surface.create();
        m_current = m_context.create() && m_context.makeCurrent(&m_surface);
    }

    bool isCurrent() const { return m_current; }
    bool isEs() const { return m_context.isOpenGLES(); }

private:
    QOffscreenSurface m_surface;
    QOpenGLContext m_context;
    bool m_current = false;
};

bool links(const Builder &builder, bool headset)
{
    return PanoramaProgram::create(builder.build(headset)) != nullptr;
}

QByteArray describe(const Builder &builder, bool headset)
{
    return "effect " + QByteArray::number(builder.effect()) + " stereo "
        + QByteArray::number(builder.stereoMode()) + " exchanged "
        + QByteArray::number(int(builder.invertedColors())) + " source "
        + QByteArray::number(builder.projectionSource()) + " axis "
        + QByteArray::number(builder.rotationSource()) + (headset ? " headset" : " window");
}

} // namespace

class tst_ShaderCompile : public WarningsFail
{
    Q_OBJECT

private slots:
    void everyCombinationLinks_data();
    void everyCombinationLinks();
    void anUnknownProjectionIsRefused_data();
    void anUnknownProjectionIsRefused();
};

void tst_ShaderCompile::everyCombinationLinks_data()
{
    QTest::addColumn<bool>("es");
    QTest::addColumn<int>("projection");
    for (const bool es : {false, true}) {
        for (int projection = 0; projection < Builder::LAST_VALUE_PROJECTION; ++projection)
            QTest::addRow("%s, projection %d", es ? "OpenGL ES" : "desktop OpenGL", projection)
                << es << projection;
    }
}

void tst_ShaderCompile::everyCombinationLinks()
{
    QFETCH(bool, es);
    QFETCH(int, projection);
    const OffscreenOpenGl gl(es);
    QVERIFY(gl.isCurrent());
    QCOMPARE(gl.isEs(), es);

    Builder builder;
    builder.setProjection(projection);
    for (int effect = 0; effect < Builder::LAST_VALUE_EFFECT; ++effect) {
        builder.setEffect(effect);
        for (const int stereo :
             {Builder::STEREO_2D, Builder::STEREO_3D_OVERUNDER, Builder::STEREO_3D_SIDEBYSIDE}) {
            builder.setStereoMode(stereo);
            for (const bool exchanged : {false, true}) {
                builder.setInvertedColors(exchanged);
                for (const bool headset : {false, true})
                    QVERIFY2(links(builder, headset), describe(builder, headset).constData());
            }
        }
    }

    constexpr int kFisheyeSource = 4;
    constexpr int kUnmappedSource = 0;
    for (const int source : {kFisheyeSource, kUnmappedSource}) {
        builder.setProjectionSource(source);
        for (const int axis : {0, 2}) {
            builder.setRotationSource(axis);
            for (const bool headset : {false, true})
                QVERIFY2(links(builder, headset), describe(builder, headset).constData());
        }
    }
}

void tst_ShaderCompile::anUnknownProjectionIsRefused_data()
{
    QTest::addColumn<bool>("es");
    QTest::newRow("desktop OpenGL") << false;
    QTest::newRow("OpenGL ES") << true;
}

void tst_ShaderCompile::anUnknownProjectionIsRefused()
{
    QFETCH(bool, es);
    const OffscreenOpenGl gl(es);
    QVERIFY(gl.isCurrent());
    QCOMPARE(gl.isEs(), es);

    Builder builder;
    builder.setProjection(Builder::LAST_VALUE_PROJECTION);
    expectWarning(QStringLiteral("^QOpenGLShader::compile\\(Fragment\\)"));
    expectWarning(QStringLiteral("^\\*\\*\\* Problematic Fragment shader source code"));
    expectWarning(QStringLiteral("^The panorama's shader cannot be built: "));
    QVERIFY(!links(builder, false));
}

QTEST_MAIN(tst_ShaderCompile)
#include "tst_ShaderCompile.moc"

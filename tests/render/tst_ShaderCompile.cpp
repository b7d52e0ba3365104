#include "OrbShaderCodeBuilder.h"
#include "PanoramaProgram.h"
#include "WarningsFail.h"

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QtTest>

using Builder = OrbShaderCodeBuilder;

namespace {

QByteArray describe(const Builder &builder, bool headset)
{
    return "effect " + QByteArray::number(builder.effect()) + " stereo "
        + QByteArray::number(builder.stereoMode()) + " exchanged "
        + QByteArray::number(int(builder.invertedColors())) + " source "
        + QByteArray::number(builder.projectionSource()) + " axis "
        + QByteArray::number(builder.rotationSource()) + (headset ? " headset" : " window");
}

void link(const Builder &builder)
{
    for (const bool headset : {false, true})
        QVERIFY2(PanoramaProgram::create(builder.build(headset)),
                 describe(builder, headset).constData());
}

} // namespace

class tst_ShaderCompile : public WarningsFail
{
    Q_OBJECT

private slots:
    void everyCombinationLinks_data();
    void everyCombinationLinks();
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
    QSurfaceFormat format;
    format.setRenderableType(es ? QSurfaceFormat::OpenGLES : QSurfaceFormat::OpenGL);
    QOpenGLContext context;
    context.setFormat(format);
    QOffscreenSurface surface;
    surface.setFormat(format);
    surface.create();
    QVERIFY(context.create() && context.makeCurrent(&surface));
    QCOMPARE(context.isOpenGLES(), es);

    Builder builder;
    builder.setProjection(projection);
    for (int effect = 0; effect < Builder::LAST_VALUE_EFFECT; ++effect) {
        builder.setEffect(effect);
        for (const int stereo :
             {Builder::STEREO_2D, Builder::STEREO_3D_OVERUNDER, Builder::STEREO_3D_SIDEBYSIDE}) {
            builder.setStereoMode(stereo);
            for (const bool exchanged : {false, true}) {
                builder.setInvertedColors(exchanged);
                link(builder);
            }
        }
    }

    constexpr int kFisheyeSource = 4;
    constexpr int kUnmappedSource = 0;
    for (const int source : {kFisheyeSource, kUnmappedSource}) {
        builder.setProjectionSource(source);
        for (const int axis : {0, 2}) {
            builder.setRotationSource(axis);
            link(builder);
        }
    }
}

QTEST_MAIN(tst_ShaderCompile)
#include "tst_ShaderCompile.moc"

#include "PanoramaStage.h"
#include "WarningsFail.h"

#include <QMetaProperty>
#include <QMutex>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QSignalSpy>
#include <QtTest>

#include <vector>

namespace {

constexpr QSize kSize(80, 60);

/// The middle of the item's picture, while it is bound. Render thread.
QRgb middlePixel()
{
    uchar pixel[4] = {};
    QOpenGLContext::currentContext()->functions()->glReadPixels(kSize.width() / 2,
                                                                kSize.height() / 2, 1, 1, GL_RGBA,
                                                                GL_UNSIGNED_BYTE, pixel);
    return qRgb(pixel[0], pixel[1], pixel[2]);
}

/// Lets the item's linked program draw nothing, by a uniform which the item sets only when it
/// builds the program; so the picture tells whether the program is still the same. Render thread.
void emptyProgram()
{
    QOpenGLFunctions *gl = QOpenGLContext::currentContext()->functions();
    constexpr GLuint kNamesToTry = 200;
    constexpr GLfloat kNowhere[16] = {};
    for (GLuint name = 1; name < kNamesToTry; ++name) {
        if (!gl->glIsProgram(name) || gl->glGetUniformLocation(name, "uFov") < 0)
            continue;
        gl->glUseProgram(name);
        gl->glUniformMatrix4fv(gl->glGetUniformLocation(name, "matrix"), 1, GL_FALSE, kNowhere);
        gl->glUseProgram(0);
    }
}

bool isAll(const QImage &picture, const QColor &colour)
{
    if (picture.isNull())
        return false;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixelColor(x, y) != colour)
                return false;
        }
    }
    return true;
}

} // namespace

class tst_OrbixSightView : public WarningsFail
{
    Q_OBJECT

private slots:
    void aPaintBeforeTheLinkDrawsNothingAndDoesNotCount();
    void anEffectShowsInTheNextPaint();
    void onlyAChangeRebuildsTheProgram();
    void aRefusedShaderShowsBlackAndTheNextChangeHeals();
    void aResizedItemIsDrawnForItsNewSize();
    void drawsAgainAfterTheWindowDroppedItsOpenGl();
    void leavesAWindowThatGoesOn();
    void aStandingPictureIsPaintedOnceAndCountsOn();
    void whatThePictureDependsOnPaintsItAnew_data();
    void whatThePictureDependsOnPaintsItAnew();
};

void tst_OrbixSightView::aPaintBeforeTheLinkDrawsNothingAndDoesNotCount()
{
    PanoramaStage stage(kSize);
    QSignalSpy counted(&stage.view, &OrbixSightView::fpsChanged);
    QVERIFY(stage.show());
    constexpr int kSomePaints = 5;
    QVERIFY(QTest::qWaitFor([&] { return stage.view.paintsDone() >= kSomePaints; }));
    QVERIFY(isAll(stage.picture(), stage.window.color()));
    QCoreApplication::processEvents();
    QCOMPARE(counted.count(), 0);

    // The first frame that counts opens a second, and no frame went before it.
    stage.view.init(&stage.builder, &stage.state, &stage.textureProvider);
    QVERIFY(counted.wait());
    QCOMPARE(stage.view.fps(), 1);
}

void tst_OrbixSightView::anEffectShowsInTheNextPaint()
{
    QMutex mutex;
    std::vector<QRgb> middles; // of each paint
    PanoramaStage stage(kSize);
    stage.view.onPainted = [&](int) {
        const QMutexLocker lock(&mutex);
        middles.push_back(middlePixel());
    };
    const auto middleOf = [&](int paint) {
        const QMutexLocker lock(&mutex);
        return middles.at(std::size_t(paint));
    };
    QVERIFY(stage.start());

    const QRgb plain = middleOf(stage.view.paintsDone() - 1);
    for (int round = 0; round < 10; ++round) {
        const bool inverted = round % 2 == 0;
        stage.builder.setEffect(inverted ? OrbShaderCodeBuilder::INVERT
                                         : OrbShaderCodeBuilder::NO_EFFECT);
        const int next = stage.view.paintsBegun();
        QVERIFY(QTest::qWaitFor([&] { return stage.view.paintsDone() > next; }));
        const QRgb middle = middleOf(next);
        constexpr int kRounding = 2;
        QVERIFY(std::abs(qRed(middle) - (inverted ? 255 - qRed(plain) : qRed(plain))) <= kRounding);
        QVERIFY(std::abs(qGreen(middle) - (inverted ? 255 - qGreen(plain) : qGreen(plain)))
                <= kRounding);
    }
}

void tst_OrbixSightView::onlyAChangeRebuildsTheProgram()
{
    std::atomic<bool> empty{false};
    PanoramaStage stage(kSize);
    stage.view.onPainted = [&](int) {
        if (empty.exchange(false))
            emptyProgram();
    };
    QVERIFY(stage.start());
    QVERIFY(!isAll(stage.picture(), Qt::black));
    empty = true;
    QVERIFY(stage.view.waitForPaint());
    QVERIFY(isAll(stage.picture(), Qt::black));

    OrbShaderCodeBuilder &builder = stage.builder;
    const QMetaObject *type = builder.metaObject();
    for (int i = type->propertyOffset(); i < type->propertyCount(); ++i)
        type->property(i).write(&builder, type->property(i).read(&builder));
    stage.state.setYaw(1);
    stage.state.setFov(60);
    QVERIFY(isAll(stage.picture(), Qt::black));

    // The same text again, but built anew.
    builder.setOculusMode(true);
    QVERIFY(!isAll(stage.picture(), Qt::black));
}

void tst_OrbixSightView::aRefusedShaderShowsBlackAndTheNextChangeHeals()
{
    PanoramaStage stage(kSize);
    QVERIFY(stage.start());
    const QImage before = stage.picture();

    expectWarning(QStringLiteral("^QOpenGLShader::compile\\(Fragment\\)"));
    expectWarning(QStringLiteral("^\\*\\*\\* Problematic Fragment shader source code"));
    expectWarning(QStringLiteral("^The panorama's shader cannot be built: "));
    stage.builder.setProjection(OrbShaderCodeBuilder::LAST_VALUE_PROJECTION);
    QVERIFY(stage.picture() != before);
    stage.builder.setProjection(OrbShaderCodeBuilder::RECTILINEAR);
    QCOMPARE(stage.picture(), before);
}

void tst_OrbixSightView::aResizedItemIsDrawnForItsNewSize()
{
    PanoramaStage small(kSize);
    QVERIFY(small.start());
    const QImage expected = small.picture();

    PanoramaStage stage(2 * kSize);
    QVERIFY(stage.start());
    const QRect corner(QPoint(), kSize);
    QVERIFY(stage.picture().copy(corner) != expected);
    stage.view.setSize(QSizeF(kSize) / PanoramaStage::wantedScale());
    QVERIFY(stage.picture().copy(corner) == expected);
}

void tst_OrbixSightView::drawsAgainAfterTheWindowDroppedItsOpenGl()
{
    if (!PanoramaStage::wantsOwnThread())
        QSKIP("The basic loop keeps its OpenGL while the window lives.");
    PanoramaStage stage(kSize);
    stage.window.setPersistentOpenGLContext(false);
    stage.window.setPersistentSceneGraph(false);
    QVERIFY(stage.start());
    const QImage before = stage.picture();
    QVERIFY(!isAll(before, Qt::black));

    QSignalSpy dropped(&stage.window, &QQuickWindow::sceneGraphInvalidated);
    stage.window.hide();
    stage.window.releaseResources();
    QTRY_VERIFY(dropped.count() > 0);
    QVERIFY(stage.show());
    QCOMPARE(stage.picture(), before);
}

void tst_OrbixSightView::leavesAWindowThatGoesOn()
{
    PanoramaStage stage(kSize);
    QVERIFY(stage.start());
    QVERIFY(!isAll(stage.picture(), stage.window.color()));
    stage.view.setParentItem(nullptr);
    QVERIFY(isAll(stage.window.grabWindow(), stage.window.color()));
    stage.view.setParentItem(stage.window.contentItem());
    QVERIFY(!isAll(stage.picture(), stage.window.color()));
}

void tst_OrbixSightView::aStandingPictureIsPaintedOnceAndCountsOn()
{
    PanoramaStage stage(kSize);
    QVERIFY(stage.start());
    const QImage before = stage.picture();
    const int unseen = stage.view.paintsDone();
    QTRY_VERIFY(stage.view.paintsDone() > unseen + 3); // others may fill the texture

    stage.textureProvider.frameArrived();
    QVERIFY(stage.view.waitForPaint());
    constexpr int kTicks = 50;
    QSignalSpy counted(&stage.view, &OrbixSightView::fpsChanged);
    QVERIFY(QTest::qWaitFor([&] { return counted.count() >= 2; }));
    const int standing = stage.view.paintsDone();
    QVERIFY(QTest::qWaitFor([&] { return counted.count() >= 4; }));
    QCOMPARE(stage.view.paintsDone(), standing);
    QVERIFY(stage.view.fps() > kTicks);
    QCOMPARE(stage.grab(), before);
}

void tst_OrbixSightView::whatThePictureDependsOnPaintsItAnew_data()
{
    QTest::addColumn<QByteArray>("what");
    for (const char *what : {"yaw", "field of view", "edges", "size", "program", "contents"})
        QTest::newRow(what) << QByteArray(what);
}

void tst_OrbixSightView::whatThePictureDependsOnPaintsItAnew()
{
    QFETCH(QByteArray, what);
    const auto change = [&what](PanoramaStage &stage) {
        if (what == "yaw")
            stage.state.setYaw(1);
        else if (what == "field of view")
            stage.state.setFov(60);
        else if (what == "edges")
            stage.state.setYawMax(1);
        else if (what == "size")
            stage.view.setSize(stage.view.size() / 2);
        else if (what == "program")
            stage.builder.setEffect(OrbShaderCodeBuilder::INVERT);
        else
            stage.textureProvider.frameArrived();
    };
    PanoramaStage always(kSize); // nobody announces its contents
    QVERIFY(always.start());
    if (what != "contents")
        change(always);

    PanoramaStage stage(kSize);
    QVERIFY(stage.start());
    stage.textureProvider.frameArrived();
    QVERIFY(stage.view.waitForPaint());
    const int before = stage.view.paintsDone();
    change(stage);
    QTRY_VERIFY(stage.view.paintsDone() > before);
    QCOMPARE(stage.grab(), always.picture());
}

QTEST_MAIN(tst_OrbixSightView)
#include "tst_OrbixSightView.moc"

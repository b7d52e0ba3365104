#include "WarningsFail.h"
#include "gl.h"

#include <QOpenGLContext>
#include <QWindow>
#include <QtTest>

class tst_gl : public WarningsFail
{
    Q_OBJECT

private slots:
    void eachWindowHasASurfaceOfItsOwn();
};

void tst_gl::eachWindowHasASurfaceOfItsOwn()
{
    const bool isByEgl = qgetenv("QT_XCB_GL_INTEGRATION") == "xcb_egl";
    QCOMPARE(gl::currentSurface().drawable, 0ULL);
    QOpenGLContext context;
    QVERIFY(context.create());
    QWindow windows[2];
    gl::CurrentSurface surfaces[2];
    for (int i = 0; i < 2; ++i) {
        windows[i].setSurfaceType(QWindow::OpenGLSurface);
        windows[i].create();
        QVERIFY(context.makeCurrent(&windows[i]));
        surfaces[i] = gl::currentSurface();
        QVERIFY(surfaces[i].display != nullptr && surfaces[i].drawable != 0);
        if (!isByEgl) // GLX draws into the window itself, EGL into a surface over it
            QCOMPARE(surfaces[i].drawable, static_cast<unsigned long long>(windows[i].winId()));
    }
    QVERIFY(surfaces[0].drawable != surfaces[1].drawable);
    QVERIFY(gl::setSwapInterval(0) || !isByEgl); // a virtual display gives no choice by GLX
    QVERIFY(!gl::setSwapInterval(-1));
    context.doneCurrent();
    QVERIFY(gl::currentSurface().display == nullptr);
    QVERIFY(!gl::setSwapInterval(1));
}

QTEST_MAIN(tst_gl)
#include "tst_gl.moc"

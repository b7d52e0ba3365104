#include "OrbSettingsManager.h"
#include "OrbTextureProvider.h"
#include "WarningsFail.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSGTexture>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <memory>

namespace {

const QString kSharedMemory = QStringLiteral("application/sharedmemory");

/// The colour of the first texel of a texture. Render thread.
QRgb firstTexel(GLuint texture)
{
    QOpenGLFunctions *gl = QOpenGLContext::currentContext()->functions();
    GLint before = 0;
    gl->glGetIntegerv(GL_FRAMEBUFFER_BINDING, &before);
    GLuint framebuffer = 0;
    gl->glGenFramebuffers(1, &framebuffer);
    gl->glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    gl->glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    uchar texel[4] = {};
    gl->glReadPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, texel);
    gl->glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(before));
    gl->glDeleteFramebuffers(1, &framebuffer);
    return qRgb(texel[0], texel[1], texel[2]);
}

} // namespace

class tst_OrbTextureProvider : public WarningsFail
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void withTheFeedTheStoredNameIsIgnored();
    void theNameFollowsTheItemsThatHaveATexture();
    void aFrameThatEndsAfterTheChangeOfSourceLeavesTheName();

private:
    void show();
    bool waitForFrames(int frames);
    QQuickItem *addColouredSource(const QColor &colour);
    QColor colourOfTheName();

    std::unique_ptr<OrbSettingsManager> m_settings;
    std::unique_ptr<QQuickWindow> m_window;
    std::unique_ptr<OrbTextureProvider> m_provider;
    QQmlEngine m_engine;
    std::atomic<int> m_frames{0};
    std::atomic<QRgb> m_colour{0};
};

void tst_OrbTextureProvider::init()
{
    WarningsFail::init();
    m_settings = std::make_unique<OrbSettingsManager>(QStringLiteral("orbix-tests"),
                                                      QStringLiteral("texture-provider"));
    m_settings->remove(kSharedMemory);
    m_window = std::make_unique<QQuickWindow>();
    m_window->resize(100, 80);
    m_provider = std::make_unique<OrbTextureProvider>(m_window.get(), m_settings.get());
    m_frames = 0;
}

void tst_OrbTextureProvider::cleanup()
{
    m_window.reset();
    m_provider.reset();
    m_settings->remove(kSharedMemory);
    WarningsFail::cleanup();
}

void tst_OrbTextureProvider::show()
{
    connect(
        m_window.get(), &QQuickWindow::afterRendering, this,
        [this] {
            if (const int name = m_provider->textureId())
                m_colour = firstTexel(static_cast<GLuint>(name));
            ++m_frames;
        },
        Qt::DirectConnection);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QVERIFY(waitForFrames(1));
}

bool tst_OrbTextureProvider::waitForFrames(int frames)
{
    for (int i = 0; i < frames; ++i) {
        const int before = m_frames;
        m_window->update();
        if (!QTest::qWaitFor([this, before] { return m_frames > before; }))
            return false;
    }
    return true;
}

QQuickItem *tst_OrbTextureProvider::addColouredSource(const QColor &colour)
{
    QQmlComponent component(&m_engine);
    component.setData("import QtQuick 2.15\n"
                      "ShaderEffectSource {\n"
                      "    property alias colour: rectangle.color\n"
                      "    width: 20; height: 20\n"
                      "    sourceItem: Rectangle { id: rectangle; width: 20; height: 20 }\n"
                      "}\n",
                      QUrl());
    auto *item = qobject_cast<QQuickItem *>(component.create());
    item->setProperty("colour", colour);
    item->setParent(m_window.get());
    item->setParentItem(m_window->contentItem());
    return item;
}

QColor tst_OrbTextureProvider::colourOfTheName()
{
    return QColor(m_colour.load());
}

void tst_OrbTextureProvider::withTheFeedTheStoredNameIsIgnored()
{
    m_settings->write(kSharedMemory, true);
    m_provider = std::make_unique<OrbTextureProvider>(m_window.get(), m_settings.get());
    QVERIFY(m_provider->isSharedMemory());
    constexpr int kNoProgramFeeds = 0;
    m_provider->setTextureId(42);
    QCOMPARE(m_provider->textureId(), kNoProgramFeeds);
    m_provider->setShaderEffectSource(addColouredSource(Qt::green));
    show();
    QVERIFY(waitForFrames(2));
    QCOMPARE(m_provider->textureId(), kNoProgramFeeds);
}

void tst_OrbTextureProvider::theNameFollowsTheItemsThatHaveATexture()
{
    const QColor red(200, 30, 90);
    const QColor green(10, 220, 40);
    show();
    QQuickItem *first = addColouredSource(red);
    QQuickItem *second = addColouredSource(green);
    QSignalSpy changed(m_provider.get(), &OrbTextureProvider::textureIdChanged);
    m_provider->setShaderEffectSource(first);
    QVERIFY(waitForFrames(2));
    QCOMPARE(changed.count(), 1);
    const int firstName = m_provider->textureId();
    QVERIFY(waitForFrames(1));
    QCOMPARE(colourOfTheName(), red);

    m_provider->setShaderEffectSource(second);
    QCOMPARE(m_provider->textureId(), firstName); // until the next frame
    QVERIFY(waitForFrames(3));
    const int secondName = m_provider->textureId();
    QVERIFY(secondName != firstName);
    QCOMPARE(colourOfTheName(), green);

    // What has no texture, or goes away, leaves the name.
    QQuickItem plain(m_window->contentItem());
    m_provider->setShaderEffectSource(&plain);
    QVERIFY(waitForFrames(2));
    m_provider->setShaderEffectSource(nullptr);
    QVERIFY(waitForFrames(2));
    m_provider->setShaderEffectSource(second);
    QVERIFY(waitForFrames(2));
    delete second;
    QVERIFY(waitForFrames(2));
    QCOMPARE(m_provider->textureId(), secondName);
    QCOMPARE(changed.count(), 2);
}

void tst_OrbTextureProvider::aFrameThatEndsAfterTheChangeOfSourceLeavesTheName()
{
    show();
    m_provider->setShaderEffectSource(addColouredSource(Qt::red));
    QVERIFY(waitForFrames(2));
    const int itemName = m_provider->textureId();
    QVERIFY(itemName != 0);
    m_provider->setShaderEffectSource(nullptr);
    m_provider->setTextureId(itemName + 1);
    m_provider->onQsgTextureChanged(); // as the render thread does then
    QCOMPARE(m_provider->textureId(), itemName + 1);
}

QTEST_MAIN(tst_OrbTextureProvider)
#include "tst_OrbTextureProvider.moc"

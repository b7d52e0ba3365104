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
    void anItemWithoutATextureLeavesTheName_data();
    void anItemWithoutATextureLeavesTheName();
    void anItemsTextureArrivesWithinTwoFrames();
    void aSecondItemReplacesTheFirstAtTheNextFrame();
    void anItemThatGoesAwayLeavesTheName();

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

void tst_OrbTextureProvider::anItemWithoutATextureLeavesTheName_data()
{
    QTest::addColumn<bool>("hasItem");
    QTest::newRow("a plain item") << true;
    QTest::newRow("no item") << false;
}

void tst_OrbTextureProvider::anItemWithoutATextureLeavesTheName()
{
    QFETCH(bool, hasItem);
    show();
    m_provider->setShaderEffectSource(addColouredSource(Qt::green));
    QVERIFY(waitForFrames(2));
    const int name = m_provider->textureId();
    QVERIFY(name != 0);

    QSignalSpy changed(m_provider.get(), &OrbTextureProvider::textureIdChanged);
    QQuickItem plain(m_window->contentItem());
    m_provider->setShaderEffectSource(hasItem ? &plain : nullptr);
    QVERIFY(waitForFrames(2));
    QCOMPARE(m_provider->textureId(), name);
    QCOMPARE(changed.count(), 0);
}

void tst_OrbTextureProvider::anItemsTextureArrivesWithinTwoFrames()
{
    show();
    QSignalSpy changed(m_provider.get(), &OrbTextureProvider::textureIdChanged);
    m_provider->setShaderEffectSource(addColouredSource(QColor(200, 30, 90)));
    QVERIFY(waitForFrames(2));
    QCOMPARE(changed.count(), 1);
    QVERIFY(waitForFrames(1));
    QCOMPARE(colourOfTheName(), QColor(200, 30, 90));
}

void tst_OrbTextureProvider::aSecondItemReplacesTheFirstAtTheNextFrame()
{
    show();
    QQuickItem *first = addColouredSource(QColor(200, 30, 90));
    QQuickItem *second = addColouredSource(QColor(10, 220, 40));
    m_provider->setShaderEffectSource(first);
    QVERIFY(waitForFrames(3));
    const int name = m_provider->textureId();
    QCOMPARE(colourOfTheName(), QColor(200, 30, 90));

    m_provider->setShaderEffectSource(second);
    QCOMPARE(m_provider->textureId(), name);
    QVERIFY(waitForFrames(3));
    QVERIFY(m_provider->textureId() != name);
    QCOMPARE(colourOfTheName(), QColor(10, 220, 40));
}

void tst_OrbTextureProvider::anItemThatGoesAwayLeavesTheName()
{
    show();
    QQuickItem *item = addColouredSource(Qt::green);
    m_provider->setShaderEffectSource(item);
    QVERIFY(waitForFrames(2));
    const int name = m_provider->textureId();
    QVERIFY(name != 0);
    delete item;
    QVERIFY(waitForFrames(2));
    QCOMPARE(m_provider->textureId(), name);
}

QTEST_MAIN(tst_OrbTextureProvider)
#include "tst_OrbTextureProvider.moc"

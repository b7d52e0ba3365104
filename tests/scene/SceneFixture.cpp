#include "SceneFixture.h"

#include "Application.h"
#include "OrbImageLibrary.h"
#include "OrbSettingsManager.h"
#include "OrbTools.h"
#include "Product.h"

#include <QDateTime>
#include <QFile>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QQmlEngine>
#include <QQmlExpression>
#include <QSettings>
#include <QTest>

#include <qpa/qplatformdrag.h>
#include <qpa/qwindowsysteminterface.h>

#include <cmath>

namespace {

constexpr QSize kWindowSize(1000, 600);
/// Where the pointer leaves the window, so that the next move is one.
constexpr QPoint kParking(1, 1);
constexpr auto kAnyDrop = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;

QPoint centreOf(const QQuickItem *item)
{
    return item->mapToScene({item->width() / 2, item->height() / 2}).toPoint();
}

bool isShown(const QQuickItem *item)
{
    return item->isVisible() && item->opacity() > 0;
}

QQuickItem *findItem(QQuickItem *under, const std::function<bool(QQuickItem *)> &matches)
{
    const QList<QQuickItem *> children = under->childItems();
    for (auto child = children.crbegin(); child != children.crend(); ++child) {
        if (!isShown(*child))
            continue;
        if (matches(*child))
            return *child;
        if (QQuickItem *found = findItem(*child, matches))
            return found;
    }
    return nullptr;
}

void collectOpenLists(const QQuickItem *under, QStringList &titles)
{
    const QList<QQuickItem *> children = under->childItems();
    for (const QQuickItem *child : children) {
        if (child->state() == QLatin1String("Shown")) {
            const QString title = child->property("title").toString();
            titles += title.isEmpty() ? QStringLiteral("Volume") : title;
        }
        collectOpenLists(child, titles);
    }
}

} // namespace

SceneFixture::SceneFixture()
{
    // Where no window manager deals with the focus, Qt asks for it itself, and the server may have
    // taken the window away by then.
    ignoreWarning(QStringLiteral("XCB error: 8 \\(BadMatch\\),.*\\(SetInputFocus\\)"));
    // Qt's timer of all animations posts itself a stop at the end of the last one, and does not ask
    // then whether its driver, which the threaded loop exchanges, is at rest already.
    ignoreWarning(QStringLiteral("^QUnifiedTimer::stopAnimationDriver: driver is not running"));
    // The media service looks for a sound server, which a machine for tests has none of.
    ignoreWarning(QStringLiteral("^Warning: \"Failed to connect: Connection refused\""));
}

SceneFixture::~SceneFixture() = default;

int SceneFixture::run(int argc, char **argv, const QStringList &arguments,
                      const QVariantMap &settings)
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_configuration.path());
    m_settings = std::make_unique<OrbSettingsManager>(Product::organisation(),
                                                      Product::softwareName());
    // Nobody is asked for a newer version unless a test wants it.
    m_settings->write(QStringLiteral("general/last_update_check"), QDateTime::currentDateTime());
    for (auto setting = settings.cbegin(); setting != settings.cend(); ++setting)
        m_settings->write(setting.key(), setting.value());
    const QString backend = qEnvironmentVariable("TEST_BACKEND");
    if (!backend.isEmpty())
        m_settings->write(QStringLiteral("application/videoPlugin"), backend);

    QVector<QByteArray> words{QByteArray(argv[0])};
    for (const QString &argument : arguments)
        words.append(argument.toLocal8Bit());
    QVector<char *> programArguments;
    for (QByteArray &word : words)
        programArguments.append(word.data());
    int count = programArguments.size();
    programArguments.append(nullptr);

    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    m_application = std::make_unique<Application>(QString(), count, programArguments.data());
    OrbTools::start();
    OrbImageLibrary::start();
    const int result = QTest::qExec(this, argc, argv);
    OrbImageLibrary::stop();
    OrbTools::stop();
    m_application.reset();
    return result;
}

OrbQQuickView *SceneFixture::window() const
{
    return m_application->view();
}

OrbGlobalObject *SceneFixture::view() const
{
    return m_application->globalObject();
}

OrbShaderCodeBuilder *SceneFixture::picture() const
{
    return m_application->shaderCodeBuilder();
}

// --- around the tests ---

void SceneFixture::initTestCase()
{
    WarningsFail::init();
    m_application->setUp(m_settings.get(), media.folder());
    window()->requestActivate();
    QVERIFY(QTest::qWaitForWindowExposed(window()));
    QVERIFY(QTest::qWaitForWindowActive(window()));
    WarningsFail::cleanup();
}

void SceneFixture::init()
{
    WarningsFail::init();
    if (!keepsStartPopup())
        resetScene();
}

void SceneFixture::resetScene()
{
    if (QMessageBox *box = messageBox())
        box->close();
    // A panel takes keys once it is loaded.
    const auto popupClosed = [this] {
        const bool open = state() == QLatin1String("Popup");
        if (open)
            key(Qt::Key_Escape);
        return !open;
    };
    QVERIFY(QTest::qWaitFor(popupClosed));
    moveTo(kParking);
    hideControls();
    scene(QStringLiteral("orb_help.visible = false"));
    leaveWindow();
    if (!window()->fullScreen())
        window()->resize(kWindowSize);
    QTRY_COMPARE(window()->rootObject()->size().toSize(), window()->size());

    picture()->setProjection(OrbShaderCodeBuilder::RECTILINEAR);
    picture()->setEffect(OrbShaderCodeBuilder::NO_EFFECT);
    view()->setTouchMode(true);
    view()->setYaw(0);
    view()->setPitch(0);
    view()->setFov(90);
    QTRY_VERIFY(!window()->fullScreen() || window()->demoMode());
    // Without a window manager nobody gives the focus back after a dialog.
    window()->requestActivate();
    QTRY_VERIFY(window()->isActive());
}

void SceneFixture::cleanup()
{
    WarningsFail::cleanup();
}

void SceneFixture::cleanupTestCase()
{
    m_application->cleanUp();
    WarningsFail::cleanup();
}

// --- the scene ---

QVariant SceneFixture::scene(const QString &expression) const
{
    QQuickItem *root = window()->rootObject();
    QQmlExpression evaluation(QQmlEngine::contextForObject(root), root, expression);
    const QVariant value = evaluation.evaluate();
    if (evaluation.hasError())
        qWarning("%s", qPrintable(evaluation.error().toString()));
    return value;
}

QString SceneFixture::title() const
{
    return static_cast<const QWindow *>(window())->title();
}

QMediaPlayer::MediaStatus SceneFixture::playerStatus() const
{
    const int status = scene(QStringLiteral("orb_mediaLoader.mediaPlayer.playerStatus")).toInt();
    return static_cast<QMediaPlayer::MediaStatus>(status);
}

QQuickItem *SceneFixture::item(const std::function<bool(QQuickItem *)> &matches) const
{
    return findItem(window()->rootObject(), matches);
}

QQuickItem *SceneFixture::itemReading(const QString &text) const
{
    return item(
        [&text](QQuickItem *candidate) { return candidate->property("text").toString() == text; });
}

bool SceneFixture::isFullSize(const QString &text) const
{
    const QQuickItem *label = itemReading(text);
    return label && qFuzzyCompare(label->mapRectToScene({0, 0, 1, 1}).width(), 1);
}

QQuickItem *SceneFixture::imageItem(const QString &name) const
{
    const QUrl source(QStringLiteral("qrc:/images/") + name);
    return item([&source](QQuickItem *candidate) {
        return candidate->property("source").toUrl() == source;
    });
}

bool SceneFixture::barIsUp() const
{
    return bar()->mapToScene({0, bar()->height()}).y() == window()->height();
}

QStringList SceneFixture::openLists() const
{
    QStringList titles;
    collectOpenLists(bar(), titles);
    return titles;
}

// --- what assistive technology is told ---

QQuickItem *SceneFixture::control(const QString &name, QAccessible::Role role) const
{
    const QVector<QAccessibleInterface *> all = accessibles();
    for (QAccessibleInterface *one : all) {
        if (one->role() == role && one->text(QAccessible::Name) == name)
            return qobject_cast<QQuickItem *>(one->object());
    }
    return nullptr;
}

void SceneFixture::showBar()
{
    moveTo(middle() + QPoint(-200, 0));
    QTRY_VERIFY(barIsUp());
    moveTo({middle().x(), window()->height() - 20});
}

void SceneFixture::key(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(window(), key, modifiers);
}

void SceneFixture::type(const QString &text)
{
    for (const QChar letter : text)
        QTest::keyClick(window(), letter.toLatin1());
}

void SceneFixture::clickAt(const QPoint &point)
{
    QTest::mouseClick(window(), Qt::LeftButton, Qt::NoModifier, point);
}

void SceneFixture::clickOn(QQuickItem *item)
{
    QVERIFY(item);
    clickAt(centreOf(item));
}

void SceneFixture::moveTo(const QPoint &point)
{
    QTest::mouseMove(window(), point);
}

void SceneFixture::drag(const QPoint &from, const QPoint &by)
{
    moveTo(from);
    QTest::mousePress(window(), Qt::LeftButton, Qt::NoModifier, from);
    QTest::mouseMove(window(), from + by);
    QTest::mouseRelease(window(), Qt::LeftButton, Qt::NoModifier, from + by);
}

void SceneFixture::hideControls()
{
    scene(QStringLiteral("timerHideControls.stop()"));
    scene(QStringLiteral("root.changeState('Video')"));
}

void SceneFixture::leaveWindow()
{
    QWindowSystemInterface::handleLeaveEvent<QWindowSystemInterface::SynchronousDelivery>(window());
}

void SceneFixture::turnWheel(const QPoint &pixelDelta, const QPoint &angleDelta)
{
    const QPoint point = middle() + QPoint(50, 50);
    QWindowSystemInterface::handleWheelEvent(window(), point, window()->mapToGlobal(point),
                                             pixelDelta, angleDelta);
    QWindowSystemInterface::flushWindowSystemEvents();
}

bool SceneFixture::drop(const QList<QUrl> &urls)
{
    QMimeData data;
    data.setUrls(urls);
    const bool entered = QWindowSystemInterface::handleDrag(window(), &data, middle(), kAnyDrop,
                                                            Qt::LeftButton, Qt::NoModifier)
                             .isAccepted();
    return entered
        && QWindowSystemInterface::handleDrop(window(), &data, middle(), kAnyDrop, Qt::LeftButton,
                                              Qt::NoModifier)
               .isAccepted();
}

bool SceneFixture::dropFiles(const QStringList &paths)
{
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls.append(fileUrl(path));
    return drop(urls);
}

// --- what a user sees ---

QImage SceneFixture::grab() const
{
    return window()->grabWindow();
}

bool SceneFixture::isClose(const QColor &left, const QColor &right, int tolerance)
{
    return std::abs(left.red() - right.red()) <= tolerance
        && std::abs(left.green() - right.green()) <= tolerance
        && std::abs(left.blue() - right.blue()) <= tolerance;
}

bool SceneFixture::shows(const QColor &colour, const QPoint &point) const
{
    return isClose(colourAt(point), colour);
}

bool SceneFixture::showsOctantsAhead() const
{
    const QImage image = grab();
    constexpr int kAside = 100;
    for (int column : {1, 2}) {
        for (int row : {0, 1}) {
            const QPoint aside((2 * column - 3) * kAside, (2 * row - 1) * kAside);
            if (!isClose(image.pixelColor(middle() + aside), TestMedia::octant(column, row)))
                return false;
        }
    }
    return true;
}

bool SceneFixture::cursorHidden()
{
    const QCursor *cursor = QGuiApplication::overrideCursor();
    return cursor && cursor->shape() == Qt::BlankCursor;
}

QMessageBox *SceneFixture::messageBox() const
{
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        auto *box = qobject_cast<QMessageBox *>(widget);
        if (box && box->isVisible())
            return box;
    }
    return nullptr;
}

QString SceneFixture::readAndCloseMessage()
{
    if (!QTest::qWaitFor([this] { return messageBox() != nullptr; }))
        return {};
    QMessageBox *box = messageBox();
    const QString text = box->text();
    QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
    return text;
}

QByteArray SceneFixture::settingsFile() const
{
    QFile file(QSettings(QSettings::UserScope, Product::organisation(), Product::softwareName())
                   .fileName());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void SceneFixture::keepPicture(const QString &name) const
{
    const QString folder = qEnvironmentVariable("SCENE_PICTURES");
    if (!folder.isEmpty())
        grab().save(folder + QLatin1Char('/') + name + QStringLiteral(".png"));
}

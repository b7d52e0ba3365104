#include "Driver.h"

#include <QAccessible>
#include <QApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QQmlContext>
#include <QQuickItem>
#include <QQuickView>
#include <QThread>
#include <QWidget>

#include <unistd.h>
#include <chrono>

namespace {

double monotonicMs()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double, std::milli>(now).count();
}

QByteArray line(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

struct Texts
{
    QJsonArray all;
    QJsonArray red;
};

/// Adds the texts that can be seen in an item and its children.
void collectTexts(const QQuickItem *item, Texts &texts)
{
    if (!item->isVisible() || item->opacity() <= 0)
        return;
    const QString text = item->property("text").toString();
    if (!text.isEmpty()) {
        texts.all.append(text);
        if (item->property("color").value<QColor>() == QColor(Qt::red))
            texts.red.append(text);
    }
    const QList<QQuickItem *> children = item->childItems();
    for (const QQuickItem *child : children)
        collectTexts(child, texts);
}

Texts shownTexts()
{
    Texts texts;
    const QWindowList windows = QGuiApplication::topLevelWindows();
    for (const QWindow *window : windows) {
        const auto *scene = qobject_cast<const QQuickWindow *>(window);
        if (scene && scene->isVisible())
            collectTexts(scene->contentItem(), texts);
    }
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (const QWidget *widget : widgets) {
        const QString text = widget->property("text").toString();
        if (widget->isVisible() && !text.isEmpty())
            texts.all.append(text);
    }
    return texts;
}

/// What stands behind the command's word.
QVector<double> numbers(const QByteArray &command)
{
    QVector<double> values;
    const QList<QByteArray> words = command.split(' ').mid(1);
    for (const QByteArray &word : words)
        values += word.toDouble();
    values.resize(4);
    return values;
}

/// What assistive technology finds by this name under an object and can be seen, or null.
QAccessibleInterface *findNamed(const QAccessibleInterface *under, const QString &name)
{
    for (int i = 0; i < under->childCount(); ++i) {
        QAccessibleInterface *child = under->child(i);
        if (!child || child->state().invisible)
            continue;
        if (child->text(QAccessible::Name) == name)
            return child;
        if (QAccessibleInterface *found = findNamed(child, name))
            return found;
    }
    return nullptr;
}

/// The middle of what has this name, on the screen; empty if nothing has it.
QJsonObject placeOf(const QString &name)
{
    const QWindowList windows = QGuiApplication::topLevelWindows();
    for (QWindow *window : windows) {
        QAccessibleInterface *root = window->isVisible()
            ? QAccessible::queryAccessibleInterface(window)
            : nullptr;
        const QAccessibleInterface *found = root ? findNamed(root, name) : nullptr;
        if (found) {
            const QPoint middle = found->rect().center();
            return {{QStringLiteral("x"), middle.x()}, {QStringLiteral("y"), middle.y()}};
        }
    }
    return {};
}

} // namespace

Driver::Driver()
    : m_log(qEnvironmentVariable("ORBIX_DRIVER_LOG"))
{
    if (!m_log.open(QIODevice::ReadWrite | QIODevice::Append))
        qFatal("The driver cannot write its log %s", qPrintable(m_log.fileName()));

    m_log.seek(0);
    const int startsBefore = m_log.readAll().count("\"start\"");
    const QString exitCodes = qEnvironmentVariable("ORBIX_DRIVER_EXITS");
    if (!exitCodes.isEmpty()) {
        m_exitCode = exitCodes.split(QLatin1Char(',')).value(startsBefore, QStringLiteral("0"));
    } else {
        m_commandNotifier = std::make_unique<QSocketNotifier>(STDIN_FILENO, QSocketNotifier::Read);
        connect(m_commandNotifier.get(), &QSocketNotifier::activated, this, &Driver::readCommands);
    }
    log(QStringLiteral("start"),
        {{QStringLiteral("arguments"),
          QJsonArray::fromStringList(QCoreApplication::arguments().mid(1))},
         {QStringLiteral("folder"), QDir::currentPath()}});
    QCoreApplication::instance()->installEventFilter(this);
}

void Driver::log(const QString &event, QJsonObject values)
{
    values.insert(QStringLiteral("event"), event);
    values.insert(QStringLiteral("pid"), QCoreApplication::applicationPid());
    values.insert(QStringLiteral("timeMs"), monotonicMs());
    m_log.write(line(values));
    m_log.flush();
}

bool Driver::eventFilter(QObject *object, QEvent *event)
{
    auto *window = qobject_cast<QQuickWindow *>(object);
    if (!m_window && window && event->type() == QEvent::Expose) {
        m_window = window;
        connect(window, &QQuickWindow::frameSwapped, this, &Driver::onFrameShown);
    }
    return false;
}

void Driver::onFrameShown()
{
    if (++m_frames > 1)
        return;
    log(QStringLiteral("frame"), {{QStringLiteral("title"), m_window->title()}});
    if (!m_exitCode.isEmpty())
        end(m_exitCode.toInt());
}

void Driver::readCommands()
{
    char buffer[256];
    const ssize_t size = read(STDIN_FILENO, buffer, sizeof buffer);
    if (size <= 0) {
        m_commandNotifier->setEnabled(false);
        return;
    }
    m_commands.append(buffer, static_cast<int>(size));
    for (int end = 0; (end = m_commands.indexOf('\n')) >= 0;) {
        const QByteArray command = m_commands.left(end);
        m_commands.remove(0, end + 1);
        obey(command);
    }
}

void Driver::obey(const QByteArray &command)
{
    for (const char *word : {"place", "drag", "key", "dump"}) {
        if (!m_window && command.startsWith(word))
            qFatal("The driver cannot %s before the window is shown", word);
    }
    if (command.startsWith("exit ")) {
        end(command.mid(5).toInt());
    } else if (command.startsWith("open ")) {
        open(QString::fromUtf8(command.mid(5)));
    } else if (command == "close" && m_window) {
        m_window->close();
    } else if (command.startsWith("place ")) {
        const QVector<double> to = numbers(command);
        m_window->showNormal();
        m_window->setGeometry(int(to[0]), int(to[1]), int(to[2]), int(to[3]));
    } else if (command.startsWith("drag ")) {
        const QVector<double> way = numbers(command);
        drag({way[0], way[1]}, {way[2], way[3]});
    } else if (command.startsWith("key ")) {
        press(QString::fromUtf8(command.mid(4)));
    } else if (command.startsWith("turn ")) {
        const QVector<double> angles = numbers(command);
        camera()->setProperty("yaw", angles[0]);
        camera()->setProperty("pitch", angles[1]);
        camera()->setProperty("roll", angles[2]);
    } else if (command == "dump") {
        QMetaObject::invokeMethod(m_window, "OnMiniDump");
    } else if (command.startsWith("find ")) {
        answer(placeOf(QString::fromUtf8(command.mid(5))));
    } else if (command.startsWith("value ")) {
        const QList<QByteArray> words = command.split(' ');
        const QVariant value = sceneObject(words.value(1))->property(words.value(2));
        answer({{QStringLiteral("value"), QJsonValue::fromVariant(value)}});
    } else if (command.startsWith("set ")) {
        const QList<QByteArray> words = command.split(' ');
        const QVariant value = QString::fromLatin1(words.value(3));
        if (!sceneObject(words.value(1))->setProperty(words.value(2), value))
            qFatal("The driver cannot obey %s", command.constData());
    } else if (command == "dismiss") {
        if (QWidget *message = QApplication::activeModalWidget())
            message->close();
    } else if (command == "state") {
        answer(state());
    } else {
        qFatal("The driver does not know the command %s", command.constData());
    }
}

void Driver::answer(const QJsonObject &object)
{
    const QByteArray text = line(object);
    if (write(STDOUT_FILENO, text.constData(), static_cast<size_t>(text.size())) != text.size())
        qFatal("The driver cannot answer");
}

QObject *Driver::sceneObject(const QByteArray &name) const
{
    const auto *view = qobject_cast<const QQuickView *>(m_window);
    if (!view)
        qFatal("The driver can do nothing before the window is shown");
    const QStringList path = QString::fromLatin1(name).split(QLatin1Char('.'));
    auto *object = qmlContext(view->rootObject())->contextProperty(path.first()).value<QObject *>();
    for (int i = 1; object && i < path.size(); ++i)
        object = object->property(path[i].toLatin1()).value<QObject *>();
    if (!object)
        qFatal("The driver finds no object %s", name.constData());
    return object;
}

QObject *Driver::camera() const
{
    return sceneObject("orbGlobalObject");
}

void Driver::open(const QString &text)
{
    if (!QMetaObject::invokeMethod(camera(), "openFile", Qt::QueuedConnection, Q_ARG(QString, text),
                                   Q_ARG(bool, false)))
        qFatal("The driver cannot open %s", qPrintable(text));
}

void Driver::drag(const QPointF &from, const QPointF &by)
{
    const auto send = [this](QEvent::Type type, const QPointF &at, Qt::MouseButtons buttons) {
        const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, at, m_window->mapToGlobal(at.toPoint()), button, buttons,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(m_window, &event);
    };
    constexpr int steps = 10;
    send(QEvent::MouseButtonPress, from, Qt::LeftButton);
    for (int i = 1; i <= steps; ++i)
        send(QEvent::MouseMove, from + by * i / steps, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, from + by, Qt::NoButton);
}

void Driver::press(const QString &keys)
{
    const int key = QKeySequence::fromString(keys, QKeySequence::PortableText)[0];
    const Qt::KeyboardModifiers modifiers(key & int(Qt::KeyboardModifierMask));
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key & ~int(Qt::KeyboardModifierMask), modifiers);
        QCoreApplication::sendEvent(m_window, &event);
    }
}

void Driver::end(int exitCode)
{
    log(QStringLiteral("end"), {});
    QCoreApplication::exit(exitCode);
}

QJsonObject Driver::state() const
{
    const Texts texts = shownTexts();
    QJsonObject state{{QStringLiteral("texts"), texts.all},
                      {QStringLiteral("redTexts"), texts.red}};
    if (m_window) {
        const QOpenGLContext *context = m_window->openglContext();
        state.insert(QStringLiteral("frames"), m_frames);
        state.insert(QStringLiteral("title"), m_window->title());
        state.insert(QStringLiteral("window"), static_cast<qint64>(m_window->winId()));
        state.insert(QStringLiteral("fullScreen"), m_window->visibility() == QWindow::FullScreen);
        state.insert(QStringLiteral("openGlEs"), context && context->isOpenGLES());
        state.insert(QStringLiteral("renderThread"), context && context->thread() != thread());
    }
    return state;
}

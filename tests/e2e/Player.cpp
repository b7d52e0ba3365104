#include "Player.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QSettings>
#include <QTest>

#include <xcb/xcb.h>
#include <csignal>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kAnswerMs = 10000;
constexpr int kDeadlineMs = 30000;
constexpr int kAskAgainMs = 50;
constexpr char kLogVariable[] = "ORBIX_DRIVER_LOG"; ///< its value marks the processes of a run

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

xcb_atom_t atom(xcb_connection_t *connection, const char *name)
{
    const auto length = static_cast<uint16_t>(std::strlen(name));
    const auto cookie = xcb_intern_atom(connection, 0, length, name);
    xcb_intern_atom_reply_t *reply = xcb_intern_atom_reply(connection, cookie, nullptr);
    const xcb_atom_t found = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    std::free(reply);
    return found;
}

} // namespace

Player::Player()
    : m_environment(QProcessEnvironment::systemEnvironment())
{
    for (const char *name : {"config", "runtime"})
        QDir(m_files.path()).mkdir(QLatin1String(name));
    QFile::setPermissions(m_files.filePath(QStringLiteral("runtime")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    setEnvironment(QStringLiteral("XDG_CONFIG_HOME"), m_files.filePath(QStringLiteral("config")));
    setEnvironment(QStringLiteral("XDG_RUNTIME_DIR"), m_files.filePath(QStringLiteral("runtime")));
    setEnvironment(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral(DRIVER_PLUGINS));
    setEnvironment(QStringLiteral("QT_QPA_GENERIC_PLUGINS"), QStringLiteral("orbixdriver"));
    setEnvironment(QString::fromLatin1(kLogVariable),
                   m_files.filePath(QStringLiteral("driver.log")));
    m_process.setStandardErrorFile(m_files.filePath(QStringLiteral("errors.txt")));
}

Player::~Player()
{
    m_process.kill();
    m_process.waitForFinished();
    const auto left = processes();
    for (const pid_t process : left)
        kill(process, SIGKILL);
}

void Player::start(const QStringList &arguments, const QString &folder)
{
    m_process.setProcessEnvironment(m_environment);
    m_process.setWorkingDirectory(folder);
    m_process.start(QStringLiteral(PLAYER), arguments);
}

void Player::setEnvironment(const QString &name, const QString &value)
{
    m_environment.insert(name, value);
}

QString Player::settingsFile() const
{
    return m_files.filePath(QStringLiteral("config/Orbix/Orbix Sight 1.4.conf"));
}

void Player::setSetting(const QString &key, const QVariant &value)
{
    QSettings stored(settingsFile(), QSettings::IniFormat);
    stored.setValue(key, value);
}

QVariantMap Player::settings() const
{
    const QSettings settings(settingsFile(), QSettings::IniFormat);
    QVariantMap map;
    const QStringList keys = settings.allKeys();
    for (const QString &key : keys)
        map.insert(key, settings.value(key));
    return map;
}

QJsonObject Player::state()
{
    m_process.write("state\n");
    QElapsedTimer waiting;
    waiting.start();
    while (!m_process.canReadLine() && waiting.elapsed() < kAnswerMs
           && m_process.state() != QProcess::NotRunning)
        m_process.waitForReadyRead(kAskAgainMs);
    m_lastState = QJsonDocument::fromJson(m_process.readLine()).object();
    return m_lastState;
}

bool Player::waitForState(const std::function<bool(const QJsonObject &)> &isWanted)
{
    QElapsedTimer waiting;
    waiting.start();
    while (!isWanted(state())) {
        if (m_lastState.isEmpty() || waiting.elapsed() > kDeadlineMs)
            return false;
        QTest::qWait(kAskAgainMs);
    }
    return true;
}

void Player::open(const QString &text)
{
    m_process.write("open " + text.toUtf8() + '\n');
    m_process.waitForBytesWritten();
}

void Player::exit(int code)
{
    m_process.write("exit " + QByteArray::number(code) + '\n');
    m_process.waitForBytesWritten();
}

void Player::closeWindow()
{
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = static_cast<xcb_window_t>(state().value(QLatin1String("window")).toDouble());
    message.type = atom(connection, "WM_PROTOCOLS");
    message.data.data32[0] = atom(connection, "WM_DELETE_WINDOW");
    message.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(connection, 0, message.window, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char *>(&message));
    // The server drops what it has not read yet of a connection that is cut; its answer says it
    // has.
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    xcb_disconnect(connection);
}

bool Player::waitForEnd()
{
    return m_process.state() == QProcess::NotRunning || m_process.waitForFinished(kDeadlineMs);
}

QVector<pid_t> Player::processes() const
{
    const QByteArray mark = kLogVariable + ('=' + m_files.path().toUtf8()) + '/';
    QVector<pid_t> found;
    const QStringList all = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoSymLinks);
    for (const QString &process : all) {
        if (content(QStringLiteral("/proc/%1/environ").arg(process)).contains(mark))
            found.append(static_cast<pid_t>(process.toInt()));
    }
    return found;
}

QVector<QJsonObject> Player::log(const QString &event) const
{
    QVector<QJsonObject> entries;
    const QList<QByteArray> lines = content(m_files.filePath(QStringLiteral("driver.log")))
                                        .split('\n');
    for (const QByteArray &line : lines) {
        const QJsonObject entry = QJsonDocument::fromJson(line).object();
        if (entry.value(QLatin1String("event")).toString() == event)
            entries.append(entry);
    }
    return entries;
}

QStringList Player::errorOutput() const
{
    const QByteArray output = content(m_files.filePath(QStringLiteral("errors.txt")));
    return QString::fromUtf8(output).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

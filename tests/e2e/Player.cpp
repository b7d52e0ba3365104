#include "Player.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QSettings>
#include <QTest>

#include <algorithm>
#include <csignal>

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

} // namespace

Player::Player()
    : m_program(QStringLiteral(PLAYER))
    , m_environment(QProcessEnvironment::systemEnvironment())
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
    const QStringList command = m_starter + QStringList(m_program) + arguments;
    m_process.start(command.first(), command.mid(1));
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

QJsonObject Player::ask(const QByteArray &command)
{
    m_process.write(command + '\n');
    QElapsedTimer waiting;
    waiting.start();
    while (!m_process.canReadLine() && waiting.elapsed() < kAnswerMs
           && m_process.state() != QProcess::NotRunning)
        m_process.waitForReadyRead(kAskAgainMs);
    return QJsonDocument::fromJson(m_process.readLine()).object();
}

QJsonObject Player::state()
{
    m_lastState = ask("state");
    return m_lastState;
}

QVariant Player::value(const char *object, const char *property)
{
    return ask(QByteArray("value ") + object + ' ' + property)
        .value(QLatin1String("value"))
        .toVariant();
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

bool Player::shows(const QJsonObject &state, const QString &part)
{
    const QJsonArray texts = state.value(QLatin1String("texts")).toArray();
    return std::any_of(texts.begin(), texts.end(),
                       [&part](const QJsonValue &text) { return text.toString().contains(part); });
}

void Player::order(const QByteArray &line)
{
    m_process.write(line + '\n');
    m_process.waitForBytesWritten();
}

void Player::open(const QString &text)
{
    order("open " + text.toUtf8());
}

void Player::raise(int signal)
{
    kill(static_cast<pid_t>(m_process.processId()), signal);
}

void Player::exit(int code)
{
    order("exit " + QByteArray::number(code));
}

void Player::close()
{
    order("close");
}

QString Player::ending(const QString &ignored)
{
    if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(kDeadlineMs))
        return QStringLiteral("it does not end");
    QStringList lines = errors().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    if (!ignored.isEmpty()) {
        const QRegularExpression pattern(QRegularExpression::anchoredPattern(ignored));
        const auto matches = [&](const QString &line) { return pattern.match(line).hasMatch(); };
        lines.erase(std::remove_if(lines.begin(), lines.end(), matches), lines.end());
    }
    lines.prepend(m_process.exitStatus() == QProcess::CrashExit
                      ? QStringLiteral("it crashed")
                      : QString::number(m_process.exitCode()));
    return lines.join(QLatin1Char('\n'));
}

QString Player::errors() const
{
    return QString::fromUtf8(content(m_files.filePath(QStringLiteral("errors.txt"))));
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

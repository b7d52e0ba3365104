#include "OrbGlobalObject.h"

#include "ImageDef.h"
#include "MediaClass.h"
#include "OpenGLFlavour.h"
#include "OrbSettingsManager.h"
#include "OrbVideoPlugin.h"
#include "Orientation.h"
#include "PlaylistFile.h"
#include "Product.h"
#include "ThirdParty.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QMessageBox>
#include <QMetaProperty>
#include <QPropertyAnimation>

#include <cmath>

namespace {

Q_LOGGING_CATEGORY(lcView, "orbix.view")

const QString kOculusMode = QStringLiteral("application/oculusmode");
const QString kForceOpenGl = QStringLiteral("application/forceopengl");
const QString kVideoPlugin = QStringLiteral("application/videoPlugin");
const QString kTouchMode = QStringLiteral("application/touchMode");
const QString kImageDuration = QStringLiteral("application/playlist/imageDisplayDuration");
constexpr int kDefaultImageDurationMs = 30000;
constexpr int kInterpolationMs = 200;
constexpr double kRadPerDeg = 0.0174532925;

} // namespace

OrbGlobalObject::OrbGlobalObject(OrbSettingsManager *settings, OrbVideoPlugin *videoPlugin)
    : m_videoLogMessage(tr("No loaded media."))
    , m_touchMode(settings->seededValue(kTouchMode, true).toBool())
    , m_settings(settings)
{
    const int duration = settings->seededValue(kImageDuration, kDefaultImageDurationMs).toInt();
    m_imageTimer.setInterval(duration > 0 ? duration : kDefaultImageDurationMs);
    connect(&m_imageTimer, &QTimer::timeout, this, &OrbGlobalObject::playListSetNext);

    const bool forceOpenGl = settings->seededValue(kForceOpenGl, false).toBool();
    const bool oculusMode = settings->seededValue(kOculusMode, false).toBool();
    // Qt's desktop build takes the kind of OpenGL from the surface format; its application
    // attributes choose between libraries that this platform does not have.
    QSurfaceFormat format = QSurfaceFormat::defaultFormat();
    format.setRenderableType(openGLFlavour(oculusMode, forceOpenGl, videoPlugin->currentPlugin()));
    QSurfaceFormat::setDefaultFormat(format);
}

OrbGlobalObject::~OrbGlobalObject() = default;

// --- camera ---

bool OrbGlobalObject::assign(float &member, float value, Notify changed)
{
    if (!std::isfinite(value) || member == value)
        return false;
    member = value;
    emit(this->*changed)();
    return true;
}

void OrbGlobalObject::setYaw(float yaw, bool update)
{
    if (!std::isfinite(yaw))
        return;
    if (assign(m_yaw, Orientation::wrapAngle(yaw), &OrbGlobalObject::yawChanged) && update)
        rebuildRotationMatrix();
}

void OrbGlobalObject::setPitch(float pitch, bool update)
{
    if (!std::isfinite(pitch))
        return;
    if (assign(m_pitch, Orientation::wrapAngle(pitch), &OrbGlobalObject::pitchChanged) && update)
        rebuildRotationMatrix();
}

void OrbGlobalObject::setRoll(float roll, bool update)
{
    if (assign(m_roll, roll, &OrbGlobalObject::rollChanged) && update)
        rebuildRotationMatrix();
}

void OrbGlobalObject::setYawMin(float yawMin)
{
    assign(m_yawMin, yawMin, &OrbGlobalObject::yawMinChanged);
}

void OrbGlobalObject::setYawMax(float yawMax)
{
    assign(m_yawMax, yawMax, &OrbGlobalObject::yawMaxChanged);
}

void OrbGlobalObject::setPitchMin(float pitchMin)
{
    assign(m_pitchMin, pitchMin, &OrbGlobalObject::pitchMinChanged);
}

void OrbGlobalObject::setPitchMax(float pitchMax)
{
    assign(m_pitchMax, pitchMax, &OrbGlobalObject::pitchMaxChanged);
}

void OrbGlobalObject::setFov(float fov)
{
    assign(m_fov, fov, &OrbGlobalObject::fovChanged);
}

void OrbGlobalObject::setYawCorrection(float yaw, bool update)
{
    if (!std::isfinite(yaw))
        return;
    const float wrapped = Orientation::wrapAngle(yaw);
    if (assign(m_yawCorrection, wrapped, &OrbGlobalObject::yawCorrectionChanged) && update)
        rebuildCorrectionMatrix();
}

void OrbGlobalObject::setPitchCorrection(float pitch, bool update)
{
    if (!std::isfinite(pitch))
        return;
    const float wrapped = Orientation::wrapAngle(pitch);
    if (assign(m_pitchCorrection, wrapped, &OrbGlobalObject::pitchCorrectionChanged) && update)
        rebuildCorrectionMatrix();
}

void OrbGlobalObject::setRollCorrection(float roll, bool update)
{
    if (assign(m_rollCorrection, roll, &OrbGlobalObject::rollCorrectionChanged) && update)
        rebuildCorrectionMatrix();
}

void OrbGlobalObject::setRotationMatrix(const QMatrix4x4 &matrix, bool updateAngles)
{
    if (m_rotationMatrix == matrix)
        return;
    m_rotationMatrix = matrix;
    emit rotationMatrixChanged();
    if (!updateAngles)
        return;
    const Orientation::Angles angles = Orientation::anglesFromMatrix(m_rotationMatrix);
    setYaw(angles.yaw, false);
    setPitch(angles.pitch, false);
    setRoll(angles.roll, false);
}

void OrbGlobalObject::rebuildRotationMatrix()
{
    setRotationMatrix(Orientation::rotationMatrix(m_yaw, m_pitch, m_roll), false);
}

void OrbGlobalObject::rebuildCorrectionMatrix()
{
    m_correctionMatrix = Orientation::rotationMatrix(0, 0, m_rollCorrection)
        * Orientation::rotationMatrix(0, m_pitchCorrection, 0);
    emit rotationMatrixChanged();
}

void OrbGlobalObject::interpolateValue(const QByteArray &property, float newValue)
{
    if (!std::isfinite(newValue) || metaObject()->indexOfProperty(property) < 0) {
        qCWarning(lcView, "Cannot move \"%s\" to %f", property.constData(), double(newValue));
        return;
    }
    QPropertyAnimation *&animation = m_animations[property];
    QVariant start;
    if (animation) {
        start = animation->currentValue();
    } else {
        animation = new QPropertyAnimation(this, property, this);
        animation->setDuration(kInterpolationMs);
        start = this->property(property);
    }
    animation->stop();
    animation->setStartValue(start.toFloat());
    animation->setEndValue(newValue);
    animation->start(QAbstractAnimation::KeepWhenStopped);
}

void OrbGlobalObject::readMetaData(const QVariant &url)
{
    const QUrl source = url.toUrl();
    ImageDef *image = nullptr;
    if (isImageFile(source))
        ImageDef::open(source.toLocalFile(), &image, false);
    const double pitch = image ? image->metadata().zenithPitch * kRadPerDeg : 0;
    const double roll = image ? image->metadata().zenithRoll * kRadPerDeg : 0;

    setYawCorrection(0, false);
    setPitchCorrection(static_cast<float>(pitch), false);
    setRollCorrection(static_cast<float>(roll), false);
    rebuildCorrectionMatrix();
}

// --- services of the scene ---

void OrbGlobalObject::setVideoLogMessage(const QString &message)
{
    if (m_videoLogMessage == message)
        return;
    m_videoLogMessage = message;
    emit videoLogMessageChanged();
}

void OrbGlobalObject::setTouchMode(bool touchMode)
{
    if (m_touchMode == touchMode)
        return;
    m_touchMode = touchMode;
    emit touchModeChanged();
}

void OrbGlobalObject::setSetting(const QString &key, const QVariant &value)
{
    m_settings->write(key, value);
}

QVariant OrbGlobalObject::getSetting(const QString &key, const QVariant &fallback)
{
    return m_settings->value(key, fallback);
}

bool OrbGlobalObject::containsSetting(const QString &key) const
{
    return m_settings->contains(key);
}

void OrbGlobalObject::hideCursor()
{
    QGuiApplication::setOverrideCursor(Qt::BlankCursor);
}

void OrbGlobalObject::restoreCursor()
{
    QGuiApplication::restoreOverrideCursor();
}

void OrbGlobalObject::quit()
{
    QCoreApplication::exit(0);
}

void OrbGlobalObject::restart()
{
    QCoreApplication::exit(kRestartExitCode);
}

QString OrbGlobalObject::platformOS() const
{
    // The scene's name for "any desktop but macOS"; it chooses the pinch area by it.
    static const QString kPlatform = QStringLiteral("Q_OS_WIN32");
    return kPlatform;
}

QString OrbGlobalObject::getApplicationDirPath() const
{
    return QCoreApplication::applicationDirPath();
}

QString OrbGlobalObject::getSoftwareName() const
{
    return Product::displayName();
}

QString OrbGlobalObject::getEnterpriseWebLink() const
{
    return Product::makerUrl();
}

QString OrbGlobalObject::getDocumentationLink() const
{
    return Product::documentationUrl();
}

QString OrbGlobalObject::aboutThirdParty() const
{
    return thirdPartyNotices();
}

QUrl OrbGlobalObject::getDynamicLogo(const QUrl &url) const
{
    return m_logos.value(url);
}

bool OrbGlobalObject::checkOculusMode(bool available)
{
    if (m_settings->boolValue(kForceOpenGl, false))
        return true;
    const bool oculusMode = m_settings->boolValue(kOculusMode, false);
    if (oculusMode == available)
        return true;

    m_settings->write(kOculusMode, available);
    QString message;
    if (available) {
        m_settings->write(kVideoPlugin, QStringLiteral("vlc"));
        message = tr("Oculus detected.\nOculus mode is automatically activated.\n"
                     "Orbix Sight must be restarted.");
    } else {
        m_settings->remove(kVideoPlugin);
        message = tr("No Oculus detected.\nOculus mode is automatically deactivated.\n"
                     "Orbix Sight must be restarted.");
    }
    QMessageBox box(QMessageBox::Critical, Product::displayName(), message);
    box.exec();
    QCoreApplication::quit();
    return false;
}

// --- playlist ---

void OrbGlobalObject::setMediaLoader(QObject *mediaLoader)
{
    m_mediaLoader = mediaLoader;
}

void OrbGlobalObject::invokeProcessFileSource(const QVariant &source, bool checkFile,
                                              const QString &error)
{
    if (!m_mediaLoader)
        return;
    constexpr bool kClearPlayList = false;
    QMetaObject::invokeMethod(m_mediaLoader, "processFileSource", Q_ARG(QVariant, source),
                              Q_ARG(QVariant, checkFile), Q_ARG(QVariant, kClearPlayList),
                              Q_ARG(QVariant, error));
}

QString OrbGlobalObject::typedSource(const QString &text) const
{
    return MediaClass::typedSource(text, m_startFolder);
}

void OrbGlobalObject::openFile(const QString &url, bool checkFile)
{
    openFiles(QList<QString>{url}, checkFile);
}

void OrbGlobalObject::openFiles(const QList<QString> &urls, bool checkFile)
{
    QList<QUrl> sources;
    sources.reserve(urls.size());
    for (const QString &url : urls)
        sources.append(MediaClass::sourceFromText(url));
    openFiles(sources, checkFile);
}

void OrbGlobalObject::openFiles(const QList<QUrl> &urls, bool checkFile)
{
    if (urls.isEmpty())
        return;

    QList<QUrl> sources = urls;
    QString error;
    const QString path = urls.first().toLocalFile();
    if (urls.size() == 1 && QFileInfo(path).suffix() == QLatin1String("ospl")) {
        const PlaylistFile::Playlist playlist = PlaylistFile::read(path);
        switch (playlist.error) {
        case PlaylistFile::Error::None:
            break;
        case PlaylistFile::Error::CannotOpen:
            error = tr("Error : cannot open file .ospl");
            break;
        case PlaylistFile::Error::CannotParse:
            error = tr("Error : cannot parse json");
            break;
        case PlaylistFile::Error::NotAnArray:
            error = tr("Error : json is not an array");
            break;
        case PlaylistFile::Error::Empty:
            error = tr("Error : json is empty");
            break;
        }
        sources.clear();
        for (const PlaylistFile::Entry &entry : playlist.entries) {
            sources.append(entry.media);
            m_logos.insert(entry.media, entry.logo);
        }
    }

    clearPlayList();
    if (!error.isEmpty()) {
        invokeProcessFileSource(QString(), checkFile, error);
        return;
    }

    setYaw(0, false);
    setPitch(0, false);
    setRoll(0, false);
    rebuildRotationMatrix();
    if (sources.size() > 1) {
        m_playList = sources;
        setPlayListIndex(0);
    } else {
        invokeProcessFileSource(sources.first(), checkFile, QString());
    }
}

void OrbGlobalObject::setPlayListIndex(int index)
{
    if (index == m_playListIndex)
        return;
    m_imageTimer.stop();
    m_playListIndex = index;
    if (index >= 0 && index < m_playList.size())
        invokeProcessFileSource(m_playList.at(index), true, QString());
    emit playListIndexChanged();
}

void OrbGlobalObject::playListSetNext()
{
    const int next = m_playListIndex + 1;
    setPlayListIndex(next < m_playList.size() ? next : 0);
}

void OrbGlobalObject::playListSetPrevious()
{
    const int previous = m_playListIndex - 1;
    setPlayListIndex(previous >= 0 ? previous : m_playList.size() - 1);
}

QStringList OrbGlobalObject::getPlayListNames() const
{
    QStringList names;
    for (const QUrl &url : m_playList) {
        const QString name = url.fileName();
        names += name.left(name.lastIndexOf(QLatin1Char('.')));
    }
    return names;
}

void OrbGlobalObject::clearPlayList()
{
    m_imageTimer.stop();
    m_playList.clear();
    m_playListIndex = -1;
    emit playListIndexChanged();
}

void OrbGlobalObject::startTimerNextImage()
{
    m_imageTimer.start();
}

bool OrbGlobalObject::isImageFile(const QUrl &url) const
{
    return MediaClass::isImageFile(url);
}

bool OrbGlobalObject::isVideoFile(const QUrl &url) const
{
    return MediaClass::isVideoFile(url);
}

bool OrbGlobalObject::isValidFilePath(const QUrl &) const
{
    // Whether a file can be read shows only when it is opened; the player reports it then.
    return true;
}

QUrl OrbGlobalObject::checkFilePath(const QUrl &url) const
{
    QUrl checked = url;
    if (url.scheme() == QLatin1String("qrc"))
        checked.setScheme(QStringLiteral("file"));
    return checked;
}

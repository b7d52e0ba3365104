#pragma once

#include "AccessibleTree.h"
#include "OrbGlobalObject.h"
#include "OrbQQuickView.h"
#include "OrbShaderCodeBuilder.h"
#include "TestMedia.h"
#include "WarningsFail.h"

#include <QColor>
#include <QImage>
#include <QMediaPlayer>
#include <QQuickItem>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <memory>

class Application;
class OrbSettingsManager;
class QMessageBox;

/// How much earlier than asked for a timer of QML may go off: it counts from the last tick of the
/// animations, which Qt lets be 50 ms old, and times are rounded.
constexpr int kTimerSlackMs = 51;

/// The whole program with its real window, once a process, steered by events as a window system
/// gives them. Base of test classes: the program is up from the first test function to the last,
/// starts with settings of its own, and neither its start nor its end may print a warning.
///
/// Each test function begins with the scene in the state "Video", nothing of the popups or dialogs
/// open, the pointer outside, and the view straight ahead.
class SceneFixture : public WarningsFail
{
    Q_OBJECT

public:
    SceneFixture();
    ~SceneFixture() override;

    /// Runs the tests of this class. `arguments` are the program's own, without its name;
    /// `settings` are stored before it starts.
    int run(int argc, char **argv, const QStringList &arguments = {},
            const QVariantMap &settings = {});

    TestMedia media;

protected:
    Application *application() const { return m_application.get(); }
    OrbQQuickView *window() const;
    OrbGlobalObject *view() const;
    OrbShaderCodeBuilder *picture() const;

    /// Whether the tests want to see what the program opens by itself.
    virtual bool keepsStartPopup() const { return false; }

    /// The value of an expression in the root scene, whose ids it sees.
    QVariant scene(const QString &expression) const;
    QString state() const { return scene(QStringLiteral("root.state")).toString(); }
    QString title() const;
    QMediaPlayer::MediaStatus playerStatus() const;

    /// The uppermost visible item that reads `text`, or null.
    QQuickItem *itemReading(const QString &text) const;
    QQuickItem *item(const std::function<bool(QQuickItem *)> &matches) const;
    bool reads(const QString &text) const { return itemReading(text) != nullptr; }

    /// Whether the panel that reads `text` has swung in.
    bool isFullSize(const QString &text) const;

    /// The uppermost visible image of the program's own resources, by its path below "images".
    QQuickItem *imageItem(const QString &name) const;

    QQuickItem *bar() const { return scene(QStringLiteral("orb_bar")).value<QQuickItem *>(); }
    bool barIsUp() const; ///< all of it in view

    /// Titles of the bar's lists that are open, "Volume" for the volume's panel.
    QStringList openLists() const;

    // --- what assistive technology is told ---
    QVector<QAccessibleInterface *> accessibles() const { return AccessibleTree::of(window()); }

    /// The item of that name and role, or null.
    QQuickItem *control(const QString &name, QAccessible::Role role = QAccessible::Button) const;

    /// The ground of the bar only keeps it awake.
    QStringList namelessHotPlaces() const
    {
        return AccessibleTree::namelessHotPlaces(window()->rootObject(), bar());
    }

    // --- what a user does ---
    /// Brings the bar into view, with the pointer on it, which keeps it there.
    void showBar();
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void type(const QString &text);
    void clickAt(const QPoint &point);
    void clickOn(QQuickItem *item);
    void moveTo(const QPoint &point);
    void drag(const QPoint &from, const QPoint &by);
    void leaveWindow();

    /// Puts the controls away as three seconds of rest do.
    void hideControls();
    void turnWheel(const QPoint &pixelDelta, const QPoint &angleDelta);
    bool drop(const QList<QUrl> &urls);
    bool dropFiles(const QStringList &paths);

    // --- what a user sees ---
    QPoint middle() const { return {window()->width() / 2, window()->height() / 2}; }
    QImage grab() const;
    QColor colourAt(const QPoint &point) const { return grab().pixelColor(point); }
    bool shows(const QColor &colour, const QPoint &point) const;
    static bool isClose(const QColor &left, const QColor &right, int tolerance = 3);

    /// Whether the four quarters around the middle are those of the octants straight ahead.
    bool showsOctantsAhead() const;
    static bool cursorHidden();
    QMessageBox *messageBox() const;

    /// Waits for the message box, gives its text, and presses its button; empty if none came.
    QString readAndCloseMessage();

    QByteArray settingsFile() const;

    /// Keeps a picture of the window when the environment names a folder in SCENE_PICTURES.
    void keepPicture(const QString &name) const;

protected slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

private:
    void resetScene();

    QTemporaryDir m_configuration;
    std::unique_ptr<OrbSettingsManager> m_settings;
    std::unique_ptr<Application> m_application;
};

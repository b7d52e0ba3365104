#include "SceneFixture.h"

#include <QTest>

namespace {
const QString kMode = QStringLiteral("Communication Mode");
const QString kFormat = QStringLiteral("Packet format");
const QString kPort = QStringLiteral("Port");
const QString kRate = QStringLiteral("Refresh rate in milliseconds");
const QString kPart = QStringLiteral("Address part %1");

constexpr const char *kNames[] = {"state",  "port",     "rate",    "format",
                                  "ipMode", "ipCustom", "urlMode", "orientation"};

QString settingKey(const char *name)
{
    return QStringLiteral("application/communication/") + QLatin1String(name);
}
} // namespace

/// The panel of the settings of copies in step.
class tst_MainWindowCommunication : public SceneFixture
{
    Q_OBJECT

private:
    QVariantList stored() const;
    void store(const QVariantList &values);
    void openPanel();
    QQuickItem *radio(const QString &group, const QString &name) const;
    void choose(const QString &group, const QString &name) { clickOn(radio(group, name)); }
    QString shown() const;
    void fill(QQuickItem *field, const QString &text);

private slots:
    void thePanelShowsWhatIsStored_data();
    void thePanelShowsWhatIsStored();
    void savingStoresAllThatIsShown();
    void keysAndTheCloseButtonSaveNothing();
};

QVariantList tst_MainWindowCommunication::stored() const
{
    QVariantList values;
    for (const char *name : kNames)
        values.append(view()->getSetting(settingKey(name)));
    return values;
}

void tst_MainWindowCommunication::store(const QVariantList &values)
{
    for (int i = 0; i < values.size(); ++i)
        view()->setSetting(settingKey(kNames[i]), values.at(i));
}

void tst_MainWindowCommunication::openPanel()
{
    showBar();
    clickOn(control(QStringLiteral("Menu")));
    const QQuickItem *list = control(QStringLiteral("Menu"), QAccessible::PopupMenu);
    QTRY_COMPARE(list->mapToScene({list->width(), 0}).x(), qreal(window()->width()));
    clickOn(itemReading(QStringLiteral("UDP Communication")));
    QTRY_VERIFY(isFullSize(QStringLiteral("Save")));
    QTRY_VERIFY(scene(QStringLiteral("orb_popup.activeFocus")).toBool());
    QTRY_COMPARE(scene(QStringLiteral("orb_popup.children[2].scale")).toReal(), 1.);
}

/// The button of that name in a group; with no name, the one that is on.
QQuickItem *tst_MainWindowCommunication::radio(const QString &group, const QString &name) const
{
    const QQuickItem *box = control(group, QAccessible::Grouping);
    const QVector<QAccessibleInterface *> all = accessibles();
    for (const QAccessibleInterface *one : all) {
        auto *button = qobject_cast<QQuickItem *>(one->object());
        if (one->role() == QAccessible::RadioButton && box->isAncestorOf(button)
            && (name.isEmpty() ? one->state().checked : one->text(QAccessible::Name) == name))
            return button;
    }
    return nullptr;
}

/// What the panel says from top to bottom, in brackets where it cannot be changed.
QString tst_MainWindowCommunication::shown() const
{
    const auto value = [](const QQuickItem *item, const char *property) {
        const QString text = item ? item->property(property).toString() : QStringLiteral("none");
        return item && item->isEnabled() ? text : QStringLiteral("(%1)").arg(text);
    };
    QStringList words{value(radio(kMode, {}), "text"),
                      value(radio(QStringLiteral("IP Address"), {}), "text")};
    for (int i = 1; i <= 4; ++i)
        words += value(control(kPart.arg(i), QAccessible::EditableText), "text");
    for (const QString &name : {kPort, kRate})
        words += value(control(name, QAccessible::SpinBox), "value");
    for (const QString &name :
         {QStringLiteral("URL decoding"), QStringLiteral("Camera orientation"), kFormat})
        words += value(radio(name, {}), "text");
    return words.join(QLatin1Char(' '));
}

void tst_MainWindowCommunication::fill(QQuickItem *field, const QString &text)
{
    clickOn(field);
    key(Qt::Key_A, Qt::ControlModifier);
    key(Qt::Key_Delete);
    type(text);
}

void tst_MainWindowCommunication::thePanelShowsWhatIsStored_data()
{
    QTest::addColumn<QVariantList>("values"); // as a settings file gives them, in order of kNames
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *name, const QVariantList &values, const char *expected) {
        QTest::newRow(name) << values << QString::fromLatin1(expected);
    };
    row("nothing", {}, "Off (LocalHost) (192) (168) (1) (1) (7755) (20) (Absolute) (On) (JSON)");
    row("master", {"master", "1", "0", "1", "custom", "10.0.20.255", "2", "false"},
        "Master Custom 10 0 20 255 1 0 (Desktop) (Off) Qt");
    row("slave", {"slave", 999999, 1000, 0, "broadcast", "", 3, true},
        "Slave (Broadcast) () () () () 999999 (1000) Off On JSON");
    row("nonsense", {"master", "abc", "1e3", "NaN", "localhost", "::1", "-1", "abc"},
        "Master LocalHost () () () () 7755 20 (Absolute) (On) JSON");
    row("out of range", {"master", "1000000", "-5", "2", "abc", "1.2.256", "4", "0"},
        "Master Custom 1 2   7755 20 (Absolute) (Off) JSON");
    row("other types",
        {QStringList{"master", "x"}, QVariant(), 0.5, QStringList{"1", "2"}, 7,
         QStringList{"1.2.3.4", "5"}, 1e300, "FALSE"},
        "Off (Custom) (1) (2) (3) () (7755) (20) (Absolute) (Off) (JSON)");
}

void tst_MainWindowCommunication::thePanelShowsWhatIsStored()
{
    QFETCH(QVariantList, values);
    store(values);
    openPanel();
    QTEST(shown(), "expected");
    keepPicture(QStringLiteral("communication-") + QString::fromLatin1(QTest::currentDataTag()));
}

void tst_MainWindowCommunication::savingStoresAllThatIsShown()
{
    store({"off", "7755", "20", "0", "localhost", "192.168.1.1", "0", "true"});
    openPanel();
    choose(kMode, QStringLiteral("Slave"));
    choose(kMode, QStringLiteral("Slave")); // stays chosen
    choose(QStringLiteral("URL decoding"), QStringLiteral("Movies"));
    choose(QStringLiteral("Camera orientation"), QStringLiteral("Off"));
    choose(kMode, QStringLiteral("Master"));
    choose(kFormat, QStringLiteral("Qt"));
    choose(QStringLiteral("IP Address"), QStringLiteral("Custom"));
    const char *typed[] = {"256", "", "007", "-1.e+9"};
    for (int i = 0; i < 4; ++i)
        fill(control(kPart.arg(i + 1), QAccessible::EditableText), QString::fromLatin1(typed[i]));
    fill(control(kRate, QAccessible::SpinBox), QStringLiteral("40"));
    fill(control(kPort, QAccessible::SpinBox), QStringLiteral("70000"));
    QCOMPARE(shown(), QStringLiteral("Master Custom 25  0 19 70000 40 (Movies) (Off) Qt"));
    clickOn(itemReading(QStringLiteral("Save")));
    QCOMPARE(readAndCloseMessage(),
             QStringLiteral("You must restart to apply modifications on UDP communication."));
    QTRY_COMPARE(state(), QStringLiteral("Video"));

    const QVariantList expected{"master", 70000, 40, 1, "custom", "25.0.0.19", 1, false};
    const QVariantList values = stored();
    QCOMPARE(values, expected);
    for (int i = 0; i < values.size(); ++i)
        QCOMPARE(values.at(i).userType(), expected.at(i).userType());
}

void tst_MainWindowCommunication::keysAndTheCloseButtonSaveNothing()
{
    const QVariantList before = stored();
    for (const Qt::Key pressed : {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Enter, Qt::Key_E}) {
        openPanel();
        choose(kMode, QStringLiteral("Slave"));
        fill(control(kPort, QAccessible::SpinBox), QStringLiteral("81"));
        key(pressed);
        QCOMPARE(picture()->effect(), int(OrbShaderCodeBuilder::NO_EFFECT));
        if (pressed == Qt::Key_E)
            clickOn(itemReading(QStringLiteral("Close")));
        QTRY_COMPARE(state(), QStringLiteral("Video"));
        QCOMPARE(stored(), before);
        QVERIFY(!messageBox());
    }
}

int main(int argc, char **argv)
{
    return tst_MainWindowCommunication().run(argc, argv);
}

#include "tst_MainWindowCommunication.moc"

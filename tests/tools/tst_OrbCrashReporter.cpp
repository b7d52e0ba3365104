#include "WarningsFail.h"

#include <QtTest>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace {

constexpr int kWaitMs = 20000;

template <typename Reply>
std::unique_ptr<Reply, decltype(&std::free)> owned(Reply *reply)
{
    return {reply, &std::free};
}

xcb_atom_t atom(xcb_connection_t *x, const QByteArray &name)
{
    const auto asked = xcb_intern_atom(x, 0, quint16(name.size()), name.constData());
    return owned(xcb_intern_atom_reply(x, asked, nullptr))->atom;
}

/// The window of that title, 0 for none.
xcb_window_t windowOf(xcb_connection_t *x, const QByteArray &title)
{
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
    const auto tree = owned(xcb_query_tree_reply(x, xcb_query_tree(x, root), nullptr));
    for (int i = 0; tree && i < xcb_query_tree_children_length(tree.get()); ++i) {
        const xcb_window_t window = xcb_query_tree_children(tree.get())[i];
        const auto asked = xcb_get_property(x, 0, window, atom(x, "_NET_WM_NAME"), 0, 0, 100);
        const auto name = owned(xcb_get_property_reply(x, asked, nullptr));
        const int bytes = name ? xcb_get_property_value_length(name.get()) : 0;
        if (bytes > 0
            && QByteArray(static_cast<char *>(xcb_get_property_value(name.get())), bytes) == title)
            return window;
    }
    return 0;
}

/// As a window manager does it.
void close(xcb_connection_t *x, xcb_window_t window)
{
    xcb_client_message_event_t event = {XCB_CLIENT_MESSAGE, 32, 0, window, 0, {}};
    event.type = atom(x, "WM_PROTOCOLS");
    event.data.data32[0] = atom(x, "WM_DELETE_WINDOW");
    xcb_send_event(x, 0, window, 0, reinterpret_cast<const char *>(&event));
    xcb_flush(x);
}

} // namespace

class tst_OrbCrashReporter : public WarningsFail
{
    Q_OBJECT

private slots:
    void initTestCase() { QCOMPARE(xcb_connection_has_error(m_x.get()), 0); }
    void itShowsTheCrashOrRefusesItsArguments_data()
    {
        QTest::addColumn<int>("count");
        for (int count : {9, 0, 8, 10})
            QTest::addRow("%d", count) << count;
    }
    void itShowsTheCrashOrRefusesItsArguments()
    {
        QFETCH(int, count);
        const bool isRight = count == 9;
        // Two of them look like options of Qt, and are texts as the others are.
        const auto arguments = QStringLiteral("Orbix Sight|1.4.0.400|-platform|en_GB||/tmp|"
                                              "01234567-89ab-cdef-01234567-89abcdef|-style|1|")
                                   .split(QLatin1Char('|'));
        QProcess program;
        program.start(QStringLiteral(CRASH_REPORTER), arguments.mid(0, count));
        const QByteArray title = isRight ? "Orbix Sight Crash Report" : "Crash Report";
        QTRY_VERIFY_WITH_TIMEOUT(windowOf(m_x.get(), title) != 0, kWaitMs);
        close(m_x.get(), windowOf(m_x.get(), title));
        QVERIFY(program.waitForFinished(kWaitMs));
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), isRight ? 0 : 2);
        const QByteArray said = program.readAllStandardError();
        QCOMPARE(said.contains("OrbCrashReporter: "), !isRight);
        QVERIFY(isRight || said.contains("9 arguments. " + QByteArray::number(count) + " came."));
    }

private:
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> m_x{xcb_connect(nullptr,
                                                                                       nullptr),
                                                                           &xcb_disconnect};
};

QTEST_GUILESS_MAIN(tst_OrbCrashReporter)
#include "tst_OrbCrashReporter.moc"

#include "Screen.h"

#include "FrameCode.h"

#include <xcb/xtest.h>

#include <cstdlib>
#include <cstring>

namespace {
constexpr int kStartMs = 10000;
}

Screen::Screen()
{
    m_server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_server.start(QStringLiteral("Xvfb"),
                   {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                    QStringLiteral("0"),
                    QStringLiteral("%1x%2x24").arg(kSize.width()).arg(kSize.height()),
                    QStringLiteral("-nolisten"), QStringLiteral("tcp")});
    while (!m_server.canReadLine() && m_server.waitForReadyRead(kStartMs)) {
    }
    qputenv("DISPLAY", ':' + m_server.readLine().trimmed());
    qputenv("QT_QPA_PLATFORM", "xcb");
    qunsetenv("WAYLAND_DISPLAY");
    m_connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(m_connection) == 0)
        m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
}

Screen::~Screen()
{
    xcb_disconnect(m_connection);
    m_server.terminate();
    m_server.waitForFinished();
}

QImage Screen::grab(const QRect &area) const
{
    const auto cookie = xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_screen->root,
                                      int16_t(area.x()), int16_t(area.y()), uint16_t(area.width()),
                                      uint16_t(area.height()), ~0U);
    const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)>
        reply(xcb_get_image_reply(m_connection, cookie, nullptr), &std::free);
    QImage image(area.size(), QImage::Format_RGB32);
    if (!reply || xcb_get_image_data_length(reply.get()) < image.sizeInBytes())
        return {};
    std::memcpy(image.bits(), xcb_get_image_data(reply.get()), size_t(image.sizeInBytes()));
    return image;
}

std::optional<int> Screen::frameNumber(const QSize &area)
{
    QRect middle({}, area);
    middle.moveCenter(QRect({}, kSize).center());
    const QImage image = grab(middle);
    if (image != m_lastGrab) {
        m_lastNumber = FrameCode::read(image);
        m_lastGrab = image;
    }
    return m_lastNumber;
}

uint32_t Screen::addWindow()
{
    const uint32_t window = xcb_generate_id(m_connection);
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, m_screen->root, 0, 0,
                      uint16_t(kSize.width()), uint16_t(kSize.height()), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, m_screen->root_visual, XCB_CW_BACK_PIXEL,
                      &m_screen->black_pixel);
    xcb_map_window(m_connection, window);
    xcb_flush(m_connection);
    return window;
}

void Screen::removeWindow(uint32_t window)
{
    xcb_destroy_window(m_connection, window);
    xcb_flush(m_connection);
}

void Screen::click(const QPoint &at)
{
    fakeInput(XCB_MOTION_NOTIFY, 0, at);
    fakeInput(XCB_BUTTON_PRESS, XCB_BUTTON_INDEX_1);
    fakeInput(XCB_BUTTON_RELEASE, XCB_BUTTON_INDEX_1);
}

void Screen::pressKey(uint8_t keycode)
{
    fakeInput(XCB_KEY_PRESS, keycode);
    fakeInput(XCB_KEY_RELEASE, keycode);
}

void Screen::fakeInput(uint8_t type, uint8_t detail, const QPoint &at)
{
    xcb_test_fake_input(m_connection, type, detail, XCB_CURRENT_TIME, m_screen->root,
                        int16_t(at.x()), int16_t(at.y()), 0);
    xcb_flush(m_connection);
}

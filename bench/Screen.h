#pragma once

#include <QImage>
#include <QProcess>
#include <QRect>

#include <xcb/xcb.h>

#include <memory>
#include <optional>

/// A virtual X server of 1000x600 pixels, on which one player at a time fills the screen, and what
/// a benchmark sees and does there. The server ends with the object.
class Screen
{
public:
    static constexpr QSize kSize{1000, 600};

    /// Starts the server and makes it the display of this process and its children. Has to come
    /// before the application object.
    Screen();
    ~Screen();

    bool isUsable() const { return m_screen != nullptr; }

    QImage grab(const QRect &area) const;

    /// The number of the frame that stands within `area` around the middle. At the view of these
    /// benchmarks the number is 161x106 pixels large.
    std::optional<int> frameNumber(const QSize &area = {190, 130});

    /// An empty window over the whole screen, for a player that draws into another's window.
    uint32_t addWindow();
    void removeWindow(uint32_t window);

    /// Moves the mouse there, and presses and releases its left button.
    void click(const QPoint &at);

    /// Presses and releases a key of the keyboard, such as 65 for the space.
    void pressKey(uint8_t keycode);

private:
    void fakeInput(uint8_t type, uint8_t detail, const QPoint &at = {});

    QProcess m_server;
    xcb_connection_t *m_connection = nullptr;
    xcb_screen_t *m_screen = nullptr;
    QImage m_lastGrab;
    std::optional<int> m_lastNumber;
};

#include "WindowManager.h"

#include <QX11Info>

#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

struct Free
{
    void operator()(void *reply) const { std::free(reply); }
};

template <typename T>
using Reply = std::unique_ptr<T, Free>;

} // namespace

bool hasWindowManager()
{
    if (!QX11Info::isPlatformX11())
        return true;
    // A window manager names a window of its own in this property of the root window (Extended
    // Window Manager Hints, "_NET_SUPPORTING_WM_CHECK").
    constexpr char kProperty[] = "_NET_SUPPORTING_WM_CHECK";
    xcb_connection_t *x = QX11Info::connection();
    const Reply<xcb_intern_atom_reply_t> atom(
        xcb_intern_atom_reply(x, xcb_intern_atom(x, true, std::strlen(kProperty), kProperty),
                              nullptr));
    if (!atom || atom->atom == XCB_ATOM_NONE)
        return false;
    const auto root = static_cast<xcb_window_t>(QX11Info::appRootWindow());
    const Reply<xcb_get_property_reply_t> property(
        xcb_get_property_reply(x,
                               xcb_get_property(x, false, root, atom->atom, XCB_ATOM_WINDOW, 0, 1),
                               nullptr));
    return property && xcb_get_property_value_length(property.get()) > 0;
}

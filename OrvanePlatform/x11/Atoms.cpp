#include "OrvanePlatform/x11/Atoms.h"

#include <array>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace orvane::x11 {

namespace {

struct NamedAtom {
    xcb_atom_t Atoms::*member;
    const char* name;
};

constexpr std::array namedAtoms{
    NamedAtom{&Atoms::utf8String, "UTF8_STRING"},
    NamedAtom{&Atoms::wmState, "WM_STATE"},
    NamedAtom{&Atoms::netActiveWindow, "_NET_ACTIVE_WINDOW"},
    NamedAtom{&Atoms::netClientList, "_NET_CLIENT_LIST"},
    NamedAtom{&Atoms::netClientListStacking, "_NET_CLIENT_LIST_STACKING"},
    NamedAtom{&Atoms::netCurrentDesktop, "_NET_CURRENT_DESKTOP"},
    NamedAtom{&Atoms::netFrameExtents, "_NET_FRAME_EXTENTS"},
    NamedAtom{&Atoms::netSupportingWmCheck, "_NET_SUPPORTING_WM_CHECK"},
    NamedAtom{&Atoms::netWmDesktop, "_NET_WM_DESKTOP"},
    NamedAtom{&Atoms::netWmName, "_NET_WM_NAME"},
    NamedAtom{&Atoms::netWmPid, "_NET_WM_PID"},
    NamedAtom{&Atoms::netWmState, "_NET_WM_STATE"},
    NamedAtom{&Atoms::netWmStateAbove, "_NET_WM_STATE_ABOVE"},
    NamedAtom{&Atoms::netWmStateHidden, "_NET_WM_STATE_HIDDEN"},
    NamedAtom{&Atoms::netWmStateSkipTaskbar, "_NET_WM_STATE_SKIP_TASKBAR"},
    NamedAtom{&Atoms::netWmWindowOpacity, "_NET_WM_WINDOW_OPACITY"},
    NamedAtom{&Atoms::netWmWindowType, "_NET_WM_WINDOW_TYPE"},
    NamedAtom{&Atoms::netWmWindowTypeDesktop, "_NET_WM_WINDOW_TYPE_DESKTOP"},
    NamedAtom{&Atoms::netWmWindowTypeDock, "_NET_WM_WINDOW_TYPE_DOCK"},
    NamedAtom{&Atoms::netWmWindowTypeSplash, "_NET_WM_WINDOW_TYPE_SPLASH"},
    NamedAtom{&Atoms::netWmWindowTypeToolbar, "_NET_WM_WINDOW_TYPE_TOOLBAR"},
    NamedAtom{&Atoms::netWmWindowTypeUtility, "_NET_WM_WINDOW_TYPE_UTILITY"},
    NamedAtom{&Atoms::gtkFrameExtents, "_GTK_FRAME_EXTENTS"},
    NamedAtom{&Atoms::rootPixmapId, "_XROOTPMAP_ID"},
    NamedAtom{&Atoms::esetrootPixmapId, "ESETROOT_PMAP_ID"},
};

} // namespace

Atoms Atoms::intern(xcb_connection_t* connection, int screenNumber) {
    const auto request = [connection](const std::string& name) {
        return xcb_intern_atom(connection, 0, static_cast<uint16_t>(name.size()), name.c_str());
    };
    const auto answer = [connection](xcb_intern_atom_cookie_t cookie) {
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
            xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
        return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    };

    std::vector<xcb_intern_atom_cookie_t> cookies;
    cookies.reserve(namedAtoms.size());
    for (const NamedAtom& atom : namedAtoms)
        cookies.push_back(request(atom.name));
    const auto selectionCookie = request("_NET_WM_CM_S" + std::to_string(screenNumber));

    Atoms atoms;
    for (size_t i = 0; i < namedAtoms.size(); ++i)
        atoms.*namedAtoms[i].member = answer(cookies[i]);
    atoms.compositorSelection = answer(selectionCookie);
    return atoms;
}

} // namespace orvane::x11

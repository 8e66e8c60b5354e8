#pragma once

#include "OrvanePlatform/x11/X11Connection.h"

#include <QString>

#include <optional>
#include <vector>

namespace orvane::x11 {

/// A property that was asked for and may not have arrived yet: asking for many before reading the first costs
/// one round trip for all. Each is read once. An absent property reads as empty.
class PendingProperty {
public:
    PendingProperty(const X11Connection& connection, xcb_get_property_cookie_t cookie)
        : m_connection(&connection)
        , m_cookie(cookie) {}

    /// 32-bit items (CARDINAL, ATOM, WINDOW, PIXMAP).
    std::vector<uint32_t> numbers() const;
    std::optional<uint32_t> number() const;
    /// UTF-8 where the property says so, else as `utf8OrLatin1` reads it.
    QString text() const;
    QString latin1() const;
    /// The raw bytes of an 8-bit property.
    QByteArray bytes() const;

private:
    const X11Connection* m_connection;
    xcb_get_property_cookie_t m_cookie;
};

/// A text of the type STRING, which is Latin-1 by ICCCM 2.0 and yet UTF-8 from many programs: UTF-8 where it
/// can be that, else Latin-1.
QString utf8OrLatin1(const QByteArray& bytes);

PendingProperty requestProperty(const X11Connection& connection, xcb_window_t window, xcb_atom_t property);

} // namespace orvane::x11

#include "OrvanePlatform/x11/Properties.h"

#include <QStringDecoder>

namespace orvane::x11 {

namespace {

// Units of four bytes: a mebibyte holds any window title and any list of windows.
constexpr uint32_t longestProperty = 1U << 18U;

QByteArray bytesOf(const xcb_get_property_reply_t* reply) {
    if (reply == nullptr || reply->format != 8)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply)), xcb_get_property_value_length(reply)};
}

} // namespace

QString utf8OrLatin1(const QByteArray& bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(bytes);
    return decoder.hasError() ? QString::fromLatin1(bytes) : text;
}

PendingProperty requestProperty(const X11Connection& connection, xcb_window_t window, xcb_atom_t property) {
    return {connection,
            xcb_get_property(connection.raw(), 0, window, property, XCB_ATOM_ANY, 0, longestProperty)};
}

std::vector<uint32_t> PendingProperty::numbers() const {
    const auto reply = m_connection->reply<xcb_get_property_reply>(m_cookie);
    if (!reply || reply->format != 32)
        return {};
    const auto* first = static_cast<const uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

std::optional<uint32_t> PendingProperty::number() const {
    const std::vector<uint32_t> all = numbers();
    return all.empty() ? std::nullopt : std::optional(all.front());
}

QString PendingProperty::text() const {
    const auto reply = m_connection->reply<xcb_get_property_reply>(m_cookie);
    const QByteArray bytes = bytesOf(reply.get());
    const bool utf8 = reply && reply->type == m_connection->atoms().utf8String;
    return utf8 ? QString::fromUtf8(bytes) : utf8OrLatin1(bytes);
}

QString PendingProperty::latin1() const {
    return QString::fromLatin1(bytes());
}

QByteArray PendingProperty::bytes() const {
    return bytesOf(m_connection->reply<xcb_get_property_reply>(m_cookie).get());
}

} // namespace orvane::x11

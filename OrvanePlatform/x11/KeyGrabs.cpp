#include "OrvanePlatform/x11/KeyGrabs.h"

#include "OrvanePlatform/x11/Xkb.h"

#include <utility>

#include <xcb/xcbext.h>

namespace orvane::x11 {

namespace {

constexpr std::uint8_t sentByClient = 0x80;
constexpr std::uint8_t errorResponse = 0;
constexpr std::uint16_t xkbEvents = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
constexpr std::uint16_t mapParts =
    XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;

/// The reply to a request when it has come: true, and null for a request that was refused.
template <typename Reply>
bool poll(const X11Connection& connection, unsigned request, Owned<Reply>& reply) {
    void* data = nullptr;
    xcb_generic_error_t* error = nullptr;
    if (xcb_poll_for_reply(connection.raw(), request, &data, &error) == 0)
        return false;
    const Owned<xcb_generic_error_t> ownedError(error);
    reply.reset(static_cast<Reply*>(data));
    return true;
}

} // namespace

KeyGrabs::KeyGrabs(std::shared_ptr<X11Connection> connection, Listener listener)
    : m_connection(std::move(connection))
    , m_listener(std::move(listener))
    , m_firstKeycode(m_connection->setup().min_keycode)
    , m_lastKeycode(m_connection->setup().max_keycode)
    , m_notifier(xcb_get_file_descriptor(m_connection->raw()), QSocketNotifier::Read) {
    for (auto screens = xcb_setup_roots_iterator(&m_connection->setup()); screens.rem > 0;
         xcb_screen_next(&screens))
        m_roots.push_back(screens.data->root);
    startXkb();
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] { pump(); });
    m_wake.setSingleShot(true);
    QObject::connect(&m_wake, &QTimer::timeout, &m_wake, [this] { pump(); });
    readMap();
}

void KeyGrabs::startXkb() {
    const xcb_query_extension_reply_t* const extension =
        xcb_get_extension_data(m_connection->raw(), &xcb_xkb_id);
    if (extension == nullptr || extension->present == 0)
        throw PlatformError(QStringLiteral("the X server lacks the XKB extension"));
    m_xkbEvent = extension->first_event;
    const auto use = xcb_xkb_use_extension(m_connection->raw(), XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION);
    xcb_xkb_select_events(m_connection->raw(), XCB_XKB_ID_USE_CORE_KBD, xkbEvents, 0,
                          XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY, mapParts, mapParts, nullptr);
    // Without it a key that is held down looks like one that is pressed again and again.
    constexpr std::uint32_t detectable = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
    const auto repeat = xcb_xkb_per_client_flags(m_connection->raw(), XCB_XKB_ID_USE_CORE_KBD, detectable,
                                                 detectable, 0, 0, 0);
    const auto usable = m_connection->reply<xcb_xkb_use_extension_reply>(use);
    const auto flags = m_connection->reply<xcb_xkb_per_client_flags_reply>(repeat);
    if (!usable || usable->supported == 0 || !flags || (flags->value & detectable) == 0)
        throw PlatformError(QStringLiteral("the X server's XKB extension is too old"));
}

void KeyGrabs::hold(std::set<KeyCombination> wanted) {
    m_wanted = std::move(wanted);
    if (!m_verdict)
        sendWanted();
    wake();
}

void KeyGrabs::release(const std::set<KeyCombination>& combinations) {
    for (const KeyCombination& combination : combinations) {
        if (m_held.erase(combination) != 0)
            sendUngrab(combination);
    }
    wake();
}

/// Sending may have read what the server said meanwhile; the notifier does not see that any more.
void KeyGrabs::wake() {
    xcb_flush(m_connection->raw());
    m_wake.start();
}

void KeyGrabs::pump() {
    if (m_lost)
        return;
    bool progress = true;
    while (progress) {
        xcb_flush(m_connection->raw());
        handleEvents();
        progress = takeMap();
        progress = takeVerdict() || progress;
    }
    if (m_connection->lost()) {
        m_lost = true;
        m_notifier.setEnabled(false);
        m_listener.lost();
    }
}

void KeyGrabs::handleEvents() {
    while (const auto event = Owned<xcb_generic_event_t>(xcb_poll_for_event(m_connection->raw())))
        handle(*event);
}

void KeyGrabs::handle(const xcb_generic_event_t& event) {
    switch (event.response_type) {
    case errorResponse:
        noteRefusal(reinterpret_cast<const xcb_generic_error_t&>(event));
        break;
    case XCB_KEY_PRESS: {
        const auto& press = reinterpret_cast<const xcb_key_press_event_t&>(event);
        m_listener.pressed({press.detail, press.state});
        break;
    }
    case XCB_KEY_RELEASE:
        m_listener.released(reinterpret_cast<const xcb_key_release_event_t&>(event).detail);
        break;
    default:
        if ((event.response_type & ~sentByClient) == m_xkbEvent)
            handleXkb(event);
    }
}

void KeyGrabs::handleXkb(const xcb_generic_event_t& event) {
    // All XKB events have the number by which they differ in the second byte.
    if (event.pad0 == XCB_XKB_NEW_KEYBOARD_NOTIFY) {
        const auto& change = reinterpret_cast<const xcb_xkb_new_keyboard_notify_event_t&>(event);
        m_firstKeycode = change.minKeyCode;
        m_lastKeycode = change.maxKeyCode;
    }
    readMap();
}

void KeyGrabs::noteRefusal(const xcb_generic_error_t& error) {
    const auto request = m_requests.find(error.full_sequence);
    if (request != m_requests.end())
        m_refused.insert(request->second);
}

void KeyGrabs::readMap() {
    m_mapIsStale = m_mapRequest.has_value();
    if (m_mapIsStale)
        return;
    const auto count = static_cast<std::uint8_t>(m_lastKeycode - m_firstKeycode + 1);
    m_mapRequest = MapRequest{
        .keysyms = xcb_get_keyboard_mapping(m_connection->raw(), m_firstKeycode, count).sequence,
        .modifiers = xcb_get_modifier_mapping(m_connection->raw()).sequence,
        .firstKeycode = m_firstKeycode,
    };
    wake();
}

bool KeyGrabs::takeMap() {
    if (!m_mapRequest)
        return false;
    if (!m_keysymsReply && !poll(*m_connection, m_mapRequest->keysyms, m_keysymsReply))
        return false;
    Owned<xcb_get_modifier_mapping_reply_t> modifiers;
    if (!poll(*m_connection, m_mapRequest->modifiers, modifiers))
        return false;
    const auto keysyms = std::move(m_keysymsReply);
    const xcb_keycode_t firstKeycode = m_mapRequest->firstKeycode;
    m_mapRequest.reset();
    if (m_mapIsStale) {
        readMap();
    } else if (keysyms && modifiers) {
        const xcb_keysym_t* const symbols = xcb_get_keyboard_mapping_keysyms(keysyms.get());
        const xcb_keycode_t* const codes = xcb_get_modifier_mapping_keycodes(modifiers.get());
        m_listener.mapRead(
            KeyboardMap(firstKeycode, keysyms->keysyms_per_keycode,
                        {symbols, symbols + xcb_get_keyboard_mapping_keysyms_length(keysyms.get())},
                        {codes, codes + xcb_get_modifier_mapping_keycodes_length(modifiers.get())}));
    }
    return true;
}

bool KeyGrabs::takeVerdict() {
    Owned<xcb_get_input_focus_reply_t> answer;
    if (!m_verdict || !poll(*m_connection, *m_verdict, answer) || !answer)
        return false;
    // The refusals came before this answer, perhaps both since the events were looked at last.
    handleEvents();
    m_verdict.reset();
    m_requests.clear();
    const auto asked = std::exchange(m_asked, {});
    const auto refused = std::exchange(m_refused, {});
    for (const KeyCombination& combination : refused) {
        // Another screen may have granted it.
        sendUngrab(combination);
        m_held.erase(combination);
    }
    m_listener.settled(asked, refused);
    if (m_wanted && !m_verdict)
        sendWanted();
    return true;
}

void KeyGrabs::sendWanted() {
    m_asked = std::exchange(m_wanted, std::nullopt).value_or(std::set<KeyCombination>());
    for (auto held = m_held.begin(); held != m_held.end();) {
        if (m_asked.contains(*held)) {
            ++held;
        } else {
            sendUngrab(*held);
            held = m_held.erase(held);
        }
    }
    for (const KeyCombination& combination : m_asked) {
        if (!m_held.insert(combination).second)
            continue;
        for (const xcb_window_t root : m_roots) {
            const auto request = xcb_grab_key(m_connection->raw(), 0, root, combination.modifiers,
                                              combination.keycode, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
            m_requests.emplace(request.sequence, combination);
        }
    }
    m_verdict = xcb_get_input_focus(m_connection->raw()).sequence;
}

void KeyGrabs::sendUngrab(const KeyCombination& combination) {
    for (const xcb_window_t root : m_roots)
        xcb_ungrab_key(m_connection->raw(), combination.keycode, root, combination.modifiers);
}

} // namespace orvane::x11

// A window for the tests: shows the known picture (or one colour), is of any kind a test needs, and obeys
// commands on its standard input, one a line, each answered by "done" once the X server has dealt with it:
//   color #rrggbb | picture | fill X Y W H #rrggbb | move X Y | resize W H | iconify | title TEXT | quit
// A fill appears at once as a whole and stays until the next "color" or "picture".
// It prints "ready WINDOW-ID" when it has been mapped and drawn. With --noise it shows noise from then on,
// another one a hundred times a second.
#include "tests/support/Eventually.h"
#include "tests/support/KnownPicture.h"

#include <QByteArray>
#include <QColor>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QPainter>
#include <QSocketNotifier>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <unistd.h>

#include <xcb/xcb.h>

namespace {

using orvane::test::knownPicture;

struct Options {
    QRect geometry{100, 100, 300, 200};
    QString title;
    QString windowClass;
    QString type;
    int depth = 24;
    int shadow = 0;
    bool overrideRedirect = false;
    bool undecorated = false;
    bool aboveWithoutTaskbar = false;
    bool tellsNoPid = false;
    bool noise = false;
    std::optional<QColor> color;
};

class Window {
public:
    explicit Window(const Options& options)
        : m_options(options)
        , m_connection(xcb_connect(nullptr, nullptr)) {
        if (xcb_connection_has_error(m_connection) != 0) {
            std::fputs("test-window: no display\n", stderr);
            std::exit(1);
        }
        m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        create();
        setProperties();
        xcb_map_window(m_connection, m_window);
        xcb_flush(m_connection);
    }

    int descriptor() const { return xcb_get_file_descriptor(m_connection); }

    void handleEvents() {
        while (auto event = take(xcb_poll_for_event(m_connection))) {
            const int type = event->response_type & 0x7f;
            if (type == XCB_CONFIGURE_NOTIFY) {
                const auto& configure = *reinterpret_cast<xcb_configure_notify_event_t*>(event.get());
                m_options.geometry.setSize(QSize(configure.width, configure.height));
            } else if (type == XCB_EXPOSE) {
                draw();
                reportReady();
            }
        }
        if (xcb_connection_has_error(m_connection) != 0)
            std::exit(0);
    }

    void obey(const QString& line) {
        const QString command = line.section(u' ', 0, 0);
        const QStringList words = line.split(u' ');
        if (command == u"color") {
            m_options.color = QColor(words.value(1));
            m_fills.clear();
            draw();
        } else if (command == u"picture") {
            m_options.color.reset();
            m_fills.clear();
            draw();
        } else if (command == u"fill") {
            fill({{words.value(1).toInt(), words.value(2).toInt(), words.value(3).toInt(),
                   words.value(4).toInt()},
                  QColor(words.value(5))});
        } else if (command == u"move") {
            configure(XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, words);
        } else if (command == u"resize") {
            configure(XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, words);
        } else if (command == u"iconify") {
            iconify();
        } else if (command == u"title") {
            setText("_NET_WM_NAME", "UTF8_STRING", line.section(u' ', 1));
        } else if (command == u"quit") {
            std::exit(0);
        }
        sync();
        std::puts("done");
        std::fflush(stdout);
    }

    /// The next of a few pictures of noise, as a whole at once. The window keeps the size that it began with.
    void showNoise() {
        constexpr std::size_t pictures = 5;
        const QSize size = m_options.geometry.size();
        while (m_noise.size() < pictures)
            m_noise.push_back(makeNoise(size));
        std::rotate(m_noise.begin(), m_noise.begin() + 1, m_noise.end());
        xcb_copy_area(m_connection, m_noise.front(), m_window, m_graphics, 0, 0, 0, 0,
                      static_cast<uint16_t>(size.width()), static_cast<uint16_t>(size.height()));
        // So that no more of them are on their way than the server can show.
        sync();
    }

private:
    struct Fill {
        QRect rect;
        QColor color;
    };

    template <typename T>
    static std::unique_ptr<T, decltype(&std::free)> take(T* pointer) {
        return {pointer, &std::free};
    }

    xcb_atom_t atom(const char* name) const {
        const auto cookie = xcb_intern_atom(m_connection, 0, static_cast<uint16_t>(qstrlen(name)), name);
        return take(xcb_intern_atom_reply(m_connection, cookie, nullptr))->atom;
    }

    xcb_visualid_t visualOfDepth(int wanted) const {
        for (auto depth = xcb_screen_allowed_depths_iterator(m_screen); depth.rem > 0;
             xcb_depth_next(&depth)) {
            if (depth.data->depth == wanted && xcb_depth_visuals_length(depth.data) > 0)
                return xcb_depth_visuals(depth.data)->visual_id;
        }
        std::fputs("test-window: the display lacks that depth\n", stderr);
        std::exit(1);
    }

    void create() {
        const xcb_visualid_t visual = visualOfDepth(m_options.depth);
        const xcb_colormap_t colormap = xcb_generate_id(m_connection);
        xcb_create_colormap(m_connection, XCB_COLORMAP_ALLOC_NONE, colormap, m_screen->root, visual);
        m_window = xcb_generate_id(m_connection);
        const uint32_t values[] = {0, 0, m_options.overrideRedirect ? 1U : 0U,
                                   XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY, colormap};
        const QRect& at = m_options.geometry;
        xcb_create_window(m_connection, static_cast<uint8_t>(m_options.depth), m_window, m_screen->root,
                          static_cast<int16_t>(at.x()), static_cast<int16_t>(at.y()),
                          static_cast<uint16_t>(at.width()), static_cast<uint16_t>(at.height()), 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                          XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT |
                              XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                          values);
        m_graphics = xcb_generate_id(m_connection);
        xcb_create_gc(m_connection, m_graphics, m_window, 0, nullptr);
    }

    void setProperty(const char* name, xcb_atom_t type, const std::vector<uint32_t>& values) const {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, atom(name), type, 32,
                            static_cast<uint32_t>(values.size()), values.data());
    }

    void setText(const char* name, const char* type, const QString& text) const {
        const QByteArray bytes = text.toUtf8();
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, atom(name), atom(type), 8,
                            static_cast<uint32_t>(bytes.size()), bytes.constData());
    }

    void setProperties() const {
        setText("_NET_WM_NAME", "UTF8_STRING", m_options.title);
        const QByteArray name = m_options.windowClass.toUtf8();
        const QByteArray windowClass = name.toLower() + '\0' + name + '\0';
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING,
                            8, static_cast<uint32_t>(windowClass.size()), windowClass.constData());
        if (!m_options.tellsNoPid)
            setProperty("_NET_WM_PID", XCB_ATOM_CARDINAL, {static_cast<uint32_t>(::getpid())});
        if (!m_options.type.isEmpty()) {
            const QByteArray type = "_NET_WM_WINDOW_TYPE_" + m_options.type.toUpper().toLatin1();
            setProperty("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, {atom(type.constData())});
        }
        if (m_options.aboveWithoutTaskbar) {
            setProperty("_NET_WM_STATE", XCB_ATOM_ATOM,
                        {atom("_NET_WM_STATE_ABOVE"), atom("_NET_WM_STATE_SKIP_TASKBAR")});
        }
        if (m_options.shadow > 0) {
            const auto width = static_cast<uint32_t>(m_options.shadow);
            setProperty("_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, {width, width, width, width});
        }
        if (m_options.undecorated)
            setProperty("_MOTIF_WM_HINTS", atom("_MOTIF_WM_HINTS"), {2, 0, 0, 0, 0});
        // WM_NORMAL_HINTS with the flags USPosition and PPosition (ICCCM 2.0): the window stays where a test
        // put it.
        setProperty("WM_NORMAL_HINTS", XCB_ATOM_WM_SIZE_HINTS,
                    {1U | 4U, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    }

    void draw() const {
        const QSize size = m_options.geometry.size();
        const bool transparent = m_options.depth == 32;
        QImage picture =
            knownPicture(size.width(), size.height(), transparent)
                .convertToFormat(transparent ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
        if (m_options.color)
            picture.fill(*m_options.color);
        QPainter painter(&picture);
        for (const Fill& fill : m_fills)
            painter.fillRect(fill.rect, fill.color);
        painter.end();
        put(picture, m_window);
        xcb_flush(m_connection);
    }

    void put(const QImage& picture, xcb_drawable_t drawable) const {
        // A request may hold 256 KiB at least, and a strip of 16 rows is below that up to 4096 pixels' width.
        constexpr int stripRows = 16;
        for (int top = 0; top < picture.height(); top += stripRows) {
            const int rows = std::min(stripRows, picture.height() - top);
            xcb_put_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, m_graphics,
                          static_cast<uint16_t>(picture.width()), static_cast<uint16_t>(rows), 0,
                          static_cast<int16_t>(top), 0, static_cast<uint8_t>(m_options.depth),
                          static_cast<uint32_t>(picture.bytesPerLine() * rows), picture.constScanLine(top));
        }
    }

    xcb_pixmap_t makeNoise(const QSize& size) {
        QImage picture(size, QImage::Format_RGB32);
        for (int y = 0; y < size.height(); ++y) {
            auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
            std::generate_n(line, size.width(), [this] { return m_random() | 0xff000000U; });
        }
        const xcb_pixmap_t pixmap = xcb_generate_id(m_connection);
        xcb_create_pixmap(m_connection, static_cast<uint8_t>(m_options.depth), pixmap, m_window,
                          static_cast<uint16_t>(size.width()), static_cast<uint16_t>(size.height()));
        put(picture, pixmap);
        return pixmap;
    }

    /// One request, so that nobody sees a part of it.
    void fill(const Fill& fill) {
        m_fills.push_back(fill);
        const uint32_t alpha = m_options.depth == 32 ? 0xff000000U : 0U;
        const uint32_t pixel = (fill.color.rgb() & 0x00ffffffU) | alpha;
        xcb_change_gc(m_connection, m_graphics, XCB_GC_FOREGROUND, &pixel);
        const xcb_rectangle_t rectangle{
            static_cast<int16_t>(fill.rect.x()), static_cast<int16_t>(fill.rect.y()),
            static_cast<uint16_t>(fill.rect.width()), static_cast<uint16_t>(fill.rect.height())};
        xcb_poly_fill_rectangle(m_connection, m_window, m_graphics, 1, &rectangle);
    }

    void reportReady() {
        if (m_ready)
            return;
        m_ready = true;
        awaitManager();
        if (m_options.noise) {
            showNoise();
            QObject::connect(&m_noiseTimer, &QTimer::timeout, &m_noiseTimer, [this] { showNoise(); });
            m_noiseTimer.start(std::chrono::milliseconds(10));
        }
        std::printf("ready %u\n", m_window);
        std::fflush(stdout);
    }

    std::vector<uint32_t> rootProperty(const char* name) const {
        const auto reply = take(xcb_get_property_reply(
            m_connection,
            xcb_get_property(m_connection, 0, m_screen->root, atom(name), XCB_ATOM_ANY, 0, 4096), nullptr));
        const auto* values = static_cast<const uint32_t*>(xcb_get_property_value(reply.get()));
        return {values, values + reply->value_len};
    }

    /// A window manager maps a window a moment before it lists it.
    void awaitManager() const {
        if (m_options.overrideRedirect || rootProperty("_NET_SUPPORTING_WM_CHECK").empty())
            return;
        orvane::test::eventually([this] {
            const std::vector<uint32_t> listed = rootProperty("_NET_CLIENT_LIST");
            return std::find(listed.begin(), listed.end(), m_window) != listed.end();
        });
    }

    void configure(uint16_t mask, const QStringList& words) const {
        const uint32_t values[] = {static_cast<uint32_t>(words.value(1).toInt()),
                                   static_cast<uint32_t>(words.value(2).toInt())};
        xcb_configure_window(m_connection, m_window, mask, values);
    }

    void iconify() const {
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = m_window;
        event.type = atom("WM_CHANGE_STATE");
        event.data.data32[0] = 3;
        xcb_send_event(m_connection, 0, m_screen->root,
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&event));
    }

    void sync() const {
        take(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    }

    Options m_options;
    std::vector<Fill> m_fills;
    xcb_connection_t* m_connection;
    xcb_screen_t* m_screen = nullptr;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    xcb_gcontext_t m_graphics = XCB_NONE;
    bool m_ready = false;
    std::vector<xcb_pixmap_t> m_noise;
    /// The same noise at every start.
    std::mt19937 m_random;
    QTimer m_noiseTimer;
};

Options parse(const QCoreApplication& application) {
    QCommandLineParser parser;
    const auto value = [&parser](const char* name, const char* otherwise) {
        parser.addOption({QLatin1String(name), {}, QStringLiteral("value"), QLatin1String(otherwise)});
    };
    value("geometry", "300x200+100+100");
    value("title", "Test window");
    value("class", "TestWindow");
    value("type", "");
    value("depth", "24");
    value("shadow", "0");
    value("color", "");
    for (const char* flag : {"override-redirect", "undecorated", "above-without-taskbar", "no-pid", "noise"})
        parser.addOption({QLatin1String(flag), {}});
    parser.process(application);

    Options options;
    int width = 0;
    int height = 0;
    int x = 0;
    int y = 0;
    const QByteArray geometry = parser.value(QStringLiteral("geometry")).toLatin1();
    if (std::sscanf(geometry.constData(), "%dx%d%d%d", &width, &height, &x, &y) != 4) {
        std::fputs("test-window: the geometry is WxH+X+Y\n", stderr);
        std::exit(1);
    }
    options.geometry = QRect(x, y, width, height);
    options.title = parser.value(QStringLiteral("title"));
    options.windowClass = parser.value(QStringLiteral("class"));
    options.type = parser.value(QStringLiteral("type"));
    options.depth = parser.value(QStringLiteral("depth")).toInt();
    options.shadow = parser.value(QStringLiteral("shadow")).toInt();
    if (!parser.value(QStringLiteral("color")).isEmpty())
        options.color = QColor(parser.value(QStringLiteral("color")));
    options.overrideRedirect = parser.isSet(QStringLiteral("override-redirect"));
    options.undecorated = parser.isSet(QStringLiteral("undecorated"));
    options.aboveWithoutTaskbar = parser.isSet(QStringLiteral("above-without-taskbar"));
    options.tellsNoPid = parser.isSet(QStringLiteral("no-pid"));
    options.noise = parser.isSet(QStringLiteral("noise"));
    return options;
}

} // namespace

int main(int argc, char* argv[]) {
    QCoreApplication application(argc, argv);
    Window window(parse(application));
    QSocketNotifier events(window.descriptor(), QSocketNotifier::Read);
    QObject::connect(&events, &QSocketNotifier::activated, [&window] { window.handleEvents(); });
    QSocketNotifier commands(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&commands, &QSocketNotifier::activated, [&window] {
        std::string line;
        if (!std::getline(std::cin, line))
            std::exit(0);
        window.obey(QString::fromStdString(line));
        // Whatever xcb read while it waited for a reply is in its queue and makes no descriptor readable.
        window.handleEvents();
    });
    window.handleEvents();
    return QCoreApplication::exec();
}

#include "OrvanePlatform/x11/PixelReader.h"

#include <QSysInfo>

#include <algorithm>
#include <atomic>
#include <deque>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <xcb/shm.h>

namespace orvane::x11 {

namespace {

constexpr uint32_t allPlanes = 0xffffffffU;

/// The masks of a visual. A pixmap of depth 32 may come without a visual: then the usual order holds.
std::optional<xcb_visualtype_t> findVisual(const xcb_screen_t& screen, xcb_visualid_t id) {
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0; xcb_depth_next(&depth)) {
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0;
             xcb_visualtype_next(&visual)) {
            if (visual.data->visual_id == id)
                return *visual.data;
        }
    }
    return std::nullopt;
}

std::optional<xcb_format_t> findFormat(const xcb_setup_t& setup, int depth) {
    for (auto format = xcb_setup_pixmap_formats_iterator(&setup); format.rem > 0; xcb_format_next(&format)) {
        if (format.data->depth == depth)
            return *format.data;
    }
    return std::nullopt;
}

struct PixelFormat {
    QImage::Format format;
    bool swapped;
};

std::optional<PixelFormat> pixelFormat(int depth, uint32_t redMask, Alpha alpha) {
    constexpr uint32_t redHigh = 0xff0000;
    constexpr uint32_t redLow = 0x0000ff;
    if (depth == 32 && alpha == Alpha::counts && (redMask == redHigh || redMask == redLow))
        return PixelFormat{QImage::Format_ARGB32_Premultiplied, redMask == redLow};
    if ((depth == 24 || depth == 32) && (redMask == redHigh || redMask == redLow))
        return PixelFormat{QImage::Format_RGB32, redMask == redLow};
    if (depth == 30 && redMask == 0x3ff00000U)
        return PixelFormat{QImage::Format_RGB30, false};
    if (depth == 16 && redMask == 0xf800)
        return PixelFormat{QImage::Format_RGB16, false};
    if (depth == 15 && redMask == 0x7c00)
        return PixelFormat{QImage::Format_RGB555, false};
    return std::nullopt;
}

/// Depth 24 leaves the fourth byte to chance, and Format_RGB32 wants it to be 0xff.
void setUnusedBytes(QImage& image) {
    constexpr QRgb unusedByte = 0xff000000U;
    // Asked for once: a call for each pixel keeps the loop from being vectorised.
    const int width = image.width();
    for (int y = 0; y < image.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x)
            row[x] |= unusedByte;
    }
}

} // namespace

/// How the server lays out the pixels of one picture.
struct PixelReader::Layout {
    PixelFormat pixels;
    qsizetype stride;
    qsizetype bytes;
};

/// A piece of memory that the X server can write to.
class PixelReader::Segment {
public:
    static std::unique_ptr<Segment> make(const std::shared_ptr<X11Connection>& connection, qsizetype bytes) {
        const auto length = static_cast<size_t>(bytes);
        const int descriptor = ::memfd_create("orvane-pixels", MFD_CLOEXEC);
        if (descriptor < 0)
            return nullptr;
        void* memory = MAP_FAILED;
        // Space that the machine does not have is refused here, and not by a signal at the first write to it.
        if (::posix_fallocate(descriptor, 0, static_cast<off_t>(bytes)) == 0)
            memory = ::mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
        if (memory == MAP_FAILED) {
            ::close(descriptor);
            return nullptr;
        }
        std::unique_ptr<Segment> segment(new Segment(connection, static_cast<uchar*>(memory), bytes));
        return connection->attachSharedMemory(segment->m_id, descriptor) ? std::move(segment) : nullptr;
    }

    ~Segment() {
        xcb_shm_detach(m_connection->raw(), m_id);
        xcb_flush(m_connection->raw());
        ::munmap(m_memory, static_cast<size_t>(m_bytes));
    }
    Segment(const Segment&) = delete;
    Segment& operator=(const Segment&) = delete;

    xcb_shm_seg_t id() const { return m_id; }
    qsizetype bytes() const { return m_bytes; }
    uchar* memory() const { return m_memory; }

private:
    Segment(std::shared_ptr<X11Connection> connection, uchar* memory, qsizetype bytes)
        : m_connection(std::move(connection))
        , m_id(xcb_generate_id(m_connection->raw()))
        , m_memory(memory)
        , m_bytes(bytes) {}

    std::shared_ptr<X11Connection> m_connection;
    xcb_shm_seg_t m_id;
    uchar* m_memory;
    qsizetype m_bytes;
};

/// Keeps the segments of pictures that were given up, so that a series of captures maps memory once: several
/// for as long as a picture is held, as in a recording, and one at rest.
class PixelReader::Pool : public std::enable_shared_from_this<Pool> {
public:
    std::unique_ptr<Segment> take(const std::shared_ptr<X11Connection>& connection, qsizetype bytes) {
        {
            const std::scoped_lock lock(m_mutex);
            const auto fits = std::find_if(m_idle.begin(), m_idle.end(), [bytes](const auto& segment) {
                return segment->bytes() >= bytes;
            });
            if (fits != m_idle.end()) {
                std::unique_ptr<Segment> segment = std::move(*fits);
                m_idle.erase(fits);
                return segment;
            }
        }
        return Segment::make(connection, bytes);
    }

    /// Wraps the segment in an image that gives it back at its end.
    QImage lend(std::unique_ptr<Segment> segment, const QSize& size, const Layout& layout) {
        ++m_lent;
        auto* lease = new Lease{shared_from_this(), std::move(segment)};
        return {lease->segment->memory(), size.width(),    size.height(), layout.stride,
                layout.pixels.format,     &Pool::giveBack, lease};
    }

    void giveBack(std::unique_ptr<Segment> segment) {
        const std::scoped_lock lock(m_mutex);
        // The last one used is the one whose memory and size are most likely to be right for the next.
        m_idle.push_front(std::move(segment));
        m_idle.resize(std::min(m_idle.size(), m_lent > 0 ? mostIdle : 1));
    }

private:
    struct Lease {
        std::shared_ptr<Pool> pool;
        std::unique_ptr<Segment> segment;
    };

    static void giveBack(void* pointer) {
        const std::unique_ptr<Lease> lease(static_cast<Lease*>(pointer));
        --lease->pool->m_lent;
        lease->pool->giveBack(std::move(lease->segment));
    }

    static constexpr std::size_t mostIdle = 4;

    std::mutex m_mutex;
    /// Those used last come first.
    std::deque<std::unique_ptr<Segment>> m_idle;
    std::atomic<int> m_lent = 0;
};

PixelReader::PixelReader(std::shared_ptr<X11Connection> connection)
    : m_connection(std::move(connection))
    , m_pool(std::make_shared<Pool>())
    , m_sharedMemory(m_connection->extensions().sharedMemory) {}

PixelReader::~PixelReader() = default;

std::optional<QImage> PixelReader::read(xcb_drawable_t drawable, const QRect& area, int depth,
                                        xcb_visualid_t visual, Alpha alpha) {
    const auto format = findFormat(m_connection->setup(), depth);
    const auto visualType = findVisual(m_connection->screen(), visual);
    const auto pixels = pixelFormat(depth, visualType ? visualType->red_mask : 0xff0000U, alpha);
    const bool sameByteOrder = (m_connection->setup().image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST) ==
                               (QSysInfo::ByteOrder == QSysInfo::LittleEndian);
    if (!format || !pixels || !sameByteOrder) {
        throw PlatformError(
            QStringLiteral("The display has a pixel format (depth %1) that cannot be captured.").arg(depth));
    }
    const int pad = format->scanline_pad;
    const qsizetype strideBits = (qsizetype(area.width()) * format->bits_per_pixel + pad - 1) / pad * pad;
    const Layout layout{*pixels, strideBits / 8, strideBits / 8 * area.height()};

    std::optional<QImage> image =
        m_sharedMemory ? readShared(drawable, area, layout) : readCopied(drawable, area, layout);
    if (!image)
        return std::nullopt;
    if (layout.pixels.swapped)
        *image = std::move(*image).rgbSwapped();
    if (image->format() != QImage::Format_RGB32 && image->format() != QImage::Format_ARGB32_Premultiplied)
        *image = std::move(*image).convertToFormat(QImage::Format_RGB32);
    if (image->format() == QImage::Format_RGB32)
        setUnusedBytes(*image);
    return image;
}

std::optional<QImage> PixelReader::readShared(xcb_drawable_t drawable, const QRect& area,
                                              const Layout& layout) {
    std::unique_ptr<Segment> segment = m_pool->take(m_connection, layout.bytes);
    if (!segment)
        return readCopied(drawable, area, layout);
    const auto reply = m_connection->reply<xcb_shm_get_image_reply>(xcb_shm_get_image(
        m_connection->raw(), drawable, static_cast<int16_t>(area.x()), static_cast<int16_t>(area.y()),
        static_cast<uint16_t>(area.width()), static_cast<uint16_t>(area.height()), allPlanes,
        XCB_IMAGE_FORMAT_Z_PIXMAP, segment->id(), 0));
    if (!reply) {
        m_pool->giveBack(std::move(segment));
        return std::nullopt;
    }
    return m_pool->lend(std::move(segment), area.size(), layout);
}

std::optional<QImage> PixelReader::readCopied(xcb_drawable_t drawable, const QRect& area,
                                              const Layout& layout) {
    auto reply = m_connection->reply<xcb_get_image_reply>(
        xcb_get_image(m_connection->raw(), XCB_IMAGE_FORMAT_Z_PIXMAP, drawable,
                      static_cast<int16_t>(area.x()), static_cast<int16_t>(area.y()),
                      static_cast<uint16_t>(area.width()), static_cast<uint16_t>(area.height()), allPlanes));
    if (!reply || qsizetype(xcb_get_image_data_length(reply.get())) < layout.bytes)
        return std::nullopt;
    uchar* data = xcb_get_image_data(reply.get());
    return QImage(
        data, area.width(), area.height(), layout.stride, layout.pixels.format,
        [](void* memory) { std::free(memory); }, reply.release());
}

} // namespace orvane::x11

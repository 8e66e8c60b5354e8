#pragma once

#include "OrvanePlatform/x11/X11Connection.h"

#include <QImage>
#include <QRect>

#include <memory>
#include <mutex>
#include <optional>

namespace orvane::x11 {

/// Whether the fourth byte of a 32-bit window is transparency: only where a compositor runs.
enum class Alpha { counts, ignored };

/// Reads pixels of drawables into images, through shared memory where the server offers it.
/// A picture lies in the memory the server wrote it to, with no copy; the memory of pictures that are no
/// longer used is kept for the next ones. Any thread.
class PixelReader {
public:
    explicit PixelReader(std::shared_ptr<X11Connection> connection);
    ~PixelReader();
    PixelReader(const PixelReader&) = delete;
    PixelReader& operator=(const PixelReader&) = delete;

    /// The pixels of `area`, in the drawable's own coordinates, all of it inside the drawable and, for a
    /// window, on the screen. RGB32, or ARGB32_Premultiplied at depth 32 where alpha counts. Nothing when the
    /// server refuses (the drawable is gone). Throws PlatformError when the connection is lost or the pixel
    /// format is one this program does not know.
    std::optional<QImage> read(xcb_drawable_t drawable, const QRect& area, int depth, xcb_visualid_t visual,
                               Alpha alpha);

    /// For machines (and tests) where shared memory must not be used.
    void useSharedMemory(bool use) { m_sharedMemory = use; }

private:
    struct Layout;
    class Segment;
    class Pool;

    std::optional<QImage> readShared(xcb_drawable_t drawable, const QRect& area, const Layout& layout);
    std::optional<QImage> readCopied(xcb_drawable_t drawable, const QRect& area, const Layout& layout);

    std::shared_ptr<X11Connection> m_connection;
    std::shared_ptr<Pool> m_pool;
    bool m_sharedMemory;
};

} // namespace orvane::x11

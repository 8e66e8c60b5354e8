#pragma once

#include "OrvaneCore/platform/ScreenSource.h"
#include "OrvanePlatform/x11/PixelReader.h"
#include "OrvanePlatform/x11/Redirection.h"
#include "OrvanePlatform/x11/X11Session.h"

#include <memory>
#include <mutex>

namespace orvane::x11 {

/// Pixels through named window pixmaps (Composite) and MIT-SHM.
class X11ScreenSource final : public ScreenSource {
public:
    explicit X11ScreenSource(X11Session& session)
        : m_session(session) {}

    ShareableContent listContent(const std::vector<qint64>& windowIds, std::stop_token stop) override;
    QImage captureWindow(const ShareableWindow& window, bool showsCursor) override;
    QImage captureRegion(const Display& display, const QRectF& rectPoints, bool showsCursor) override;
    QImage captureDisplay(const Display& display, bool showsCursor) override;
    QImage captureWithoutOwnWindows(const Display& display) override;

private:
    /// What belongs to one connection and ends with it.
    struct Tools {
        explicit Tools(std::shared_ptr<X11Connection> newConnection)
            : connection(std::move(newConnection))
            , reader(connection)
            , redirection(connection) {}

        std::shared_ptr<X11Connection> connection;
        PixelReader reader;
        Redirection redirection;
    };

    std::shared_ptr<Tools> tools();
    QImage captureArea(const QRect& area, bool showsCursor);

    X11Session& m_session;
    std::mutex m_mutex;
    std::shared_ptr<Tools> m_tools;
};

} // namespace orvane::x11

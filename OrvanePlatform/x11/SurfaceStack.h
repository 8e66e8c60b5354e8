#pragma once

#include <QObject>

#include <vector>

class QWidget;

namespace orvane::x11 {

/// Keeps windows of this process that no window manager stacks in the order of their levels, and within a
/// level in the order in which they were shown or raised. Main thread.
class SurfaceStack final : public QObject {
public:
    /// The window is native already, and is not shown yet. A higher level is above a lower one.
    void add(QWidget& window, int level);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Entry {
        QWidget* window;
        int level;
    };

    std::vector<Entry>::iterator endOfLevel(int level);
    /// Above those of its level and below those of higher ones.
    void raise(const QObject* window);

    /// From the lowest window up.
    std::vector<Entry> m_entries;
};

} // namespace orvane::x11

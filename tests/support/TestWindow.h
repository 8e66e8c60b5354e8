#pragma once

#include <QColor>
#include <QProcess>
#include <QRect>
#include <QStringList>

#include <memory>

namespace orvane::test {

/// A running test window (see test-window.cpp), closed with this object.
class TestWindow {
public:
    /// Returns when the window has been mapped and drawn; throws when that does not happen.
    explicit TestWindow(const QStringList& options = {});
    ~TestWindow();
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    /// The X id of the client window.
    qint64 id() const { return m_id; }
    qint64 pid() const { return m_process.processId(); }

    /// Sends a command and waits until the X server has dealt with it.
    void command(const QString& line);

    /// Shows a part of the client area in that colour: at once as a whole, and over what it showed before.
    void fill(const QRect& rect, const QColor& color);

private:
    QByteArray readLine();

    QProcess m_process;
    qint64 m_id = 0;
};

/// A window of one colour; the name of the colour as QColor knows it.
std::unique_ptr<TestWindow> colorWindow(const QString& geometry, const QString& color,
                                        const QStringList& options = {});

} // namespace orvane::test

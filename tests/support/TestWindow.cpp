#include "tests/support/TestWindow.h"

#include <stdexcept>

namespace orvane::test {

namespace {

constexpr int deadlineMs = 15000;

} // namespace

TestWindow::TestWindow(const QStringList& options) {
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QStringLiteral(ORVANE_TEST_WINDOW), options);
    const QByteArray line = readLine();
    if (!line.startsWith("ready "))
        throw std::runtime_error("the test window did not come up");
    m_id = line.mid(6).trimmed().toLongLong();
}

TestWindow::~TestWindow() {
    m_process.closeWriteChannel();
    if (!m_process.waitForFinished(deadlineMs)) {
        m_process.kill();
        m_process.waitForFinished(deadlineMs);
    }
}

void TestWindow::command(const QString& line) {
    m_process.write(line.toUtf8() + '\n');
    if (!readLine().startsWith("done"))
        throw std::runtime_error("the test window did not obey");
}

void TestWindow::fill(const QRect& rect, const QColor& color) {
    command(QStringLiteral("fill %1 %2 %3 %4 %5")
                .arg(rect.x())
                .arg(rect.y())
                .arg(rect.width())
                .arg(rect.height())
                .arg(color.name()));
}

QByteArray TestWindow::readLine() {
    while (!m_process.canReadLine()) {
        if (!m_process.waitForReadyRead(deadlineMs))
            return {};
    }
    return m_process.readLine();
}

std::unique_ptr<TestWindow> colorWindow(const QString& geometry, const QString& color,
                                        const QStringList& options) {
    return std::make_unique<TestWindow>(
        QStringList{QStringLiteral("--geometry"), geometry, QStringLiteral("--color"), color} + options);
}

} // namespace orvane::test

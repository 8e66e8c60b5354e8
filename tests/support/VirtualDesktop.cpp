#include "tests/support/VirtualDesktop.h"

#include <QByteArray>

#include <stdexcept>

namespace orvane::test {

namespace {

constexpr int startDeadlineMs = 30000;
constexpr int endDeadlineMs = 15000;

void setEnvironment(const QProcessEnvironment& wanted) {
    const QStringList present = QProcessEnvironment::systemEnvironment().keys();
    for (const QString& name : present) {
        if (!wanted.contains(name))
            qunsetenv(name.toLocal8Bit().constData());
    }
    for (const QString& name : wanted.keys())
        qputenv(name.toLocal8Bit().constData(), wanted.value(name).toLocal8Bit());
}

} // namespace

VirtualDesktop::VirtualDesktop(const QStringList& options)
    : m_before(QProcessEnvironment::systemEnvironment()) {
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QStringLiteral(ORVANE_SOURCE_DIR "/scripts/with-desktop"),
                    options + QStringList{QStringLiteral("--"), QStringLiteral("sh"), QStringLiteral("-c"),
                                          QStringLiteral("env -0; exec 1>&-; cat >/dev/null")});
    QByteArray output;
    while (m_process.waitForReadyRead(startDeadlineMs)) {
        output += m_process.readAllStandardOutput();
        // The list ends with the last variable's NUL, and DISPLAY is among them.
        if (output.endsWith('\0') && output.contains("ORVANE_DESKTOP_XSERVER_PID="))
            break;
    }
    for (const QByteArray& entry : output.split('\0')) {
        const qsizetype equals = entry.indexOf('=');
        if (equals > 0) {
            m_inside.insert(QString::fromLocal8Bit(entry.left(equals)),
                            QString::fromLocal8Bit(entry.mid(equals + 1)));
        }
    }
    if (!m_inside.contains(QStringLiteral("ORVANE_DESKTOP_XSERVER_PID")))
        throw std::runtime_error("the virtual desktop did not come up");
    setEnvironment(m_inside);
}

VirtualDesktop::~VirtualDesktop() {
    setEnvironment(m_before);
    m_process.closeWriteChannel();
    if (!m_process.waitForFinished(endDeadlineMs))
        m_process.terminate();
    m_process.waitForFinished(endDeadlineMs);
}

qint64 VirtualDesktop::xServerPid() const {
    return m_inside.value(QStringLiteral("ORVANE_DESKTOP_XSERVER_PID")).toLongLong();
}

QString VirtualDesktop::home() const {
    return m_inside.value(QStringLiteral("HOME"));
}

QByteArray runCommand(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(startDeadlineMs) || process.exitCode() != 0) {
        throw std::runtime_error(program.toStdString() +
                                 " failed: " + process.readAllStandardError().toStdString());
    }
    return process.readAllStandardOutput();
}

} // namespace orvane::test

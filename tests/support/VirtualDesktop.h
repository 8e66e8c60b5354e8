#pragma once

#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>

namespace orvane::test {

/// A private virtual desktop for the life of this object: an X server, a window manager, a compositor, a
/// D-Bus session and a home folder, all made by scripts/with-desktop. This process's environment (DISPLAY,
/// HOME, ...) is that of the desktop meanwhile, and what it was before afterwards.
class VirtualDesktop {
public:
    /// `options` are those of scripts/with-desktop. A desktop that does not come up ends the test with an
    /// exception.
    explicit VirtualDesktop(const QStringList& options = {});
    ~VirtualDesktop();
    VirtualDesktop(const VirtualDesktop&) = delete;
    VirtualDesktop& operator=(const VirtualDesktop&) = delete;

    qint64 xServerPid() const;
    QString home() const;

private:
    QProcess m_process;
    QProcessEnvironment m_before;
    QProcessEnvironment m_inside;
};

/// Runs a command to its end and gives its standard output; an exception when it fails.
QByteArray runCommand(const QString& program, const QStringList& arguments);

} // namespace orvane::test

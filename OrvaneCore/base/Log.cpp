#include "OrvaneCore/base/Log.h"

#include "OrvaneCore/base/PlainText.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <cstdio>

namespace orvane {

namespace {

void writeLine(const QByteArray& line) {
    // stderr is unbuffered: one fwrite is one write, so lines of several threads do not mix.
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stderr);
}

} // namespace

void logLine(QStringView message) {
    writeLine("orvane: " + onOneLine(message).toUtf8() + '\n');
}

void logBareLine(QStringView line) {
    writeLine(onOneLine(line).toUtf8() + '\n');
}

void logQtMessages() {
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) {
        // Qt looks for a socket of Wayland's in the runtime folder, and complains where an agent's client has
        // named none. Nothing of ours lies there.
        if (message.startsWith(u"QStandardPaths: "))
            return;
        for (const QString& line : message.split(u'\n', Qt::SkipEmptyParts))
            logLine(line);
    });
}

} // namespace orvane

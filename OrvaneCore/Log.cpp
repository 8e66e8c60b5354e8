#include "OrvaneCore/Log.h"

#include <QByteArray>

#include <cstdio>

namespace orvane {

void logLine(QStringView message) {
    const QByteArray line = "orvane: " + message.toUtf8() + '\n';
    // stderr is unbuffered: one fwrite is one write, so lines of several threads do not mix.
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stderr);
}

} // namespace orvane

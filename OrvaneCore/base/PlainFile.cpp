#include "OrvaneCore/base/PlainFile.h"

#include <QFile>
#include <QFileInfo>

#include <utility>

namespace orvane {

std::optional<QByteArray> readPlainFile(const QString& path, qint64 largestBytes) {
    const QFileInfo info(path);
    if (!info.isFile() || info.size() > largestBytes)
        return std::nullopt;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QByteArray bytes = file.readAll();
    return file.error() == QFileDevice::NoError ? std::optional(std::move(bytes)) : std::nullopt;
}

} // namespace orvane

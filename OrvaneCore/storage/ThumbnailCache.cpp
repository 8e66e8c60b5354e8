#include "OrvaneCore/storage/ThumbnailCache.h"

#include "OrvaneCore/base/AtomicFile.h"

#include <QDir>
#include <QFile>

#include <algorithm>

namespace orvane {

namespace {

constexpr int thumbnailWidth = 400;

QString thumbnailPath(const QString& folder) {
    return QDir(folder).filePath(QStringLiteral("thumbnail.png"));
}

} // namespace

QImage ThumbnailCache::load(const QString& folder) {
    return QImage(thumbnailPath(folder));
}

void ThumbnailCache::generate(const QString& source, const QString& folder) const {
    const QString path = thumbnailPath(folder);
    if (QFile::exists(path))
        return;
    const QImage image(source);
    if (image.isNull())
        return;
    // A picture that is flatter than one pixel would be gone.
    const int height = std::max(1, qRound(double(thumbnailWidth) * image.height() / image.width()));
    const QByteArray png = m_pngWriter.encode(
        image.scaled(thumbnailWidth, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    if (!png.isEmpty())
        static_cast<void>(writeFileAtomically(path, png));
}

void ThumbnailCache::invalidate(const QString& folder) {
    static_cast<void>(QFile::remove(thumbnailPath(folder)));
}

} // namespace orvane

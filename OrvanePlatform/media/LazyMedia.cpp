#include "OrvanePlatform/media/LazyMedia.h"

#include "OrvaneCore/platform/PlatformError.h"
#include "OrvanePlatform/media/MediaModule.h"

#include <utility>

namespace orvane::media {

using namespace Qt::StringLiterals;

LazyMedia::LazyMedia(std::optional<QString> moduleFolder)
    : m_moduleFolder(std::move(moduleFolder)) {}

MediaBackend& LazyMedia::backend() {
    const std::lock_guard lock(m_mutex);
    if (m_backend)
        return *m_backend;
    try {
        const modules::ModuleLoader loader(m_moduleFolder ? *m_moduleFolder
                                                          : modules::ModuleLoader::standardFolder());
        m_backend = loader.load<MediaModule>(u"orvane-media"_s).makeBackend();
    } catch (const PlatformError& error) {
        throw PlatformError(
            u"Movies cannot be made (packages libavcodec59, libavformat59, libswscale6 and libavutil57). "_s +
            error.message());
    }
    return *m_backend;
}

std::unique_ptr<VideoWriter> LazyMedia::createMp4(const QString& path, const VideoFormat& format) {
    return backend().createMp4(path, format);
}

} // namespace orvane::media

#pragma once

#include "OrvaneCore/platform/MediaBackend.h"
#include "OrvanePlatform/modules/ModuleLoader.h"

#include <memory>
#include <mutex>
#include <optional>

namespace orvane::media {

/// Movies by the module library "orvane-media", which is loaded on the first call. Where it does not load,
/// each call throws PlatformError, which says what to install, and the next one looks again.
class LazyMedia final : public MediaBackend {
public:
    /// `moduleFolder`: where the module lies; by default where the program's modules are, which is asked for
    /// on the first call.
    explicit LazyMedia(std::optional<QString> moduleFolder = {});

    std::unique_ptr<VideoWriter> createMp4(const QString& path, const VideoFormat& format) override;

private:
    MediaBackend& backend();

    std::optional<QString> m_moduleFolder;
    std::mutex m_mutex;
    std::unique_ptr<MediaBackend> m_backend;
};

} // namespace orvane::media

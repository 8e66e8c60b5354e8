#pragma once

#include "OrvanePlatform/media/MediaModule.h"

#include <QObject>

namespace orvane::media {

/// The root object of the module library.
class FfmpegModule final : public QObject, public MediaModule {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.orvane.MediaModule/1")
    Q_INTERFACES(orvane::media::MediaModule)

public:
    std::unique_ptr<MediaBackend> makeBackend() override;
};

} // namespace orvane::media

#pragma once

#include "OrvaneCore/platform/MediaBackend.h"

#include <QtPlugin>

#include <memory>

namespace orvane::media {

/// What the root object of the media module offers.
class MediaModule {
public:
    virtual ~MediaModule() = default;

    virtual std::unique_ptr<MediaBackend> makeBackend() = 0;

protected:
    MediaModule() = default;
    MediaModule(const MediaModule&) = default;
    MediaModule& operator=(const MediaModule&) = default;
};

} // namespace orvane::media

Q_DECLARE_INTERFACE(orvane::media::MediaModule, "com.orvane.MediaModule/1")

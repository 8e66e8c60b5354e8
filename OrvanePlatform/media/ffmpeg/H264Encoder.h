#pragma once

#include "OrvaneCore/platform/MediaBackend.h"
#include "OrvanePlatform/media/ffmpeg/Owners.h"

#include <functional>

namespace orvane::media {

/// H.264 by libx264, as fast as a recording needs it. A picture comes out when the next one goes in, because
/// what it may cost depends on how long it is shown. One thread at a time.
class H264Encoder {
public:
    /// Takes a packet, whose times are in ticks, for the length of the call.
    using Taker = std::function<void(AVPacket&)>;

    /// Throws PlatformError when there is no such encoder or it does not take the format.
    explicit H264Encoder(const VideoFormat& format);

    /// `picture`: of storedSize(), yuv420p, with the tick at which it is shown, later than the one before.
    /// Throws PlatformError.
    void encode(AVFrame& picture, qint64 tick, bool isKeyFrame, const Taker& taker);
    /// Gives what has not come out yet; nothing more can go in. Throws PlatformError.
    void finish(const Taker& taker);

    /// For the header of a file.
    const AVCodecContext& context() const { return *m_context; }

private:
    /// `picture`: null at the end.
    void send(const AVFrame* picture, const Taker& taker);

    CodecContextOwner m_context;
    PacketOwner m_packet;
};

} // namespace orvane::media

#pragma once

#include "OrvanePlatform/media/ffmpeg/MovieFile.h"
#include "OrvanePlatform/media/ffmpeg/Owners.h"

#include <QString>

namespace orvane::media {

/// An MP4 file that can be played at any time while it is being written: an empty header first, and then
/// fragments of about a second, each of which is on the disk as soon as it is complete. One thread at a time.
class FragmentedMp4 {
public:
    /// What is in the file.
    struct Content {
        qint64 packets = 0;
        qint64 bytes = 0;
    };

    /// A new file at `path` for what `encoder` gives. Throws PlatformError, and then there is no file.
    FragmentedMp4(const QString& path, const AVCodecContext& encoder);

    /// `packet`: with its times in ticks, which ascend; it is left as it was or empty. After a failure, which
    /// is a PlatformError, the file ends with its last whole fragment, and nothing more can be written.
    void write(AVPacket& packet);
    /// Puts what has been written since the last fragment on the disk as one more. Fails as write().
    void cut();

    Content content() const { return m_content; }

private:
    void writeHeader(const AVCodecContext& encoder);
    /// Takes what the muxer answered.
    void keep(int result);

    MovieFile m_file;
    OutputContextOwner m_muxer;
    Content m_content;
};

} // namespace orvane::media

#include "OrvanePlatform/media/ffmpeg/Remuxer.h"

#include "OrvanePlatform/media/ffmpeg/AvError.h"
#include "OrvanePlatform/media/ffmpeg/MovieFile.h"
#include "OrvanePlatform/media/ffmpeg/Owners.h"
#include "OrvanePlatform/media/video/MovieTimes.h"

#include <QFile>

#include <utility>

namespace orvane::media {

using namespace Qt::StringLiterals;

namespace {

/// The most bytes that the header can take. Each frame has a duration, a size and perhaps a number among the
/// key frames; the data are in pieces of up to a megabyte, each of which has a place and a count.
qint64 headerBytes(const FragmentedMp4::Content& content) {
    constexpr qint64 fixed = 8192;
    constexpr qint64 perFrame = 8 + 4 + 4;
    constexpr qint64 perPiece = 8 + 12;
    constexpr qint64 smallestPiece = 524'288;
    return fixed + perFrame * content.packets + perPiece * (content.bytes / smallestPiece + 1);
}

InputContextOwner opened(const QString& path) {
    AVFormatContext* movie = nullptr;
    // Named as a file, so that no colon in its path makes it an address of another kind.
    const QByteArray address = "file:" + QFile::encodeName(path);
    checked(avformat_open_input(&movie, address.constData(), av_find_input_format("mp4"), nullptr),
            u"The movie %1 could not be read"_s.arg(path));
    return InputContextOwner(movie);
}

class PlainMp4 {
public:
    PlainMp4(MovieFile& file, const AVFormatContext& like, qint64 mostHeaderBytes)
        : m_failure(u"The movie %1 could not be written"_s.arg(file.path())) {
        AVFormatContext* muxer = nullptr;
        checked(avformat_alloc_output_context2(&muxer, nullptr, "mp4", nullptr), m_failure);
        m_muxer.reset(muxer);
        m_muxer->pb = file.io();
        AVStream* stream = avformat_new_stream(m_muxer.get(), nullptr);
        if (stream == nullptr)
            throw std::bad_alloc();
        checked(avcodec_parameters_copy(stream->codecpar, like.streams[0]->codecpar), m_failure);
        stream->codecpar->codec_tag = 0;
        stream->time_base = like.streams[0]->time_base;
        Options options;
        options.set("moov_size", mostHeaderBytes);
        checked(avformat_write_header(m_muxer.get(), options.get()), m_failure);
    }

    void write(AVPacket& packet, AVRational timeBase) {
        av_packet_rescale_ts(&packet, timeBase, m_muxer->streams[0]->time_base);
        packet.pos = -1;
        checked(av_write_frame(m_muxer.get(), &packet), m_failure);
    }

    void end() { checked(av_write_trailer(m_muxer.get()), m_failure); }

private:
    QString m_failure;
    OutputContextOwner m_muxer;
};

void copyPackets(AVFormatContext& from, PlainMp4& to, const QString& path, qint64 lastFrameTicks) {
    const AVRational timeBase = from.streams[0]->time_base;
    auto packet = made<PacketOwner>(av_packet_alloc());
    auto next = made<PacketOwner>(av_packet_alloc());
    bool hasPacket = false;
    for (;;) {
        const int result = av_read_frame(&from, next.get());
        if (result == AVERROR_EOF)
            break;
        checked(result, u"The movie %1 could not be read"_s.arg(path));
        if (hasPacket)
            to.write(*packet, timeBase);
        av_packet_unref(packet.get());
        std::swap(packet, next);
        hasPacket = true;
    }
    if (!hasPacket)
        return;
    packet->duration = av_rescale_q(lastFrameTicks, {1, ticksPerSecond}, timeBase);
    to.write(*packet, timeBase);
}

} // namespace

void makePlain(const QString& path, const FragmentedMp4::Content& content, qint64 lastFrameTicks) {
    const InputContextOwner fragmented = opened(path);
    MovieFile file = MovieFile::hiddenBeside(path);
    try {
        PlainMp4 plain(file, *fragmented, headerBytes(content));
        copyPackets(*fragmented, plain, path, lastFrameTicks);
        plain.end();
        file.flush();
        file.sync();
        file.replace(path);
    } catch (...) {
        file.remove();
        throw;
    }
}

} // namespace orvane::media

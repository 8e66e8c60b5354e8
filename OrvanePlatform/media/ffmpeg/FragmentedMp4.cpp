#include "OrvanePlatform/media/ffmpeg/FragmentedMp4.h"

#include "OrvaneCore/platform/PlatformError.h"
#include "OrvanePlatform/media/ffmpeg/AvError.h"
#include "OrvanePlatform/media/video/MovieTimes.h"

namespace orvane::media {

using namespace Qt::StringLiterals;

namespace {

constexpr int fragmentMicroseconds = 1'000'000;

} // namespace

FragmentedMp4::FragmentedMp4(const QString& path, const AVCodecContext& encoder)
    : m_file(MovieFile::inPlaceOf(path)) {
    try {
        writeHeader(encoder);
    } catch (...) {
        m_file.remove();
        throw;
    }
}

void FragmentedMp4::writeHeader(const AVCodecContext& encoder) {
    const QString failure = u"The movie %1 could not be begun"_s.arg(m_file.path());
    AVFormatContext* muxer = nullptr;
    checked(avformat_alloc_output_context2(&muxer, nullptr, "mp4", nullptr), failure);
    m_muxer.reset(muxer);
    // Fragments are never gone back to.
    m_file.io()->seekable = 0;
    m_muxer->pb = m_file.io();

    AVStream* stream = avformat_new_stream(m_muxer.get(), nullptr);
    if (stream == nullptr)
        throw std::bad_alloc();
    stream->time_base = encoder.time_base;
    checked(avcodec_parameters_from_context(stream->codecpar, &encoder), failure);

    Options options;
    // Without the index at the end, which would grow in memory all the while.
    options.set("movflags", "empty_moov+default_base_moof+skip_trailer");
    options.set("frag_duration", fragmentMicroseconds);
    checked(avformat_write_header(m_muxer.get(), options.get()), failure);
    keep(0);
}

void FragmentedMp4::write(AVPacket& packet) {
    av_packet_rescale_ts(&packet, {1, ticksPerSecond}, m_muxer->streams[0]->time_base);
    packet.stream_index = 0;
    // The muxer sees how long each lasts when the next one comes, and the last of all may not reach beyond
    // it.
    packet.duration = 1;
    keep(av_write_frame(m_muxer.get(), &packet));
    ++m_content.packets;
}

void FragmentedMp4::cut() {
    keep(av_write_frame(m_muxer.get(), nullptr));
}

void FragmentedMp4::keep(int result) {
    try {
        checked(result, u"The movie %1 could not be written"_s.arg(m_file.path()));
        m_file.flush();
    } catch (...) {
        m_file.truncate(m_content.bytes);
        throw;
    }
    m_content.bytes = avio_tell(m_file.io());
}

} // namespace orvane::media

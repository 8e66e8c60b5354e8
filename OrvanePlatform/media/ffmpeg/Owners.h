#pragma once

#include <memory>
#include <new>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
#include <libavutil/frame.h>
#include <libswscale/swscale.h>
}

namespace orvane::media {

struct FrameDeleter {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};

struct PacketDeleter {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};

struct CodecContextDeleter {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};

struct InputContextDeleter {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};

struct OutputContextDeleter {
    void operator()(AVFormatContext* context) const { avformat_free_context(context); }
};

/// The buffer goes with the context, which may have put another one in the place of the first.
struct IoContextDeleter {
    void operator()(AVIOContext* context) const {
        av_freep(&context->buffer);
        avio_context_free(&context);
    }
};

struct ScalerDeleter {
    void operator()(SwsContext* context) const { sws_freeContext(context); }
};

using FrameOwner = std::unique_ptr<AVFrame, FrameDeleter>;
using PacketOwner = std::unique_ptr<AVPacket, PacketDeleter>;
using CodecContextOwner = std::unique_ptr<AVCodecContext, CodecContextDeleter>;
using InputContextOwner = std::unique_ptr<AVFormatContext, InputContextDeleter>;
using OutputContextOwner = std::unique_ptr<AVFormatContext, OutputContextDeleter>;
using IoContextOwner = std::unique_ptr<AVIOContext, IoContextDeleter>;
using ScalerOwner = std::unique_ptr<SwsContext, ScalerDeleter>;

/// Options of a muxer or an encoder. What has not been taken stays in it.
class Options {
public:
    Options() = default;
    ~Options() { av_dict_free(&m_dictionary); }
    Options(const Options&) = delete;
    Options& operator=(const Options&) = delete;

    void set(const char* name, const char* value) { av_dict_set(&m_dictionary, name, value, 0); }
    void set(const char* name, int64_t value) { av_dict_set_int(&m_dictionary, name, value, 0); }

    AVDictionary** get() { return &m_dictionary; }

private:
    AVDictionary* m_dictionary = nullptr;
};

/// What a function of FFmpeg that makes something gave; throws std::bad_alloc when that is nothing.
template <class Owner>
Owner made(typename Owner::pointer handle) {
    if (handle == nullptr)
        throw std::bad_alloc();
    return Owner(handle);
}

} // namespace orvane::media

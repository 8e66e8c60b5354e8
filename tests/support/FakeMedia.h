#pragma once

#include "OrvaneCore/platform/MediaBackend.h"
#include "OrvaneCore/platform/PlatformError.h"

#include <deque>
#include <functional>
#include <optional>
#include <vector>

namespace orvane::test {

/// A movie that a test can look at while it is written and afterwards.
struct FakeMovie {
    struct Frame {
        QImage picture;
        std::chrono::microseconds time;
    };

    QString path;
    VideoFormat format;
    std::vector<Frame> frames;
    int finishes = 0;
    bool closed = false;
};

/// Movies that stay in memory.
class FakeMedia final : public MediaBackend {
public:
    /// Every movie that was begun; they stay where they are.
    std::deque<FakeMovie> movies;
    /// While set no movie can be begun.
    std::optional<QString> refusal;
    /// While false frames are dropped.
    bool ready = true;
    /// While set movies cannot be finished.
    std::optional<QString> finishFailure;
    /// Happens while a movie is finished; may throw what no movie should.
    std::function<void()> duringFinish = [] {};

    std::unique_ptr<VideoWriter> createMp4(const QString& path, const VideoFormat& format) override {
        if (refusal)
            throw PlatformError(*refusal);
        movies.push_back({.path = path, .format = format, .frames = {}});
        return std::make_unique<Writer>(*this, movies.back());
    }

private:
    class Writer final : public VideoWriter {
    public:
        Writer(FakeMedia& media, FakeMovie& movie)
            : m_media(media)
            , m_movie(movie) {}
        ~Writer() override { m_movie.closed = true; }
        Writer(const Writer&) = delete;
        Writer& operator=(const Writer&) = delete;

        bool append(const QImage& frame, std::chrono::microseconds time) override {
            if (!m_media.ready)
                return false;
            m_movie.frames.push_back({frame, time});
            return true;
        }

        void finish() override {
            ++m_movie.finishes;
            m_media.duringFinish();
            if (m_media.finishFailure)
                throw PlatformError(*m_media.finishFailure);
        }

    private:
        FakeMedia& m_media;
        FakeMovie& m_movie;
    };
};

} // namespace orvane::test

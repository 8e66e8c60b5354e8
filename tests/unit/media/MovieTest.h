#pragma once

#include "OrvanePlatform/media/LazyMedia.h"
#include "tests/support/Eventually.h"
#include "tests/unit/media/MovieProbe.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace orvane::media {

/// The module as the program loads it, and a folder for movies.
class MovieTest : public testing::Test {
protected:
    using Microseconds = std::chrono::microseconds;

    QString path(const QString& name = QStringLiteral("movie.mp4")) const { return m_folder.filePath(name); }

    std::unique_ptr<VideoWriter> create(const VideoFormat& format) {
        return m_media.createMp4(path(), format);
    }

    static VideoFormat formatOf(const QSize& size, qint64 bitsPerSecond = 4'000'000) {
        return {size, 30, bitsPerSecond, 60};
    }

    /// Waits until the writer has room.
    static void append(VideoWriter& writer, const QImage& frame, Microseconds time) {
        const QDeadlineTimer deadline(60'000);
        while (!writer.append(frame, time)) {
            ASSERT_FALSE(deadline.hasExpired());
            QThread::usleep(200);
        }
    }

    static QImage plain(const QSize& size, const QColor& colour) {
        QImage frame(size, QImage::Format_RGB32);
        frame.fill(colour);
        return frame;
    }

    /// Blocks of 4x4 pixels in colours that nothing foretells.
    QImage noise(const QSize& size) {
        QImage small(size / 4, QImage::Format_RGB32);
        for (int y = 0; y < small.height(); ++y) {
            for (int x = 0; x < small.width(); ++x)
                small.setPixel(x, y, 0xff000000U | static_cast<QRgb>(m_random()));
        }
        return small.scaled(size);
    }

    /// A movie of these frames, finished.
    void write(const VideoFormat& format, const std::vector<QImage>& frames,
               Microseconds period = Microseconds(100'000)) {
        const std::unique_ptr<VideoWriter> writer = create(format);
        Microseconds time{};
        for (const QImage& frame : frames) {
            append(*writer, frame, time);
            time += period;
        }
        writer->finish();
    }

    /// The names of all files in the folder, hidden ones too.
    QStringList filesLeft() const {
        return QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden | QDir::System);
    }

    QTemporaryDir m_folder;
    LazyMedia m_media;
    std::mt19937 m_random{1};
};

} // namespace orvane::media

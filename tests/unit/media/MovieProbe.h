#pragma once

#include <QByteArray>
#include <QImage>
#include <QJsonObject>
#include <QSize>
#include <QString>
#include <QStringList>

#include <vector>

namespace orvane::test {

// What ffprobe and ffmpeg have to say about a movie. All throw std::runtime_error with what the command said
// when it fails or complains.

struct Packet {
    qint64 tick = 0;
    bool isKeyFrame = false;

    bool operator==(const Packet&) const = default;
};

/// The only stream of the movie, and the movie as a whole, with the keys that ffprobe gives them.
QJsonObject streamOf(const QString& path);
QJsonObject formatOf(const QString& path);
double secondsOf(const QString& path);

/// In the order of the file.
std::vector<Packet> packetsOf(const QString& path);
std::vector<qint64> ticksOf(const QString& path);

/// A decoded picture: the bytes of its planes, without gaps.
struct Planes {
    QSize size;
    QByteArray bytes;

    /// Luma from 16 to 235.
    int y(int column, int row) const;
    /// Of the block of 2x2 pixels that the pixel is in.
    int u(int column, int row) const;
    int v(int column, int row) const;
};

/// All pictures of the movie.
std::vector<Planes> picturesOf(const QString& path);

/// The types of the boxes that the file is made of.
QStringList boxesOf(const QString& path);

} // namespace orvane::test

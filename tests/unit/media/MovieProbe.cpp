#include "tests/unit/media/MovieProbe.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QtEndian>

#include <stdexcept>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

QByteArray outputOf(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForStarted() || !process.waitForFinished(120'000))
        throw std::runtime_error(program.toStdString() + " does not run");
    const QByteArray complaints = process.readAllStandardError();
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0 || !complaints.isEmpty())
        throw std::runtime_error(program.toStdString() + " failed: " + complaints.toStdString());
    return process.readAllStandardOutput();
}

QJsonObject probed(const QString& path, const QStringList& arguments) {
    const QByteArray json = outputOf(u"ffprobe"_s, QStringList{u"-v"_s, u"error"_s, u"-of"_s, u"json"_s} +
                                                       arguments + QStringList{u"file:"_s + path});
    return QJsonDocument::fromJson(json).object();
}

} // namespace

QJsonObject streamOf(const QString& path) {
    const QJsonArray streams = probed(path, {u"-show_streams"_s})[u"streams"_s].toArray();
    if (streams.size() != 1)
        throw std::runtime_error("the movie has " + std::to_string(streams.size()) + " streams");
    return streams[0].toObject();
}

QJsonObject formatOf(const QString& path) {
    return probed(path, {u"-show_format"_s})[u"format"_s].toObject();
}

double secondsOf(const QString& path) {
    return formatOf(path)[u"duration"_s].toString().toDouble();
}

std::vector<Packet> packetsOf(const QString& path) {
    const QJsonArray listed = probed(path, {u"-show_packets"_s})[u"packets"_s].toArray();
    std::vector<Packet> packets;
    packets.reserve(static_cast<std::size_t>(listed.size()));
    for (const auto& packet : listed)
        packets.push_back({packet[u"pts"_s].toInteger(), packet[u"flags"_s].toString().startsWith(u'K')});
    return packets;
}

std::vector<qint64> ticksOf(const QString& path) {
    const std::vector<Packet> packets = packetsOf(path);
    std::vector<qint64> ticks;
    ticks.reserve(packets.size());
    for (const Packet& packet : packets)
        ticks.push_back(packet.tick);
    return ticks;
}

int Planes::y(int column, int row) const {
    return static_cast<uchar>(bytes[row * size.width() + column]);
}

int Planes::u(int column, int row) const {
    const int width = size.width() / 2;
    return static_cast<uchar>(bytes[size.width() * size.height() + row / 2 * width + column / 2]);
}

int Planes::v(int column, int row) const {
    const int width = size.width() / 2;
    const int height = size.height() / 2;
    return static_cast<uchar>(
        bytes[size.width() * size.height() + width * height + row / 2 * width + column / 2]);
}

std::vector<Planes> picturesOf(const QString& path) {
    const QJsonObject stream = streamOf(path);
    const QSize size(stream[u"width"_s].toInt(), stream[u"height"_s].toInt());
    const QByteArray bytes =
        outputOf(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, u"file:"_s + path, u"-fps_mode"_s,
                               u"passthrough"_s, u"-enc_time_base"_s, u"1:90000"_s, u"-f"_s, u"rawvideo"_s,
                               u"-pix_fmt"_s, u"yuv420p"_s, u"-"_s});
    const qsizetype bytesOfOne = qsizetype{size.width()} * size.height() * 3 / 2;
    if (bytes.size() % bytesOfOne != 0)
        throw std::runtime_error("the last picture is not whole");
    std::vector<Planes> pictures;
    pictures.reserve(static_cast<std::size_t>(bytes.size() / bytesOfOne));
    for (qsizetype begin = 0; begin < bytes.size(); begin += bytesOfOne)
        pictures.push_back({size, bytes.mid(begin, bytesOfOne)});
    return pictures;
}

QStringList boxesOf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("the movie cannot be opened");
    QStringList types;
    while (!file.atEnd()) {
        const QByteArray head = file.read(16);
        if (head.size() < 8)
            throw std::runtime_error("the last box has no head");
        qint64 bytes = qFromBigEndian<quint32>(head.constData());
        if (bytes == 1 && head.size() == 16)
            bytes = qFromBigEndian<qint64>(head.constData() + 8);
        const qint64 next = file.pos() - head.size() + bytes;
        if (bytes < 8 || next > file.size())
            throw std::runtime_error("a box does not end in the file");
        types.append(QString::fromLatin1(head.mid(4, 4)));
        file.seek(next);
    }
    return types;
}

} // namespace orvane::test

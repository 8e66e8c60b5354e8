#pragma once

#include "OrvanePlatform/media/ffmpeg/Owners.h"

#include <QString>

namespace orvane::media {

/// A file that a muxer writes. One thread at a time. A write that the limit on the size of files forbids
/// fails as one on a full disk does; its signal (SIGXFSZ) reaches nobody.
class MovieFile {
public:
    /// An empty file at `path`, in the place of what was there. Throws PlatformError.
    static MovieFile inPlaceOf(const QString& path);
    /// An empty file of a hidden name in the folder of `path`, with the permissions of the file there.
    /// Throws PlatformError.
    static MovieFile hiddenBeside(const QString& path);

    ~MovieFile();
    MovieFile(const MovieFile&) = delete;
    MovieFile& operator=(const MovieFile&) = delete;

    const QString& path() const { return m_path; }
    /// How far it has been written.
    qint64 size() const;

    /// For the muxer. What it is given is written when its buffer is full or flushed.
    AVIOContext* io() const { return m_io.get(); }
    /// Writes what is in the buffer. Throws PlatformError when that or an earlier write has failed.
    void flush();

    /// Takes back what has been written after the first `size` bytes, as far as that can be done.
    void truncate(qint64 size) noexcept;
    /// Waits until the disk has it. Throws PlatformError.
    void sync();
    /// Takes the place of the file at `path`, of the same folder. Throws PlatformError.
    void replace(const QString& path);
    /// As if it had never been, as far as that can be done.
    void remove() noexcept;

private:
    MovieFile(int descriptor, const QString& path);

    static int write(void* file, uint8_t* bytes, int count);
    static int64_t seek(void* file, int64_t offset, int whence);

    [[noreturn]] void throwFailure(int error) const;

    int m_descriptor;
    QString m_path;
    IoContextOwner m_io;
};

} // namespace orvane::media

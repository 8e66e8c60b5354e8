#include "OrvanePlatform/media/ffmpeg/MovieFile.h"

#include "OrvaneCore/platform/PlatformError.h"
#include "OrvanePlatform/media/ffmpeg/AvError.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane::media {

using namespace Qt::StringLiterals;

namespace {

constexpr int bufferSize = 64 * 1024;

[[noreturn]] void throwNotMade(const QString& path, const QString& reason) {
    throw PlatformError(u"The movie %1 could not be made: %2."_s.arg(path, reason));
}

/// Keeps the signal that a write beyond the limit on the size of files sends to its thread away from it.
class SizeSignalBlock {
public:
    SizeSignalBlock() {
        sigemptyset(&m_signals);
        sigaddset(&m_signals, SIGXFSZ);
        pthread_sigmask(SIG_BLOCK, &m_signals, &m_before);
    }
    ~SizeSignalBlock() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SizeSignalBlock(const SizeSignalBlock&) = delete;
    SizeSignalBlock& operator=(const SizeSignalBlock&) = delete;

    /// The signal that has come is gone, instead of coming when the block ends. One that was blocked before
    /// is somebody else's to take.
    void swallow() const {
        constexpr timespec noWait{};
        if (sigismember(&m_before, SIGXFSZ) == 0)
            sigtimedwait(&m_signals, nullptr, &noWait);
    }

private:
    sigset_t m_signals{};
    sigset_t m_before{};
};

} // namespace

MovieFile MovieFile::inPlaceOf(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    // A device or a pipe is no place for a movie, and must not be removed when it does not take one.
    struct stat present {};
    if (::stat(name.constData(), &present) == 0 && !S_ISREG(present.st_mode))
        throwNotMade(path, u"It is there and no file"_s);
    const int descriptor = ::open(name.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (descriptor < 0)
        throwNotMade(path, reasonOf(AVERROR(errno)));
    return {descriptor, path};
}

MovieFile MovieFile::hiddenBeside(const QString& path) {
    QByteArray name = QFile::encodeName(QFileInfo(path).path() + u"/.orvane-movie-XXXXXX"_s);
    const int descriptor = ::mkostemp(name.data(), O_CLOEXEC);
    if (descriptor < 0)
        throwNotMade(QFile::decodeName(name), reasonOf(AVERROR(errno)));
    struct stat present {};
    if (::stat(QFile::encodeName(path).constData(), &present) == 0)
        ::fchmod(descriptor, present.st_mode & 07777);
    return {descriptor, QFile::decodeName(name)};
}

MovieFile::MovieFile(int descriptor, const QString& path)
    : m_descriptor(descriptor)
    , m_path(path) {
    auto* buffer = static_cast<uint8_t*>(av_malloc(bufferSize));
    m_io.reset(avio_alloc_context(buffer, bufferSize, 1, this, nullptr, write, seek));
    if (!m_io) {
        av_free(buffer);
        ::close(m_descriptor);
        throw std::bad_alloc();
    }
}

MovieFile::~MovieFile() {
    ::close(m_descriptor);
}

qint64 MovieFile::size() const {
    struct stat present {};
    return ::fstat(m_descriptor, &present) == 0 ? present.st_size : 0;
}

void MovieFile::flush() {
    avio_flush(m_io.get());
    if (m_io->error < 0)
        throwFailure(m_io->error);
}

void MovieFile::truncate(qint64 size) noexcept {
    // Where even this fails, players have to cope with the broken end.
    if (::ftruncate(m_descriptor, size) != 0)
        return;
}

void MovieFile::sync() {
    if (::fdatasync(m_descriptor) != 0)
        throwFailure(AVERROR(errno));
}

void MovieFile::replace(const QString& path) {
    if (std::rename(QFile::encodeName(m_path).constData(), QFile::encodeName(path).constData()) != 0)
        throwFailure(AVERROR(errno));
    m_path = path;
}

void MovieFile::remove() noexcept {
    ::unlink(QFile::encodeName(m_path).constData());
}

int MovieFile::write(void* file, uint8_t* bytes, int count) {
    const int descriptor = static_cast<MovieFile*>(file)->m_descriptor;
    const SizeSignalBlock block;
    int written = 0;
    while (written < count) {
        const ssize_t now = ::write(descriptor, bytes + written, static_cast<std::size_t>(count - written));
        if (now > 0) {
            written += static_cast<int>(now);
            continue;
        }
        if (now < 0 && errno == EINTR)
            continue;
        const int error = now < 0 ? errno : EIO;
        if (error == EFBIG)
            block.swallow();
        return AVERROR(error);
    }
    return count;
}

int64_t MovieFile::seek(void* file, int64_t offset, int whence) {
    const auto* self = static_cast<MovieFile*>(file);
    if ((whence & AVSEEK_SIZE) != 0)
        return self->size();
    const off_t position = ::lseek(self->m_descriptor, offset, whence & ~AVSEEK_FORCE);
    return position < 0 ? AVERROR(errno) : position;
}

void MovieFile::throwFailure(int error) const {
    throw PlatformError(u"The movie %1 could not be written: %2."_s.arg(m_path, reasonOf(error)));
}

} // namespace orvane::media

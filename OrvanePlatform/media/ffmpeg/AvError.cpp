#include "OrvanePlatform/media/ffmpeg/AvError.h"

#include "OrvaneCore/platform/PlatformError.h"

#include <array>

extern "C" {
#include <libavutil/error.h>
}

namespace orvane::media {

using namespace Qt::StringLiterals;

QString reasonOf(int error) {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(error, text.data(), text.size());
    return QString::fromLocal8Bit(text.data());
}

int checked(int result, const QString& failure) {
    if (result < 0)
        throw PlatformError(u"%1: %2."_s.arg(failure, reasonOf(result)));
    return result;
}

} // namespace orvane::media

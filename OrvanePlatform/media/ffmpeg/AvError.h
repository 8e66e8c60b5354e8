#pragma once

#include <QString>

namespace orvane::media {

/// What a negative result of a function of FFmpeg means; without a full stop.
QString reasonOf(int error);

/// The result of a function of FFmpeg; throws PlatformError "`failure`: the reason." when that is negative.
int checked(int result, const QString& failure);

} // namespace orvane::media

#pragma once

#include <QImage>
#include <QSize>

namespace orvane::bench {

/// What a screen full of work looks like to an encoder: a wallpaper with a colour gradient, and windows with
/// flat grounds and small anti-aliased text. The same pixels on every call; RGB32.
QImage desktopPicture(const QSize& size);

/// What a photograph looks like to an encoder: soft colours under noise in the lowest bits, so that hardly a
/// byte repeats. The same pixels on every call; RGB32.
QImage photoPicture(const QSize& size);

} // namespace orvane::bench

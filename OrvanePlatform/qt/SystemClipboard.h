#pragma once

#include "OrvaneCore/base/PostedCall.h"
#include "OrvaneCore/platform/Clipboard.h"

namespace orvane::qt {

/// The clipboard as Qt has it, whose thread is the main one. Made on the main thread, where an event loop
/// writes what was asked for; with a QGuiApplication by then. What has not been written when this object goes
/// is not written any more.
class SystemClipboard final : public Clipboard {
public:
    void writeText(const QString& text) override;
    void writeImage(const QImage& image) override;

private:
    CallReceiver m_mainThread;
};

} // namespace orvane::qt

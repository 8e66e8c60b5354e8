#include "OrvanePlatform/qt/SystemClipboard.h"

#include <QClipboard>
#include <QGuiApplication>

namespace orvane::qt {

void SystemClipboard::writeText(const QString& text) {
    m_mainThread.post([text] { QGuiApplication::clipboard()->setText(text); });
}

void SystemClipboard::writeImage(const QImage& image) {
    m_mainThread.post([image] { QGuiApplication::clipboard()->setImage(image); });
}

} // namespace orvane::qt

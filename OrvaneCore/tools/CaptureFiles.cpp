#include "OrvaneCore/tools/CaptureFiles.h"

#include "OrvaneCore/base/AtomicFile.h"
#include "OrvaneCore/capture/OrvaneError.h"
#include "OrvaneCore/capture/ScreenCapture.h"

#include <QDir>

#include <algorithm>
#include <future>
#include <utility>

namespace orvane {

namespace {

// File systems take 255 bytes for a name; the rest is for the stamp, the endings and a temporary name.
constexpr qsizetype longestAppName = 160;

bool isForbidden(QChar character) {
    return character == u'/' || character.category() == QChar::Other_Control;
}

} // namespace

CaptureFiles::CaptureFiles(StorageManager& storage, const PngWriter& pngWriter,
                           std::function<QDateTime()> clock)
    : m_storage(storage)
    , m_pngWriter(pngWriter)
    , m_clock(std::move(clock)) {}

EncodedCapture CaptureFiles::encode(const QImage& image) const {
    return encode(image, [](const QByteArray&) {});
}

EncodedCapture CaptureFiles::encodeAndSave(const QImage& image, const std::optional<QString>& appName,
                                           const QString& suffix) const {
    return encode(image, [&](const QByteArray& fullPng) { save(fullPng, appName, suffix); });
}

EncodedCapture CaptureFiles::encode(const QImage& image,
                                    const std::function<void(const QByteArray&)>& handOn) const {
    const auto encodeFull = [&] {
        QByteArray png = m_pngWriter.encode(image);
        if (png.isEmpty())
            throw OrvaneError::captureEncodingFailed();
        handOn(png);
        return png;
    };
    EncodedCapture capture;
    const bool small = std::max(image.width(), image.height()) <= ScreenCapture::agentMaxDimension;
    if (small) {
        capture.fullPng = encodeFull();
        capture.agentPng = capture.fullPng;
        capture.agentSize = image.size();
    } else {
        auto full = std::async(std::launch::async, encodeFull);
        const QImage agentImage = ScreenCapture::resizeForLLM(image, ScreenCapture::agentMaxDimension);
        capture.agentPng = m_pngWriter.encode(agentImage);
        capture.agentSize = agentImage.size();
        capture.fullPng = full.get();
    }
    if (capture.agentPng.isEmpty())
        throw OrvaneError::captureEncodingFailed();
    return capture;
}

void CaptureFiles::save(const QByteArray& fullPng, const std::optional<QString>& appName,
                        const QString& suffix) const {
    const QString stamp = m_clock().toLocalTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    const QString application = appName ? u'-' + legalFileName(*appName, longestAppName) : QString();
    const QString name = stamp + application + suffix + QStringLiteral(".png");
    // The result does not matter: see the header.
    static_cast<void>(writeFileAtomically(QDir(m_storage.capturesDir()).filePath(name), fullPng));
}

QString legalFileName(const QString& name, qsizetype mostBytes) {
    QString legal = name;
    for (QChar& character : legal) {
        if (isForbidden(character))
            character = u'-';
    }
    while (legal.toUtf8().size() > mostBytes) {
        // A character takes at most three bytes for each UTF-16 unit, so this many units must go in any case.
        const qsizetype excess = legal.toUtf8().size() - mostBytes;
        legal.chop(std::max<qsizetype>(1, excess / 3));
        if (!legal.isEmpty() && legal.back().isHighSurrogate())
            legal.chop(1);
    }
    return legal;
}

} // namespace orvane

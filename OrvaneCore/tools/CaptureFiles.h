#pragma once

#include "OrvaneCore/platform/PngWriter.h"
#include "OrvaneCore/storage/StorageManager.h"

#include <QByteArray>
#include <QDateTime>
#include <QImage>
#include <QSize>
#include <QString>

#include <functional>
#include <optional>

namespace orvane {

/// A capture as it is handed on: the whole picture for the disk, a smaller one for the agent.
struct EncodedCapture {
    QByteArray fullPng;
    /// A picture of at most 1024 pixels on a side; the same bytes as `fullPng` where that is small enough.
    QByteArray agentPng;
    QSize agentSize;
};

/// Makes the PNGs of a capture and keeps the full-size one under `captures`. Any thread.
class CaptureFiles {
public:
    CaptureFiles(StorageManager& storage, const PngWriter& pngWriter, std::function<QDateTime()> clock);

    /// Both pictures; two processors work at it where there are two. Throws
    /// OrvaneError::captureEncodingFailed.
    EncodedCapture encode(const QImage& image) const;

    /// encode() and save() in one, and quicker: the file is written while the agent's picture is still made.
    /// Where that one alone cannot be encoded, the file stays.
    EncodedCapture encodeAndSave(const QImage& image, const std::optional<QString>& appName,
                                 const QString& suffix = QString()) const;

    /// Writes the full-size picture under the name "<stamp>-<appName><suffix>.png", without "-<appName>"
    /// where there is none; the stamp is local time, "yyyyMMdd-HHmmss". An application may call itself
    /// anything: what a file name cannot hold is replaced. Whoever looks for the file once this has returned
    /// finds it whole. A failure is ignored: a capture that cannot be kept is still worth showing.
    void save(const QByteArray& fullPng, const std::optional<QString>& appName,
              const QString& suffix = QString()) const;

private:
    /// `handOn` gets the full-size picture as soon as that is there, on a thread of its own where two work.
    EncodedCapture encode(const QImage& image, const std::function<void(const QByteArray&)>& handOn) const;

    StorageManager& m_storage;
    const PngWriter& m_pngWriter;
    std::function<QDateTime()> m_clock;
};

/// `name` with what a file name cannot hold ('/', control characters) as '-', and shortened so that it takes
/// at most `mostBytes` bytes in UTF-8. The end is cut off, never the middle of a character.
QString legalFileName(const QString& name, qsizetype mostBytes);

} // namespace orvane

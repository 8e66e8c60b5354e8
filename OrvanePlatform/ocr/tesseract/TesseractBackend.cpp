#include "OrvanePlatform/ocr/tesseract/TesseractBackend.h"

#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/platform/PlatformError.h"
#include "OrvanePlatform/ocr/layout/LinePicture.h"
#include "OrvanePlatform/ocr/tesseract/LanguageData.h"

#include <QPainter>

#include <algorithm>
#include <atomic>
#include <functional>
#include <future>
#include <thread>

namespace orvane::ocr {

using namespace Qt::StringLiterals;

namespace {

// A dozen displays of 3840x2160; each pixel takes twelve bytes while lines are looked for.
constexpr qint64 mostPixels = 100'000'000;

// An engine takes some time to load and some memory to keep.
constexpr std::size_t mostReaders = 4;
constexpr std::size_t fewestLinesForAReader = 8;

std::size_t readersFor(std::size_t lines) {
    const std::size_t processors = std::max(1U, std::thread::hardware_concurrency());
    return std::clamp<std::size_t>(lines / fewestLinesForAReader, 1, std::min(processors, mostReaders));
}

/// The pixels alone, whatever the density; what is translucent is seen on white.
QImage opaque(QImage picture) {
    picture.setDevicePixelRatio(1);
    if (!picture.hasAlphaChannel())
        return picture.convertToFormat(QImage::Format_RGB32);
    QImage flat(picture.size(), QImage::Format_RGB32);
    flat.fill(Qt::white);
    QPainter(&flat).drawImage(0, 0, picture);
    return flat;
}

} // namespace

QStringList TesseractBackend::supportedLanguages() {
    const std::lock_guard lock(m_mutex);
    if (m_supported.isEmpty())
        m_supported = languagesWithData(TesseractEngine::installedData());
    return m_supported;
}

std::vector<TextLine> TesseractBackend::recognize(const QImage& picture, const QStringList& languages) {
    if (picture.isNull() || languages.isEmpty())
        return {};
    if (qint64{picture.width()} * picture.height() > mostPixels) {
        throw PlatformError(u"A picture of %1 x %2 pixels is too large to be read."_s.arg(picture.width())
                                .arg(picture.height()));
    }
    const QImage flat = opaque(picture);
    const std::vector<FoundLine> found = findLines(flat);
    if (found.empty())
        return {};
    if (found.size() == mostLines)
        logLine(u"OCR: of a picture with more lines, the topmost %1 are read"_s.arg(mostLines));

    const std::lock_guard lock(m_mutex);
    const std::vector<Readings> readings = readAll(flat, found, languages);
    const std::vector<Reading> chosen = chooseReadings(readings, languages);
    std::vector<TextLine> lines;
    lines.reserve(found.size());
    for (size_t index = 0; index < found.size(); ++index) {
        if (!chosen[index].text.isEmpty())
            lines.push_back({chosen[index].text, QRectF(found[index].box), chosen[index].confidence});
    }
    return lines;
}

std::vector<Readings> TesseractBackend::readAll(const QImage& picture, const std::vector<FoundLine>& lines,
                                                const QStringList& languages) {
    const std::size_t readerCount = readersFor(lines.size());
    while (m_readers.size() < readerCount)
        m_readers.push_back(std::make_unique<LanguageReader>());
    m_readers.front()->load(languages);

    std::vector<Readings> readings(lines.size());
    std::atomic<std::size_t> next = 0;
    const auto readOn = [&](LanguageReader& reader) {
        for (std::size_t index = next++; index < lines.size(); index = next++)
            readings[index] = reader.read(linePicture(picture, lines[index].box), languages);
    };
    std::vector<std::future<void>> others;
    others.reserve(readerCount);
    for (std::size_t index = 1; index < readerCount; ++index)
        others.push_back(std::async(std::launch::async, readOn, std::ref(*m_readers[index])));
    readOn(*m_readers.front());
    // Waits, and throws on what one of them has thrown.
    for (std::future<void>& other : others)
        other.get();
    return readings;
}

} // namespace orvane::ocr

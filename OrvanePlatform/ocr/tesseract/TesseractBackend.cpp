#include "OrvanePlatform/ocr/tesseract/TesseractBackend.h"

#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/platform/PlatformError.h"
#include "OrvanePlatform/ocr/tesseract/LanguageData.h"

#include <QPainter>

#include <algorithm>
#include <atomic>
#include <future>
#include <thread>

namespace orvane::ocr {

using namespace Qt::StringLiterals;

namespace {

// A dozen displays of 3840x2160; each pixel takes twelve bytes while lines are looked for.
constexpr qint64 mostPixels = 100'000'000;

// An engine takes some time to load and some memory to keep.
constexpr std::size_t mostThreads = 4;
constexpr std::size_t fewestLinesForAThread = 8;

std::size_t threadsAtMost() {
    return std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, mostThreads);
}

std::size_t threadsFor(std::size_t lines) {
    return std::clamp<std::size_t>(lines / fewestLinesForAThread, 1, threadsAtMost());
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

TesseractBackend::TesseractBackend()
    : m_reader(std::make_unique<LanguageReader>(threadsAtMost())) {}

TesseractBackend::~TesseractBackend() {
    m_reader.reset();
    TesseractEngine::releaseUnusedData();
}

QStringList TesseractBackend::supportedLanguages() {
    const std::lock_guard lock(m_mutex);
    if (m_supported.isEmpty())
        m_supported = languagesWithData(TesseractEngine::installedData());
    return m_supported;
}

PictureText TesseractBackend::recognize(const QImage& picture, const QStringList& languages,
                                        const IsTimeUp& isTimeUp) {
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

    const std::vector<Readings> readings = readAll(flat, found, languages, isTimeUp);
    const std::vector<Reading> chosen = chooseReadings(readings, languages);
    PictureText text{.lines = {},
                     .found = static_cast<qsizetype>(found.size()),
                     .unread = static_cast<qsizetype>(found.size() - readings.size())};
    text.lines.reserve(chosen.size());
    for (size_t index = 0; index < chosen.size(); ++index) {
        if (!chosen[index].text.isEmpty())
            text.lines.push_back({chosen[index].text, QRectF(found[index].box), chosen[index].confidence});
    }
    return text;
}

std::vector<Readings> TesseractBackend::readAll(const QImage& picture, const std::vector<FoundLine>& lines,
                                                const QStringList& languages, const IsTimeUp& isTimeUp) {
    const std::size_t threads = threadsFor(lines.size());
    std::vector<Readings> readings(lines.size());
    std::atomic<std::size_t> next = 0;
    const auto readOn = [&] {
        while (!isTimeUp()) {
            const std::size_t index = next++;
            if (index >= lines.size())
                return;
            readings[index] = m_reader->read(picture, lines[index].box, languages, isTimeUp);
        }
    };
    std::vector<std::future<void>> others;
    others.reserve(threads);
    for (std::size_t thread = 1; thread < threads; ++thread)
        others.push_back(std::async(std::launch::async, readOn));
    readOn();
    // Waits, and throws on what one of them has thrown.
    for (std::future<void>& other : others)
        other.get();
    // A line that was read has a reading, if only an empty one.
    const auto unread =
        std::find_if(readings.begin(), readings.end(), [](const Readings& ofLine) { return ofLine.empty(); });
    readings.erase(unread, readings.end());
    return readings;
}

} // namespace orvane::ocr

#include "OrvanePlatform/ocr/tesseract/TesseractEngine.h"

#include "OrvaneCore/platform/PlatformError.h"

#include <cmath>
#include <string>
#include <vector>

#include <leptonica/allheaders.h>
#include <malloc.h>
#include <omp.h>
#include <tesseract/baseapi.h>

namespace orvane::ocr {

using namespace Qt::StringLiterals;

namespace {

// What the data were trained with; Tesseract guesses one from the size of the picture where none is said.
constexpr int dotsPerInch = 300;

struct TextDeleter {
    void operator()(const char* text) const { delete[] text; }
};

/// Standard error belongs to the log, and what either library would say there is a failed call or an empty
/// text as well. Both settings are the process's, and not made for being written by two threads.
void silenceOnce() {
    static const bool isSilent = [] {
        setMsgSeverity(L_SEVERITY_NONE);
        return tesseract::TessBaseAPI().SetVariable("debug_file", "/dev/null");
    }();
    Q_UNUSED(isSilent)
}

/// A line is too little work to be worth sharing with other threads: that costs more than it saves. The
/// environment cannot say it, for the OpenMP library reads that when it is loaded, which Qt does before
/// main(). This limit holds for the calling thread.
void useOneThread() {
    omp_set_max_active_levels(0);
}

/// The mean of the characters' probabilities. Tesseract's own figure for a line is made of the worst
/// character of each word, and so low for what is long and in no dictionary, such as a path.
float confidenceOf(tesseract::ResultIterator& result) {
    // Tesseract gives a character of probability p the confidence 100 + 5 ln(p).
    constexpr float certain = 100.0F;
    constexpr float perLogarithm = 5.0F;
    float probabilities = 0;
    int characters = 0;
    do {
        probabilities += std::exp((result.Confidence(tesseract::RIL_SYMBOL) - certain) / perLogarithm);
        ++characters;
    } while (result.Next(tesseract::RIL_SYMBOL));
    return probabilities / static_cast<float>(characters);
}

} // namespace

TesseractEngine::TesseractEngine(const QString& dataName)
    : m_api(std::make_unique<tesseract::TessBaseAPI>()) {
    silenceOnce();
    if (m_api->Init(nullptr, dataName.toUtf8().constData(), tesseract::OEM_LSTM_ONLY) != 0) {
        throw PlatformError(u"Tesseract could not load its data \"%1\" from %2."_s.arg(
            dataName, QString::fromUtf8(m_api->GetDatapath())));
    }
    // The picture is one line, black on white: there is no layout to be found and nothing to be inverted.
    m_api->SetPageSegMode(tesseract::PSM_RAW_LINE);
    m_api->SetVariable("tessedit_do_invert", "0");
}

TesseractEngine::~TesseractEngine() = default;

QStringList TesseractEngine::installedData() {
    silenceOnce();
    tesseract::TessBaseAPI api;
    // There are no such data, but Tesseract knows its folder after it has looked for them.
    api.Init(nullptr, "none", tesseract::OEM_LSTM_ONLY);
    std::vector<std::string> names;
    api.GetAvailableLanguagesAsVector(&names);
    QStringList installed;
    installed.reserve(static_cast<qsizetype>(names.size()));
    for (const std::string& name : names)
        installed.append(QString::fromStdString(name));
    return installed;
}

void TesseractEngine::releaseUnusedData() {
    tesseract::TessBaseAPI::ClearPersistentCache();
    malloc_trim(0);
}

Reading TesseractEngine::readLine(const QImage& line) {
    useOneThread();
    m_api->SetImage(line.constBits(), line.width(), line.height(), 1, static_cast<int>(line.bytesPerLine()));
    m_api->SetSourceResolution(dotsPerInch);
    if (m_api->Recognize(nullptr) != 0) {
        throw PlatformError(
            u"Tesseract could not read a line of %1 x %2 pixels."_s.arg(line.width()).arg(line.height()));
    }
    const std::unique_ptr<tesseract::ResultIterator> result(m_api->GetIterator());
    if (!result || result->Empty(tesseract::RIL_SYMBOL))
        return {};
    const std::unique_ptr<const char, TextDeleter> text(result->GetUTF8Text(tesseract::RIL_TEXTLINE));
    return {QString::fromUtf8(text.get()).simplified(), confidenceOf(*result)};
}

} // namespace orvane::ocr

#include "OrvanePlatform/ocr/tesseract/LanguageData.h"

#include "OrvaneCore/platform/PlatformError.h"

#include <array>

namespace orvane::ocr {

using namespace Qt::StringLiterals;

namespace {

struct LanguageData {
    QLatin1StringView language;
    QLatin1StringView dataName;
};

constexpr std::array knownLanguages{
    LanguageData{"en-US"_L1, "eng"_L1},       LanguageData{"zh-Hans"_L1, "chi_sim"_L1},
    LanguageData{"zh-Hant"_L1, "chi_tra"_L1}, LanguageData{"ja-JP"_L1, "jpn"_L1},
    LanguageData{"ko-KR"_L1, "kor"_L1},
};

} // namespace

QString dataNameOf(const QString& language) {
    for (const LanguageData& known : knownLanguages) {
        if (known.language == language)
            return known.dataName;
    }
    throw PlatformError(u"There are no data for reading text in %1."_s.arg(language));
}

LineShape lineShapeFor(const QString& language) {
    // What reading takes goes with the width of the line, and so one that is less enlarged, with more white
    // above and below, is read sooner. The Korean network takes 48 pixels but reads such lines as well.
    return language.startsWith(u"zh-"_s) ? tallLine : lowLine;
}

QStringList languagesWithData(const QStringList& dataNames) {
    QStringList languages;
    for (const LanguageData& known : knownLanguages) {
        if (dataNames.contains(known.dataName))
            languages.append(known.language);
    }
    return languages;
}

} // namespace orvane::ocr

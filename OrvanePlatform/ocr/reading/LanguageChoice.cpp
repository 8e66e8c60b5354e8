#include "OrvanePlatform/ocr/reading/LanguageChoice.h"

#include <algorithm>

namespace orvane::ocr {

using namespace Qt::StringLiterals;

namespace {

// The least confident of 720 lines of English interface text had 0.73. What is read as English in another
// script has less than 0.55 if it is long, less than 0.65 if it is not, and anything if it is very short.
constexpr int fewLetters = 4;
constexpr int someLetters = 16;
constexpr float doubtOfFewLetters = 0.9F;
constexpr float doubtOfSomeLetters = 0.75F;
constexpr float doubtOfManyLetters = 0.65F;
constexpr float unmistakable = 0.8F;
// Japanese data know Latin letters and take Hangul for Han. What they read in 640 lines in other scripts has
// three in ten characters of Han and kana or more, or else was read with less than this as English.
constexpr float leastOfLatin = 0.5F;
constexpr double fewOfHan = 0.3;
// What the language of the picture counts for, against that of a single line.
constexpr float leadOfPicture = 0.1F;
// And what a place further up among the preferred languages counts for. Simplified and traditional characters
// are read with nearly one confidence by the data of either, each turning them into its own.
constexpr float leadOfPlace = 0.03F;

bool isOf(QChar::Script script, QStringView text) {
    return std::any_of(text.begin(), text.end(),
                       [script](QChar character) { return character.script() == script; });
}

bool isInKana(const QString& text) {
    return isOf(QChar::Script_Hiragana, text) || isOf(QChar::Script_Katakana, text);
}

bool isInOwnScript(const QString& language, const QString& text) {
    if (language == u"ko-KR"_s)
        return isOf(QChar::Script_Hangul, text);
    if (language == u"ja-JP"_s && isInKana(text))
        return true;
    return isOf(QChar::Script_Han, text);
}

bool isHanOrKana(QChar character) {
    const QChar::Script script = character.script();
    return script == QChar::Script_Han || script == QChar::Script_Hiragana ||
           script == QChar::Script_Katakana;
}

/// Whether Japanese data, too, see Latin letters where the preferred language does.
bool isLatin(const Reading& japanese, const Reading& preferred) {
    const QString& text = japanese.text;
    const auto strange = std::count_if(text.begin(), text.end(), isHanOrKana);
    const auto all =
        std::count_if(text.begin(), text.end(), [](QChar character) { return !character.isSpace(); });
    return preferred.confidence >= leastOfLatin && all > 0 &&
           static_cast<double>(strange) < fewOfHan * static_cast<double>(all);
}

/// Spaces and punctuation speak for no language, and one takes for two marks what another one takes for one.
float lettersIn(const QString& text) {
    return static_cast<float>(std::count_if(text.begin(), text.end(),
                                            [](QChar character) { return character.isLetterOrNumber(); }));
}

QString languageOfPicture(const std::vector<Readings>& lines, const QStringList& languages) {
    QString leading;
    float most = 0;
    for (const QString& language : languages) {
        float sum = 0;
        for (const Readings& readings : lines) {
            const auto found = readings.find(language);
            if (found != readings.end() && isInOwnScript(language, found->second.text)) {
                sum += (found->second.confidence -
                        leadOfPlace * static_cast<float>(languages.indexOf(language))) *
                       lettersIn(found->second.text);
            }
        }
        if (sum > most) {
            most = sum;
            leading = language;
        }
    }
    return leading;
}

} // namespace

bool isDoubtful(const Reading& reading) {
    if (reading.text.size() <= fewLetters)
        return reading.confidence < doubtOfFewLetters;
    return reading.confidence <
           (reading.text.size() <= someLetters ? doubtOfSomeLetters : doubtOfManyLetters);
}

bool isUnmistakable(const QString& language, const Reading& reading) {
    if (reading.confidence < unmistakable)
        return false;
    return (language == u"ja-JP"_s && isInKana(reading.text)) ||
           (language == u"ko-KR"_s && isOf(QChar::Script_Hangul, reading.text));
}

QStringList inOrderOfAsking(const QStringList& languages) {
    // The last ones have scripts of their own, and the Japanese data tell Latin letters from all others.
    QStringList order(languages.crbegin(), languages.crend() - 1);
    if (order.removeOne(u"ja-JP"_s))
        order.prepend(u"ja-JP"_s);
    order.prepend(languages.front());
    return order;
}

bool isSettledBy(const QString& language, const Reading& reading, const Reading& preferred) {
    return isUnmistakable(language, reading) || (language == u"ja-JP"_s && isLatin(reading, preferred));
}

std::vector<Reading> chooseReadings(const std::vector<Readings>& lines, const QStringList& languages) {
    const QString leading = languageOfPicture(lines, languages);
    std::vector<Reading> chosen;
    chosen.reserve(lines.size());
    for (const Readings& readings : lines) {
        const Reading* best = nullptr;
        float bestScore = 0;
        for (const QString& language : languages) {
            const auto found = readings.find(language);
            if (found == readings.end())
                continue;
            const Reading& reading = found->second;
            const bool isPreferred = language == languages.front();
            if (!isPreferred && !isInOwnScript(language, reading.text))
                continue;
            const float score = reading.confidence + (language == leading ? leadOfPicture : 0) -
                                leadOfPlace * static_cast<float>(languages.indexOf(language));
            if (best == nullptr || score > bestScore) {
                best = &reading;
                bestScore = score;
            }
        }
        chosen.push_back(best == nullptr ? Reading() : *best);
    }
    return chosen;
}

} // namespace orvane::ocr

#include "OrvanePlatform/x11/ScaleFactors.h"

#include <QStringList>

#include <cmath>

namespace orvane::x11 {

namespace {

constexpr qreal baseDpi = 96.0;

std::optional<qreal> positiveNumber(const QString& text) {
    bool ok = false;
    const qreal number = text.toDouble(&ok);
    return ok && std::isfinite(number) && number > 0 ? std::optional(number) : std::nullopt;
}

qreal rounded(qreal factor, const QString& policy) {
    if (policy == u"Round")
        return std::round(factor);
    if (policy == u"Ceil")
        return std::ceil(factor);
    if (policy == u"Floor")
        return std::floor(factor);
    if (policy == u"RoundPreferFloor")
        return factor - std::floor(factor) < 0.75 ? std::floor(factor) : std::ceil(factor);
    return factor;
}

qreal factorFromDesktop(const ScaleFactors::Inputs& inputs) {
    if (inputs.highDpiScaling == u"0")
        return 1.0;
    const std::optional<qreal> fontDpi = positiveNumber(inputs.fontDpi);
    const qreal dpi = fontDpi ? *fontDpi : inputs.xftDpi ? qreal(*inputs.xftDpi) : baseDpi;
    // Qt draws nothing below its base resolution.
    return std::max(1.0, rounded(dpi / baseDpi, inputs.roundingPolicy));
}

} // namespace

ScaleFactors::ScaleFactors(const Inputs& inputs)
    : m_global(positiveNumber(inputs.scaleFactor).value_or(1.0))
    , m_fromDesktop(factorFromDesktop(inputs)) {
    const QStringList entries = inputs.screenScaleFactors.split(u';');
    for (const QString& entry : entries) {
        const qsizetype equals = entry.lastIndexOf(u'=');
        const std::optional<qreal> factor = positiveNumber(entry.mid(equals + 1));
        if (equals < 0) {
            m_byIndex.push_back(factor);
        } else if (factor) {
            m_byName.insert(entry.left(equals), *factor);
        }
    }
}

qreal ScaleFactors::factor(const QString& screenName, int screenIndex) const {
    const auto named = m_byName.constFind(screenName);
    if (named != m_byName.constEnd())
        return m_global * *named;
    const auto index = static_cast<size_t>(screenIndex);
    if (index < m_byIndex.size() && m_byIndex[index])
        return m_global * *m_byIndex[index];
    return m_global * m_fromDesktop;
}

std::optional<int> xftDpi(const QString& resources) {
    const QStringList lines = resources.split(u'\n');
    for (const QString& line : lines) {
        const qsizetype colon = line.indexOf(u':');
        if (colon < 0 || line.left(colon).trimmed() != u"Xft.dpi")
            continue;
        if (const auto dpi = positiveNumber(line.mid(colon + 1).trimmed()))
            return qRound(*dpi);
    }
    return std::nullopt;
}

ScaleFactors::Inputs scaleInputsFromEnvironment() {
    return {
        .scaleFactor = qEnvironmentVariable("QT_SCALE_FACTOR"),
        .screenScaleFactors = qEnvironmentVariable("QT_SCREEN_SCALE_FACTORS"),
        .highDpiScaling = qEnvironmentVariable("QT_ENABLE_HIGHDPI_SCALING"),
        .roundingPolicy = qEnvironmentVariable("QT_SCALE_FACTOR_ROUNDING_POLICY"),
        .fontDpi = qEnvironmentVariable("QT_FONT_DPI"),
        .xftDpi = std::nullopt,
    };
}

} // namespace orvane::x11

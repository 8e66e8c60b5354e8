#pragma once

#include <QHash>
#include <QString>
#include <QtGlobal>

#include <optional>
#include <vector>

namespace orvane::x11 {

/// The scale of each screen, found as Qt finds it for its own windows on X11 (Qt 6.4, "High DPI"), so that
/// the points of this program are the points of every Qt window although no Qt window is needed to know them.
class ScaleFactors {
public:
    /// What the rules look at: environment variables and the desktop's font resolution.
    struct Inputs {
        QString scaleFactor = {};        ///< QT_SCALE_FACTOR
        QString screenScaleFactors = {}; ///< QT_SCREEN_SCALE_FACTORS
        QString highDpiScaling = {};     ///< QT_ENABLE_HIGHDPI_SCALING
        QString roundingPolicy = {};     ///< QT_SCALE_FACTOR_ROUNDING_POLICY
        QString fontDpi = {};            ///< QT_FONT_DPI
        std::optional<int> xftDpi = {};  ///< The X resource Xft.dpi
    };

    explicit ScaleFactors(const Inputs& inputs);

    /// The scale of the screen of that name at that place (from 0) in the order of screens; above 0.
    qreal factor(const QString& screenName, int screenIndex) const;

private:
    qreal m_global = 1.0;
    qreal m_fromDesktop = 1.0;
    QHash<QString, qreal> m_byName;
    std::vector<std::optional<qreal>> m_byIndex;
};

/// The font resolution in the text of the X server's RESOURCE_MANAGER property.
std::optional<int> xftDpi(const QString& resources);

/// The environment variables among the inputs, as they are now.
ScaleFactors::Inputs scaleInputsFromEnvironment();

} // namespace orvane::x11

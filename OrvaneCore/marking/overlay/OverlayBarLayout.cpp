#include "OrvaneCore/marking/overlay/OverlayBarLayout.h"

#include "OrvaneCore/surface/WidgetLook.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr int bottomGap = 32;
constexpr int widestPadding = 12;
constexpr int narrowestPadding = 4;
/// An icon and a hint that there was more.
constexpr int narrowestLabel = 48;

using Kind = OverlayBarPart::Kind;

/// Between two parts.
int partSpacing(int padding) {
    return padding / 3;
}

/// The widest that contents may be.
struct Limits {
    int title = 0;
    int label = 0;
};

int partWidth(const OverlayBarPart& part, int padding, const Limits& limits) {
    switch (part.kind) {
    case Kind::button:
        return std::min(part.contentWidth, limits.title) + 2 * padding;
    case Kind::label:
        return std::min(part.contentWidth, limits.label);
    case Kind::divider:
        break;
    }
    return look::dividerWidth;
}

int barWidth(const std::vector<OverlayBarPart>& parts, int padding, const Limits& limits) {
    int width = 2 * look::stripPadding - partSpacing(padding);
    for (const OverlayBarPart& part : parts)
        width += partWidth(part, padding, limits) + partSpacing(padding);
    return width;
}

int widestContent(const std::vector<OverlayBarPart>& parts, Kind kind) {
    int widest = 0;
    for (const OverlayBarPart& part : parts)
        widest = std::max(widest, part.kind == kind ? part.contentWidth : 0);
    return widest;
}

} // namespace

OverlayBarLayout overlayBarLayout(const std::vector<OverlayBarPart>& parts, const QRect& viewRect) {
    OverlayBarLayout layout{.bar = {}, .parts = {}, .padding = widestPadding};
    Limits limits{.title = widestContent(parts, Kind::button), .label = widestContent(parts, Kind::label)};
    const auto isTooWide = [&] { return barWidth(parts, layout.padding, limits) > viewRect.width(); };
    while (layout.padding > narrowestPadding && isTooWide())
        --layout.padding;
    while (limits.label > narrowestLabel && isTooWide())
        --limits.label;
    while (limits.title > 0 && isTooWide())
        --limits.title;

    const int width = std::min(barWidth(parts, layout.padding, limits), std::max(0, viewRect.width()));
    layout.bar =
        QRect(viewRect.x() + (viewRect.width() - width) / 2,
              std::max(viewRect.y(), viewRect.y() + viewRect.height() - bottomGap - look::stripHeight), width,
              look::stripHeight);
    int x = look::stripPadding;
    layout.parts.reserve(parts.size());
    for (const OverlayBarPart& part : parts) {
        const int height = part.kind == Kind::divider ? look::dividerHeight : look::buttonHeight;
        layout.parts.emplace_back(x, (look::stripHeight - height) / 2,
                                  partWidth(part, layout.padding, limits), height);
        x += layout.parts.back().width() + partSpacing(layout.padding);
    }
    return layout;
}

} // namespace orvane

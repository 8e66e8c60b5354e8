#include "OrvaneCore/present/session/PresentSession.h"

#include "tests/unit/present/session/SampleSession.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace orvane {

using namespace Qt::StringLiterals;
using test::fullBundle;

TEST(PresentSession, ProvenanceIsTheFixedSentence) {
    EXPECT_EQ(sessionProvenance().toStdString(),
              "Arrows, boxes, ellipses, highlights, and text in these images are user annotations added with "
              "Orvane \xe2\x80\x94 not part of the captured UI.");
    EXPECT_EQ(SessionMeta().provenance, sessionProvenance());
}

TEST(PresentSession, ComparesEveryFieldExactly) {
    const std::vector<std::function<void(PresentSessionBundle&)>> changes{
        [](PresentSessionBundle& bundle) { bundle.meta.schemaVersion = 2; },
        [](PresentSessionBundle& bundle) { bundle.meta.id += u'x'; },
        [](PresentSessionBundle& bundle) { ++bundle.meta.createdAtMs; },
        [](PresentSessionBundle& bundle) { bundle.meta.title.reset(); },
        [](PresentSessionBundle& bundle) { bundle.meta.provenance += u'x'; },
        [](PresentSessionBundle& bundle) { bundle.meta.reviewedAtMs.reset(); },
        [](PresentSessionBundle& bundle) { bundle.displays.clear(); },
        [](PresentSessionBundle& bundle) { --bundle.displays[0].displayId; },
        [](PresentSessionBundle& bundle) { ++bundle.displays[0].index; },
        [](PresentSessionBundle& bundle) { bundle.displays[0].bounds.moveTop(0.5 + 1e-15); },
        [](PresentSessionBundle& bundle) { bundle.displays[0].bounds.setWidth(1920 + 1e-12); },
        [](PresentSessionBundle& bundle) { bundle.displays[0].scale += 1e-15; },
        [](PresentSessionBundle& bundle) { bundle.window.reset(); },
        [](PresentSessionBundle& bundle) { bundle.window->appName += u'x'; },
        [](PresentSessionBundle& bundle) { bundle.window->title += u'x'; },
        [](PresentSessionBundle& bundle) { bundle.window->bounds.setHeight(4 + 1e-15); },
        [](PresentSessionBundle& bundle) { bundle.strokes.clear(); },
        [](PresentSessionBundle& bundle) { bundle.strokes[0].id += u'x'; },
        [](PresentSessionBundle& bundle) { bundle.strokes[0].kind += u'x'; },
        [](PresentSessionBundle& bundle) { bundle.strokes[0].colorHex += u'x'; },
        [](PresentSessionBundle& bundle) { bundle.strokes[0].strokeWidth += 1e-15; },
        [](PresentSessionBundle& bundle) { bundle.strokes[0].text += u'x'; },
        [](PresentSessionBundle& bundle) { bundle.strokes[0].label += u'x'; },
        [](PresentSessionBundle& bundle) { bundle.strokes[0].imageFile.reset(); },
        [](PresentSessionBundle& bundle) { bundle.strokes[0].rotation += 1e-15; },
        [](PresentSessionBundle& bundle) { bundle.strokes[0].role += u'x'; },
        [](PresentSessionBundle& bundle) { bundle.strokes[0].removed = false; },
        [](PresentSessionBundle& bundle) { bundle.strokes[0].startAbs.rx() += 1e-12; },
        [](PresentSessionBundle& bundle) { bundle.strokes[0].endAbs.ry() += 1e-14; },
        [](PresentSessionBundle& bundle) { bundle.strokes[0].startNorm.rx() += 1e-15; },
        [](PresentSessionBundle& bundle) { bundle.strokes[0].endNorm.ry() += 1e-15; },
        [](PresentSessionBundle& bundle) { bundle.strokes[0].displayIndex.reset(); },
        [](PresentSessionBundle& bundle) { ++bundle.strokes[0].zOrder; },
        [](PresentSessionBundle& bundle) { bundle.strokes[0].timestampMs.reset(); },
    };
    EXPECT_EQ(fullBundle(), fullBundle());
    for (std::size_t i = 0; i < changes.size(); ++i) {
        PresentSessionBundle bundle = fullBundle();
        changes[i](bundle);
        EXPECT_NE(bundle, fullBundle()) << i;
    }
}

} // namespace orvane

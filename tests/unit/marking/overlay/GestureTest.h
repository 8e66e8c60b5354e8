#pragma once

#include "OrvaneCore/marking/overlay/MarkerManager.h"
#include "OrvaneCore/marking/overlay/OverlayGestures.h"
#include "tests/support/InMemorySettings.h"
#include "tests/unit/marking/ExactGeometry.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace orvane::test {

/// Remembers what the gestures ask of their view.
class RecordingView : public OverlayGestures::View {
public:
    void openLabelEditor(const QUuid& marker, const QPointF& viewPoint) override {
        calls.emplace_back("open label");
        editedMarker = marker;
        place = viewPoint;
    }
    void openTextEditor(const QUuid& annotation, const QPointF& viewPoint) override {
        calls.emplace_back("open text");
        editedAnnotation = annotation;
        place = viewPoint;
    }
    void closeEditors() override {
        calls.emplace_back("close editors");
        whenClosing();
    }
    void closeTextEditor() override {
        calls.emplace_back("close text");
        whenClosing();
    }
    void takeKeyboard() override { calls.emplace_back("take keyboard"); }

    /// In their order.
    std::vector<std::string> calls;
    QUuid editedMarker;
    QUuid editedAnnotation;
    /// Where the editor that was opened last belongs.
    QPointF place;
    std::function<void()> whenClosing = [] {};
};

/// The document of the overlay, and a view.
class MarkedScreenTest : public testing::Test {
protected:
    QUuid region(const QRectF& rect) { return manager.add(rect, QString()).id; }
    /// Without selecting it.
    QUuid shape(Annotation::Kind kind, const QPointF& start, const QPointF& end) {
        const Annotation added{.kind = kind, .start = start, .end = end, .strokeWidth = 3};
        manager.addAnnotation(added);
        manager.setSelectedAnnotationId(std::nullopt);
        return added.id;
    }
    const Marker& markerNumber(int number) const { return manager.markers().at(std::size_t(number) - 1); }
    const Annotation& annotationNumber(int number) const {
        return manager.annotations().at(std::size_t(number) - 1);
    }

    InMemorySettings settings;
    MarkerManager manager{settings};
    RecordingView view;
};

/// One view with its origin at the global one, unless a test moves it.
class GestureTest : public MarkedScreenTest {
protected:
    GestureTest() { gestures.setFrame({0, 0, 1920, 1080}, 1080); }

    void press(const QPointF& point) { gestures.pointerPressed(point); }
    void doublePress(const QPointF& point) { gestures.pointerDoublePressed(point); }
    void dragTo(const QPointF& point) { gestures.pointerDragged(point); }
    void release(const QPointF& point) { gestures.pointerReleased(point); }
    void click(const QPointF& point) {
        press(point);
        release(point);
    }
    void drag(const QPointF& from, const QPointF& to) {
        press(from);
        dragTo(to);
        release(to);
    }

    OverlayGestures gestures{manager, view};
};

} // namespace orvane::test

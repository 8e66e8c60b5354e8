// Toasts as they are seen on real desktops.
#include "OrvaneCore/surface/ToastPanel.h"
#include "OrvaneCore/surface/ToastWindow.h"
#include "tests/desktop/GuiFixture.h"

#include <QElapsedTimer>
#include <QMouseEvent>

namespace orvane::test {

using namespace std::chrono_literals;

namespace {

constexpr QRgb backdrop = 0xffffffff;
constexpr QRgb plate = 0xff1f1f1f;
const QRgb plateOverBackdrop = blended(plate, 0.9, backdrop);

/// A window that notes what happens to it.
class Witness : public QWidget {
public:
    Witness() {
        QPalette colors;
        colors.setColor(QPalette::Window, QColor::fromRgb(backdrop));
        setPalette(colors);
    }

    int presses = 0;

protected:
    void mousePressEvent(QMouseEvent* /*event*/) override { ++presses; }
};

class Toasts : public GuiFixture {
protected:
    using GuiFixture::GuiFixture;

    static constexpr auto longTime = 60s;

    /// In pixels, where all displays have that scale.
    static QRect frame(const ToastPanel& panel, int scale = 1) {
        return {panel.frame().topLeft() * scale, panel.frame().size() * scale};
    }

    static QPoint besideText(const QRect& frame) { return {frame.left() + 8, frame.center().y()}; }

    /// A screen of one colour, without a window manager having a say.
    std::unique_ptr<TestWindow> cover(const QString& geometry) {
        return colorWindow(geometry, u"white"_s, {u"--override-redirect"_s});
    }

    ToastWindow toast{surfaces};
};

class ToastsUncomposited : public Toasts {
protected:
    ToastsUncomposited()
        : Toasts({u"--size"_s, u"1280x800"_s, u"--no-compositor"_s}) {}
};

class ToastsOnTwoMonitors : public Toasts {
protected:
    ToastsOnTwoMonitors()
        : Toasts({u"--monitors"_s, u"A:800x600+0+0,B:640x480+800+100"_s}) {}
};

class ToastsAtTwiceTheScale : public Toasts {
protected:
    ToastsAtTwiceTheScale()
        : Toasts({u"--size"_s, u"1600x1200"_s, u"--scale"_s, u"2"_s}) {}
};

} // namespace

TEST_F(Toasts, ShowPlateIconAndBothTexts) {
    const auto ground = cover(u"1280x800+0+0"_s);
    toast.showRich(u"Recording saved"_s, u"Copied to clipboard"_s, u"checkmark.circle.fill"_s, longTime);
    ASSERT_EQ(toast.panels().size(), 1U);
    const QRect at = frame(*toast.panels().front());
    EXPECT_EQ(at.top(), 12);
    EXPECT_LE(std::abs(at.left() + at.right() - 1279), 1);
    ASSERT_TRUE(comesToShow(besideText(at), plateOverBackdrop));

    const QImage picture = screen();
    // The corners are round.
    EXPECT_FALSE(isColor(picture, at.topLeft() + QPoint(1, 1), plateOverBackdrop, 20));
    EXPECT_TRUE(isColor(picture, QPoint(at.center().x(), at.bottom() - 4), plateOverBackdrop, 2));
    // A disc with a checkmark cut out.
    const QRect icon(at.left() + 20, at.center().y() - 13, 28, 28);
    EXPECT_TRUE(isColor(picture, QPoint(icon.center().x(), icon.top() + 5), white, 2));
    EXPECT_TRUE(isColor(picture, QPoint(icon.left() + 12, icon.top() + 18), plateOverBackdrop, 24));
    // The title is white, the subtitle grey.
    const auto brightest = [&picture](const QRect& area) {
        int found = 0;
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x)
                found = std::max(found, qRed(picture.pixel(x, y)));
        }
        return found;
    };
    const int textLeft = at.left() + 56;
    EXPECT_GT(brightest(QRect(textLeft, at.top() + 12, 60, 18)), 230);
    const int subtitle = brightest(QRect(textLeft, at.bottom() - 12 - 13, 60, 14));
    EXPECT_GT(subtitle, 120);
    EXPECT_LE(subtitle, 155);
    // A shadow, and none of it under the plate.
    const QRgb below = picture.pixel(at.center().x(), at.bottom() + 6);
    EXPECT_LT(qRed(below), 245);
    EXPECT_GT(qRed(below), 120);
}

TEST_F(Toasts, WithoutAnIconBeginWithTheText) {
    toast.showRich(u"Title"_s, {}, u"no.such.symbol"_s, longTime);
    toast.show(u"Title"_s, longTime);
    ASSERT_EQ(toast.panels().size(), 2U);
    EXPECT_EQ(toast.panels()[0]->frame(), toast.panels()[1]->frame());
    toast.showRich(u"Title"_s, {}, u"trash"_s, longTime);
    EXPECT_EQ(toast.panels()[2]->frame().width(), toast.panels()[1]->frame().width() + 36);
    toast.showRich(u"Title"_s, u""_s, {}, longTime);
    EXPECT_EQ(toast.panels()[3]->frame(), toast.panels()[1]->frame());
}

TEST_F(Toasts, GoAfterTheirTime) {
    const auto ground = cover(u"1280x800+0+0"_s);
    QElapsedTimer shown;
    shown.start();
    toast.show(u"Short"_s, 0.8s);
    const QRect at = frame(*toast.panels().front());
    ASSERT_TRUE(comesToShow(besideText(at), plateOverBackdrop));
    ASSERT_TRUE(eventuallyInLoop([&] { return toast.panels().empty(); }));
    EXPECT_GE(shown.elapsed(), 800);
    EXPECT_TRUE(comesToShow(besideText(at), backdrop));
}

TEST_F(Toasts, FadeOut) {
    const auto ground = cover(u"1280x800+0+0"_s);
    // On a busy machine a whole fading can pass between two looks.
    bool wasBetween = false;
    for (int attempt = 0; attempt < 10 && !wasBetween; ++attempt) {
        toast.show(u"Fading"_s, 0.5s);
        const QPoint place = besideText(frame(*toast.panels().front()));
        ASSERT_TRUE(comesToShow(place, plateOverBackdrop));
        ASSERT_TRUE(eventuallyInLoop([&] {
            const int value = qRed(screen().pixel(place));
            wasBetween = wasBetween || (value > qRed(plateOverBackdrop) + 20 && value < 235);
            return toast.panels().empty();
        }));
        ASSERT_TRUE(comesToShow(place, backdrop));
    }
    EXPECT_TRUE(wasBetween) << "there was nothing between shown and gone";
}

TEST_F(Toasts, DoNotWaitForEachOther) {
    toast.show(u"Long"_s, longTime);
    toast.show(u"Short"_s, 0.1s);
    ASSERT_EQ(toast.panels().size(), 2U);
    const ToastPanel* lasting = toast.panels().front();
    ASSERT_TRUE(eventuallyInLoop([&] { return toast.panels().size() == 1; }));
    EXPECT_EQ(toast.panels().front(), lasting);
    EXPECT_TRUE(lasting->isVisible());
}

TEST_F(Toasts, HeldBackHaveWhatIsLeftOfTheirTimeAfterwards) {
    const auto ground = cover(u"1280x800+0+0"_s);
    QElapsedTimer shown;
    shown.start();
    toast.show(u"Earlier"_s, 2s);
    const QPoint place = besideText(frame(*toast.panels().front()));
    ASSERT_TRUE(comesToShow(place, plateOverBackdrop));
    toast.setHeldBack(true);
    toast.setHeldBack(true);
    EXPECT_TRUE(comesToShow(place, backdrop));
    EXPECT_FALSE(toast.panels().front()->isVisible());
    // Longer than it would have been there.
    ASSERT_TRUE(eventuallyInLoop([&] { return shown.elapsed() > 2500; }));
    ASSERT_EQ(toast.panels().size(), 1U);
    toast.setHeldBack(false);
    EXPECT_TRUE(comesToShow(place, plateOverBackdrop));
    EXPECT_TRUE(eventuallyInLoop([&] { return toast.panels().empty(); }));
    EXPECT_TRUE(comesToShow(place, backdrop));
}

TEST_F(Toasts, HeldBackComeLater) {
    const auto ground = cover(u"1280x800+0+0"_s);
    toast.setHeldBack(true);
    toast.show(u"First"_s, longTime);
    toast.showRich(u"Second"_s, u"with all"_s, u"trash"_s, longTime);
    EXPECT_TRUE(toast.panels().empty());
    toast.setHeldBack(false);
    ASSERT_EQ(toast.panels().size(), 2U);
    EXPECT_EQ(toast.panels()[0]->accessibleName(), u"First"_s);
    EXPECT_EQ(toast.panels()[1]->accessibleDescription(), u"with all"_s);
    EXPECT_TRUE(comesToShow(besideText(frame(*toast.panels()[1])), plateOverBackdrop, 40));
    toast.setHeldBack(true);
    toast.setHeldBack(false);
    EXPECT_EQ(toast.panels().size(), 2U);
}

TEST_F(Toasts, ThatFadeWhenTheyAreHeldBackAreOver) {
    const auto ground = cover(u"1280x800+0+0"_s);
    toast.show(u"Fading"_s, 0.5s);
    const QPoint place = besideText(frame(*toast.panels().front()));
    ASSERT_TRUE(comesToShow(place, plateOverBackdrop));
    ASSERT_TRUE(eventuallyInLoop(
        [&] { return toast.panels().empty() || screen().pixel(place) != plateOverBackdrop; }));
    toast.setHeldBack(true);
    EXPECT_TRUE(toast.panels().empty());
    EXPECT_TRUE(comesToShow(place, backdrop));
    toast.setHeldBack(false);
    EXPECT_TRUE(toast.panels().empty());
}

TEST_F(Toasts, GoWithTheirOwner) {
    const auto ground = cover(u"1280x800+0+0"_s);
    auto owner = std::make_unique<ToastWindow>(surfaces);
    owner->show(u"Left over"_s, longTime);
    const QPoint place = besideText(frame(*owner->panels().front()));
    ASSERT_TRUE(comesToShow(place, plateOverBackdrop));
    owner.reset();
    EXPECT_TRUE(comesToShow(place, backdrop));
}

TEST_F(Toasts, CutTextsThatAreWiderThanTheScreen) {
    toast.showRich(QString(1000, u'W'), QString(1000, u'w') + u"\nsecond line"_s, {}, longTime);
    const QRect at = toast.panels().front()->frame();
    EXPECT_GE(at.left(), 12);
    EXPECT_LE(at.right(), 1280 - 12);
    EXPECT_GT(at.width(), 1200);
}

TEST_F(Toasts, StandAboveAFullScreenWindowAndTakeNothingFromIt) {
    Witness witness;
    witness.showFullScreen();
    ASSERT_TRUE(comesToShow({640, 400}, backdrop));
    ASSERT_TRUE(eventuallyInLoop([&] { return activeWindow() == qint64(witness.winId()); }));
    toast.showRich(u"Above"_s, u"all others"_s, {}, longTime);
    const QRect at = frame(*toast.panels().front());
    ASSERT_TRUE(comesToShow(besideText(at), plateOverBackdrop));
    EXPECT_EQ(activeWindow(), qint64(witness.winId()));
    EXPECT_TRUE(witness.isActiveWindow());

    clickAt(at.center());
    EXPECT_TRUE(eventuallyInLoop([&] { return witness.presses == 1; })) << "the click did not pass through";
    EXPECT_TRUE(comesToShow(besideText(at), plateOverBackdrop)) << "the click brought the window above";
    EXPECT_EQ(activeWindow(), qint64(witness.winId()));
}

TEST_F(ToastsUncomposited, AreOpaqueAndRound) {
    const auto ground = cover(u"1280x800+0+0"_s);
    toast.showRich(u"Plain"_s, u"but legible"_s, u"trash"_s, longTime);
    const QRect at = frame(*toast.panels().front());
    ASSERT_TRUE(comesToShow(besideText(at), plate));
    const QImage picture = screen();
    EXPECT_TRUE(isColor(picture, at.topLeft() + QPoint(1, 1), backdrop));
    EXPECT_TRUE(isColor(picture, at.bottomRight() - QPoint(1, 1), backdrop));
    EXPECT_TRUE(isColor(picture, QPoint(at.center().x(), at.bottom() + 4), backdrop));
    const QRect text(at.left() + 56, at.top() + 12, 40, 18);
    EXPECT_GT(inkBounds(picture.copy(text), plate, 150).width(), 20);
}

TEST_F(ToastsUncomposited, StandAboveAFullScreenWindow) {
    Witness witness;
    witness.showFullScreen();
    ASSERT_TRUE(eventuallyInLoop([&] { return activeWindow() == qint64(witness.winId()); }));
    toast.show(u"Above"_s, longTime);
    const QRect at = frame(*toast.panels().front());
    ASSERT_TRUE(comesToShow(besideText(at), plate));
    clickAt(at.center());
    EXPECT_TRUE(eventuallyInLoop([&] { return witness.presses == 1; }));
}

TEST_F(ToastsOnTwoMonitors, AreSeenOnBoth) {
    const auto ground = cover(u"1440x600+0+0"_s);
    toast.show(u"Everywhere"_s, longTime);
    const auto panels = toast.panels();
    ASSERT_EQ(panels.size(), 2U);
    for (const ToastPanel* panel : panels)
        EXPECT_TRUE(comesToShow(besideText(frame(*panel)), plateOverBackdrop));
    EXPECT_EQ(panels[0]->frame().top(), 12);
    EXPECT_LE(std::abs(panels[0]->frame().center().x() - 400), 1);
    EXPECT_EQ(panels[1]->frame().top(), 112);
    EXPECT_LE(std::abs(panels[1]->frame().center().x() - 1120), 1);
}

TEST_F(ToastsAtTwiceTheScale, AreTwiceAsLargeInPixels) {
    const auto ground = cover(u"1600x1200+0+0"_s);
    toast.showRich(u"Large"_s, {}, u"record.circle.fill"_s, longTime);
    const ToastPanel& panel = *toast.panels().front();
    EXPECT_EQ(panel.frame().top(), 12);
    EXPECT_LE(std::abs(panel.frame().center().x() - 400), 1);
    const QRect at = frame(panel, 2);
    ASSERT_TRUE(comesToShow(besideText(at), plateOverBackdrop));
    const QImage picture = screen();
    EXPECT_TRUE(isColor(picture, QPoint(at.left() + 3, at.center().y()), plateOverBackdrop, 30));
    EXPECT_FALSE(isColor(picture, QPoint(at.left() - 1, at.center().y()), plateOverBackdrop, 30));
    // The ring is three pixels wide here, and crisp.
    const QPoint middle(at.left() + 2 * 34, at.center().y());
    EXPECT_TRUE(isColor(picture, middle, white, 2));
    EXPECT_TRUE(isColor(picture, middle + QPoint(13, 0), plateOverBackdrop, 12));
    EXPECT_TRUE(isColor(picture, middle + QPoint(20, 0), white, 2));
}

} // namespace orvane::test

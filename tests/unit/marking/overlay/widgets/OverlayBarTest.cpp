#include "OrvaneCore/marking/overlay/OverlayBar.h"

#include "OrvaneCore/surface/FirstMouseButton.h"
#include "tests/support/DrawnPixels.h"
#include "tests/support/InMemorySettings.h"
#include "tests/support/WidgetTest.h"

#include <QLineEdit>

#include <gmock/gmock.h>

#include <array>
#include <utility>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::array buttonNames{"cancelButton", "imageButton", "markupButton", "spotlightButton",
                                 "ocrButton",    "sendButton",  "submitButton"};
constexpr QRgb iconColor = 0xFFDC7846;

const SendTarget mail{.name = u"Mail"_s, .bundleID = u"org.mail"_s};
const SendTarget chat{.name = u"Chat"_s, .bundleID = u"org.chat"_s};

class OverlayBarTest : public testing::Test {
protected:
    OverlayBarTest()
        : manager(settings)
        , ground({1280, 300})
        , bar(
              manager, [this](OverlayCommand command) { commands.push_back(command); },
              [this](const SendTarget& target) {
                  iconsAsked.push_back(target.bundleID);
                  QPixmap picture(32, 32);
                  picture.fill(QColor::fromRgb(iconColor));
                  return QIcon(picture);
              },
              &ground) {
        QPalette grey(ground.palette());
        grey.setColor(QPalette::Window, Qt::white);
        ground.setPalette(grey);
        bar.place(ground.rect());
        bar.show();
    }

    FirstMouseButton& button(const char* name) const {
        return *bar.findChild<FirstMouseButton*>(QLatin1String(name));
    }
    QWidget& hint() const { return *bar.findChild<QWidget*>(u"sendHintLabel"_s); }

    /// So that what is white can be seen.
    void darkenGround() {
        QPalette dark(ground.palette());
        dark.setColor(QPalette::Window, Qt::black);
        ground.setPalette(dark);
    }

    test::InMemorySettings settings;
    MarkerManager manager;
    std::vector<OverlayCommand> commands;
    std::vector<QString> iconsAsked;
    test::WidgetGround ground;
    OverlayBar bar;
};

TEST_F(OverlayBarTest, HoldsItsButtonsInOrder) {
    manager.setDirectSend(true);
    int end = 0;
    for (const char* name : buttonNames) {
        if (QLatin1String(name) == u"submitButton"_s) {
            EXPECT_GT(hint().x(), end);
            end = hint().geometry().right();
        }
        EXPECT_GT(button(name).x(), end) << name;
        EXPECT_TRUE(button(name).isVisible()) << name;
        EXPECT_EQ(button(name).height(), 28) << name;
        end = button(name).geometry().right();
    }
    EXPECT_LT(end, bar.width());
}

TEST_F(OverlayBarTest, StandsAtTheBottomOfTheView) {
    EXPECT_EQ(bar.height(), 44);
    EXPECT_EQ(bar.geometry().bottom() + 1, 300 - 32);
    EXPECT_LE(std::abs(bar.geometry().center().x() - ground.rect().center().x()), 1);
}

TEST_F(OverlayBarTest, SaysWhatTheModesAre) {
    EXPECT_EQ(button("imageButton").title(), u"Image Only (I)"_s);
    EXPECT_EQ(button("submitButton").title(), u"Submit  ↩"_s);
    manager.setImageMode(true);
    manager.setMarkupMode(true);
    manager.setSpotlightMode(true);
    EXPECT_EQ(button("imageButton").title(), u"Image Only ON (I)"_s);
    EXPECT_EQ(button("markupButton").title(), u"Markup ON (M)"_s);
    EXPECT_EQ(button("spotlightButton").title(), u"Spotlight ON (B)"_s);
    EXPECT_EQ(button("ocrButton").title(), u"OCR (O)"_s);
    EXPECT_TRUE(button("imageButton").isChecked());
    EXPECT_TRUE(button("markupButton").isChecked());
    EXPECT_TRUE(button("spotlightButton").isChecked());
    EXPECT_FALSE(button("ocrButton").isChecked());
    manager.setOcrMode(true);
    EXPECT_EQ(button("ocrButton").title(), u"OCR ON (O)"_s);
    EXPECT_TRUE(button("ocrButton").isChecked());
    EXPECT_EQ(button("imageButton").title(), u"Image Only (I)"_s);
    EXPECT_FALSE(button("imageButton").isChecked());
}

TEST_F(OverlayBarTest, NamesTheApplicationAndShowsItsIconAfterTheHint) {
    EXPECT_FALSE(hint().isVisible());
    manager.setDirectSend(true);
    EXPECT_EQ(button("sendButton").title(), u"Send: no app (S)"_s);
    EXPECT_TRUE(hint().isVisible());
    EXPECT_EQ(hint().accessibleName(), u"◂ A · D ▸  switch app  ·  "_s);
    const QSize withoutIcon = hint().size();
    manager.setCurrentSendTarget(mail);
    EXPECT_EQ(button("sendButton").title(), u"Send → Mail (S)"_s);
    EXPECT_GT(hint().width(), withoutIcon.width() + 16);
    const QImage picture = test::pictureOf(hint());
    EXPECT_TRUE(test::isFilled(picture, QRect(picture.width() - 18, 8, 8, 12), iconColor));
    manager.setDirectSend(false);
    EXPECT_FALSE(hint().isVisible());
    EXPECT_EQ(button("sendButton").title(), u"Send (S)"_s);
}

TEST_F(OverlayBarTest, AsksForAnIconOnlyWhenTheApplicationIsAnother) {
    manager.setDirectSend(true);
    EXPECT_THAT(iconsAsked, IsEmpty());
    manager.setCurrentSendTarget(mail);
    manager.setSpotlightMode(true);
    manager.setCurrentSendTarget(std::nullopt);
    manager.setCurrentSendTarget(mail);
    EXPECT_THAT(iconsAsked, ElementsAre(mail.bundleID));
    manager.setCurrentSendTarget(chat);
    manager.setCurrentSendTarget(mail);
    EXPECT_THAT(iconsAsked, ElementsAre(mail.bundleID, chat.bundleID, mail.bundleID));
}

TEST_F(OverlayBarTest, TakesTheIconOfAnotherApplicationOfTheSameName) {
    manager.setDirectSend(true);
    manager.setCurrentSendTarget(mail);
    manager.setCurrentSendTarget(SendTarget{.name = mail.name, .bundleID = u"org.other"_s});
    EXPECT_THAT(iconsAsked, ElementsAre(mail.bundleID, u"org.other"_s));
}

TEST_F(OverlayBarTest, KeepsItsPlaceWhenTitlesChange) {
    const int widthBefore = bar.width();
    manager.setMarkupMode(true);
    EXPECT_GT(bar.width(), widthBefore);
    EXPECT_LE(std::abs(bar.geometry().center().x() - ground.rect().center().x()), 1);
    EXPECT_EQ(bar.geometry().bottom() + 1, 300 - 32);
}

TEST_F(OverlayBarTest, FitsIntoAViewOf640Points) {
    manager.setDirectSend(true);
    manager.setMarkupMode(true);
    manager.setSpotlightMode(true);
    manager.setCurrentSendTarget(SendTarget{.name = u"An application of a long name"_s, .bundleID = u"l"_s});
    const QRect view(0, 0, 640, 300);
    bar.place(view);
    EXPECT_TRUE(view.contains(bar.geometry()));
    int end = 0;
    for (const char* name : buttonNames) {
        EXPECT_GT(button(name).x(), end) << name;
        EXPECT_GE(button(name).width(), 40) << name;
        end = button(name).geometry().right();
    }
    EXPECT_LE(end, bar.width() - 8);
}

TEST_F(OverlayBarTest, TitlesAreWholeAsLongAsPaddingsCanShrink) {
    darkenGround();
    const auto titleOf = [](FirstMouseButton& of) {
        const QImage picture = test::pictureOf(of);
        return picture.copy((picture.width() - of.titleWidth()) / 2, 8, of.titleWidth(), 12);
    };
    const QImage whole = titleOf(button("cancelButton"));
    const int usual = button("cancelButton").width();
    bar.place(QRect(0, 0, bar.width() - 120, 300));
    ASSERT_LT(button("cancelButton").width(), usual);
    ASSERT_GT(button("cancelButton").width(), button("cancelButton").titleWidth());
    EXPECT_EQ(titleOf(button("cancelButton")), whole);
}

TEST_F(OverlayBarTest, AHintThatIsCutShortSaysSo) {
    manager.setDirectSend(true);
    manager.setCurrentSendTarget(mail);
    darkenGround();
    const auto beforeIcon = [this] { return test::pictureOf(hint()).copy(0, 0, 25, 28); };
    const QImage whole = beforeIcon();
    bar.place(QRect(0, 0, 640, 300));
    ASSERT_EQ(hint().width(), 48);
    EXPECT_NE(beforeIcon(), whole) << "the text goes on beneath the icon";
}

TEST_F(OverlayBarTest, SaysWhatItsButtonsDo) {
    EXPECT_EQ(button("ocrButton").toolTip(), overlay_bar_tips::ocr());
    EXPECT_EQ(button("cancelButton").toolTip(), overlay_bar_tips::cancel());
    EXPECT_EQ(button("ocrButton").accessibleDescription(), overlay_bar_tips::ocr());
}

TEST_F(OverlayBarTest, DimsSubmitWhileThereIsNoRegion) {
    const auto isBright = [this] {
        const QPoint inside = button("submitButton").mapTo(&ground, QPoint(7, 14));
        return test::isColor(test::pictureOf(ground), inside, 0xFF2F7DF6, 2);
    };
    EXPECT_TRUE(button("submitButton").isDimmed());
    EXPECT_FALSE(isBright());
    manager.setAnnotations({Annotation{.kind = Annotation::Kind::arrow}});
    EXPECT_TRUE(button("submitButton").isDimmed());
    const QUuid marker = manager.add({10, 10, 100, 100}, {}).id;
    EXPECT_FALSE(button("submitButton").isDimmed());
    EXPECT_TRUE(isBright());
    manager.remove(marker);
    EXPECT_TRUE(button("submitButton").isDimmed());
    manager.add({10, 10, 100, 100}, {});
    OverlayBar later(
        manager, [](OverlayCommand) {}, [](const SendTarget&) { return QIcon(); }, &ground);
    EXPECT_FALSE(later.findChild<FirstMouseButton*>(u"submitButton"_s)->isDimmed());
}

TEST_F(OverlayBarTest, HasALightEdgeOnDarkWindows) {
    darkenGround();
    const QImage picture = test::pictureOf(ground);
    const QRgb plate = test::blended(0xFF1F1F1F, 0.92, test::black);
    for (const QPoint& place :
         {QPoint(0, 22), QPoint(200, 0), QPoint(200, 43), QPoint(bar.width() - 1, 22)}) {
        EXPECT_TRUE(test::isColor(picture, bar.pos() + place, test::blended(test::white, 0.26, plate), 8))
            << place.x() << "," << place.y();
    }
}

TEST_F(OverlayBarTest, PerformsWhatIsClicked) {
    for (const char* name : buttonNames)
        test::click(button(name));
    EXPECT_THAT(commands,
                ElementsAre(OverlayCommand::cancel, OverlayCommand::toggleImage, OverlayCommand::toggleMarkup,
                            OverlayCommand::toggleSpotlight, OverlayCommand::toggleOcr,
                            OverlayCommand::toggleSend, OverlayCommand::submit));
    EXPECT_FALSE(button("markupButton").isChecked()) << "only the manager says what is on";
}

TEST_F(OverlayBarTest, KeepsTheMouseFromTheView) {
    const QPoint onBar = bar.mapTo(&ground, QPoint(3, 22));
    const QPoint onButton = button("ocrButton").mapTo(&ground, QPoint(10, 10));
    for (const QPoint& place : {onBar, onButton}) {
        for (const Qt::MouseButton mouseButton : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton}) {
            QTest::mouseClick(ground.windowHandle(), mouseButton, Qt::NoModifier, place);
            QTest::mouseDClick(ground.windowHandle(), mouseButton, Qt::NoModifier, place);
        }
        test::moveTo(ground, place);
        QWheelEvent wheel(place - bar.pos(), place, {}, {0, 120}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&bar, &wheel);
    }
    EXPECT_THAT(ground.reached, IsEmpty());
    test::moveTo(ground, {5, 5});
    EXPECT_THAT(ground.reached, ElementsAre(QEvent::MouseMove));
}

TEST_F(OverlayBarTest, ShowsAnArrowAsPointer) {
    EXPECT_EQ(bar.cursor().shape(), Qt::ArrowCursor);
    for (const char* name : buttonNames)
        EXPECT_EQ(button(name).cursor().shape(), Qt::ArrowCursor) << name;
    EXPECT_EQ(hint().cursor().shape(), Qt::ArrowCursor);
}

TEST_F(OverlayBarTest, LeavesTheKeyboardToWhoHasIt) {
    QLineEdit field(&ground);
    field.show();
    field.setFocus();
    test::click(button("markupButton"));
    test::pressAt(bar, {3, 22});
    test::releaseAt(ground, bar.mapTo(&ground, QPoint(3, 22)));
    EXPECT_TRUE(field.hasFocus());
}

TEST_F(OverlayBarTest, IsADarkBarWithRoundEnds) {
    const QImage picture = test::pictureOf(ground);
    const QRgb plate = test::blended(0xFF1F1F1F, 0.92, test::white);
    EXPECT_TRUE(test::isColor(picture, bar.pos() + QPoint(4, 22), plate, 2));
    EXPECT_TRUE(test::isColor(picture, bar.pos() + QPoint(200, 3), plate, 2));
    EXPECT_TRUE(test::isColor(picture, bar.pos() + QPoint(1, 1), test::white));
    EXPECT_TRUE(test::isColor(picture, bar.geometry().bottomRight() - QPoint(1, 1), test::white));
    // The arc of radius 22 crosses the diagonal 6.4 points from the corner.
    EXPECT_TRUE(test::isColor(picture, bar.pos() + QPoint(5, 5), test::white));
    EXPECT_TRUE(test::isColor(picture, bar.pos() + QPoint(8, 8), plate, 2));
}

TEST_F(OverlayBarTest, MayBeEndedByAClick) {
    OverlayBar* ended = nullptr;
    ended = new OverlayBar(
        manager, [&ended](OverlayCommand) { delete std::exchange(ended, nullptr); },
        [](const SendTarget&) { return QIcon(); }, &ground);
    ended->place(QRect(0, 0, 1280, 120));
    ended->show();
    test::click(*ended->findChild<FirstMouseButton*>(u"submitButton"_s));
    EXPECT_EQ(ended, nullptr);
    manager.setSpotlightMode(true);
}

} // namespace

} // namespace orvane

#include "OrvaneCore/marking/overlay/OverlayBarTexts.h"

#include <gtest/gtest.h>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;

TEST(OverlayBarTexts, AreTheseWithEverythingOff) {
    const OverlayBarTexts texts = overlayBarTexts({}, false, std::nullopt);
    EXPECT_EQ(texts.cancel.toUtf8(), "Cancel (esc)");
    EXPECT_EQ(texts.image.toUtf8(), "Image Only (I)");
    EXPECT_EQ(texts.markup.toUtf8(), "Markup (M)");
    EXPECT_EQ(texts.spotlight.toUtf8(), "Spotlight (B)");
    EXPECT_EQ(texts.ocr.toUtf8(), "OCR (O)");
    EXPECT_EQ(texts.send.toUtf8(), "Send (S)");
    EXPECT_TRUE(texts.sendHint.isEmpty());
    EXPECT_EQ(texts.submit.toUtf8(), "Submit  \xE2\x86\xA9");
}

TEST(OverlayBarTexts, TellWhatIsOn) {
    const MarkupModes modes{.spotlight = true, .ocr = true, .image = true, .directSend = true};
    const OverlayBarTexts texts =
        overlayBarTexts(modes, true, SendTarget{.name = u"Tom & Jerry"_s, .bundleID = u"a.b"_s});
    EXPECT_EQ(texts.cancel.toUtf8(), "Cancel (esc)");
    EXPECT_EQ(texts.image.toUtf8(), "Image Only ON (I)");
    EXPECT_EQ(texts.markup.toUtf8(), "Markup ON (M)");
    EXPECT_EQ(texts.spotlight.toUtf8(), "Spotlight ON (B)");
    EXPECT_EQ(texts.ocr.toUtf8(), "OCR ON (O)");
    EXPECT_EQ(texts.send.toUtf8(), "Send \xE2\x86\x92 Tom & Jerry (S)");
    EXPECT_EQ(texts.sendHint.toUtf8(), "\xE2\x97\x82 A \xC2\xB7 D \xE2\x96\xB8  switch app  \xC2\xB7  ");
    EXPECT_EQ(texts.submit.toUtf8(), "Submit  \xE2\x86\xA9");
}

TEST(OverlayBarTexts, ExplainEachButton) {
    const QStringList tips{overlay_bar_tips::cancel(), overlay_bar_tips::image(),
                           overlay_bar_tips::markup(), overlay_bar_tips::spotlight(),
                           overlay_bar_tips::ocr(),    overlay_bar_tips::send(),
                           overlay_bar_tips::submit()};
    for (const QString& tip : tips) {
        EXPECT_TRUE(tip.endsWith(u'.')) << tip.toStdString();
        EXPECT_EQ(tips.count(tip), 1) << tip.toStdString();
    }
}

TEST(OverlayBarTexts, SayThatThereIsNoApplication) {
    const OverlayBarTexts texts = overlayBarTexts({.directSend = true}, false, std::nullopt);
    EXPECT_EQ(texts.send.toUtf8(), "Send: no app (S)");
    EXPECT_FALSE(texts.sendHint.isEmpty());
}

TEST(OverlayBarTexts, NameNoApplicationWhileDirectSendIsOff) {
    EXPECT_EQ(overlayBarTexts({}, false, SendTarget{.name = u"Mail"_s, .bundleID = u"m"_s}).send,
              u"Send (S)"_s);
}

} // namespace

} // namespace orvane

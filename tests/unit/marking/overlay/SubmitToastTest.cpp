#include "OrvaneCore/marking/overlay/SubmitToast.h"
#include "tests/support/MacWords.h"

#include <gtest/gtest.h>

#include <ostream>

namespace orvane {

using namespace Qt::StringLiterals;

std::ostream& operator<<(std::ostream& stream, const SubmitToast& toast) {
    return stream << toast.title.toStdString() << " | " << toast.subtitle.toStdString() << " | "
                  << toast.icon.toStdString();
}

namespace {

constexpr MarkupModes send{.directSend = true};
constexpr MarkupModes sendImage{.image = true, .directSend = true};
constexpr SendOutcome sent{.activated = true, .sentCount = 2, .total = 2};
constexpr SendOutcome failed{.activated = false, .sentCount = 0, .total = 2};

const SubmitToast captured{u"3 region(s) captured"_s, u"Paste into your agent to share context"_s,
                           u"checkmark.circle.fill"_s};
const SubmitToast imageCopied{u"Image copied"_s, u"⌘V to paste anywhere"_s, u"doc.on.clipboard.fill"_s};

SubmitToast toast(int markerCount, const MarkupModes& modes, const std::optional<QString>& targetName,
                  const std::optional<SendOutcome>& outcome, const std::optional<QString>& copiedOcrText) {
    return submitToast(markerCount, modes, targetName, outcome, copiedOcrText, test::macWords());
}

QString subtitleOfText(const QString& text) {
    return toast(1, {.ocr = true}, std::nullopt, std::nullopt, text).subtitle;
}

} // namespace

TEST(SubmitToast, ASendCountsWhatWasSentAndNotTheMarkers) {
    EXPECT_EQ(
        toast(3, send, u"Notes"_s, sent, std::nullopt),
        (SubmitToast{u"Sent 2 region(s) → Notes"_s, u"Images + metadata pasted"_s, u"paperplane.fill"_s}));
}

TEST(SubmitToast, ASendOfImagesSaysThatThereWasNoMetadata) {
    EXPECT_EQ(
        toast(3, sendImage, u"Notes"_s, sent, std::nullopt),
        (SubmitToast{u"Sent 2 region(s) → Notes"_s, u"Image pasted (no metadata)"_s, u"paperplane.fill"_s}));
}

TEST(SubmitToast, ATargetThatCouldNotBeReachedIsNamed) {
    const SubmitToast expected{u"Couldn't reach Notes"_s, u"Copied paths to clipboard instead"_s,
                               u"exclamationmark.triangle.fill"_s};
    EXPECT_EQ(toast(3, send, u"Notes"_s, failed, std::nullopt), expected);
    EXPECT_EQ(toast(3, sendImage, u"Notes"_s, failed, std::nullopt), expected);
}

TEST(SubmitToast, ANameIsTakenAsItIs) {
    EXPECT_EQ(toast(1, send, u"100 %1"_s, sent, std::nullopt).title, u"Sent 2 region(s) → 100 %1"_s);
    EXPECT_EQ(toast(1, send, u"100 %1"_s, failed, std::nullopt).title, u"Couldn't reach 100 %1"_s);
}

TEST(SubmitToast, WithoutATargetDirectSendIsAsIfItWereOff) {
    EXPECT_EQ(toast(3, send, std::nullopt, std::nullopt, std::nullopt), captured);
    EXPECT_EQ(toast(3, sendImage, std::nullopt, std::nullopt, std::nullopt), imageCopied);
}

TEST(SubmitToast, AnOldOutcomeDoesNotCountWhenDirectSendIsOff) {
    EXPECT_EQ(toast(3, {}, u"Notes"_s, sent, std::nullopt), captured);
}

TEST(SubmitToast, TheImageModeComesBeforeTheText) {
    EXPECT_EQ(toast(3, {.image = true}, std::nullopt, std::nullopt, u"text"_s), imageCopied);
}

TEST(SubmitToast, TheKeysThatPasteAreThoseOfThePlatform) {
    PlatformWords words = test::macWords();
    words.commandInWindows = u"Ctrl+"_s;
    EXPECT_EQ(submitToast(1, {.image = true}, std::nullopt, std::nullopt, std::nullopt, words).subtitle,
              u"Ctrl+V to paste anywhere"_s);
}

TEST(SubmitToast, CopiedTextIsCounted) {
    EXPECT_EQ(toast(1, {.ocr = true}, std::nullopt, std::nullopt, u"Hello, world"_s),
              (SubmitToast{u"Text copied"_s, u"12 character(s) recognized"_s, u"text.viewfinder"_s}));
}

TEST(SubmitToast, CharactersAreCountedAsAReaderDoes) {
    EXPECT_EQ(subtitleOfText(u""_s), u"0 character(s) recognized"_s);
    EXPECT_EQ(subtitleOfText(u"a\nb"_s), u"3 character(s) recognized"_s);
    EXPECT_EQ(subtitleOfText(u"a\r\nb"_s), u"3 character(s) recognized"_s);
    EXPECT_EQ(subtitleOfText(u"e\u0301te\u0301"_s), u"3 character(s) recognized"_s);
    EXPECT_EQ(subtitleOfText(u"漢字"_s), u"2 character(s) recognized"_s);
    EXPECT_EQ(subtitleOfText(u"\U0001F600!"_s), u"2 character(s) recognized"_s);
    EXPECT_EQ(subtitleOfText(u"\U0001F1E9\U0001F1EA"_s), u"1 character(s) recognized"_s);
    EXPECT_EQ(subtitleOfText(u"\U0001F44D\U0001F3FD"_s), u"1 character(s) recognized"_s);
    EXPECT_EQ(subtitleOfText(u"\U0001F468\u200D\U0001F469\u200D\U0001F467"_s),
              u"1 character(s) recognized"_s);
}

TEST(SubmitToast, RegionsAreCountedWhenTextIsNotRecognised) {
    EXPECT_EQ(toast(3, {}, std::nullopt, std::nullopt, std::nullopt), captured);
    EXPECT_EQ(toast(3, {.spotlight = true}, std::nullopt, std::nullopt, std::nullopt), captured);
    EXPECT_EQ(toast(1, {}, std::nullopt, std::nullopt, std::nullopt).title, u"1 region(s) captured"_s);
}

TEST(SubmitToast, ACaptureThatFailedSaysWhy) {
    EXPECT_EQ(captureFailedToast(u"The screen is locked."_s),
              (SubmitToast{u"Nothing was captured"_s, u"The screen is locked."_s,
                           u"exclamationmark.triangle.fill"_s}));
}

TEST(SubmitToast, RecognitionThatFoundNothingSaysSo) {
    EXPECT_EQ(toast(3, {.ocr = true}, std::nullopt, std::nullopt, std::nullopt),
              (SubmitToast{u"No text found"_s, u"Copied screenshot instead"_s, u"text.viewfinder"_s}));
}

TEST(SubmitToast, SaysThatTextIsBeingRead) {
    EXPECT_EQ(readingToast(),
              (SubmitToast{u"Reading text…"_s, u"This can take some seconds"_s, u"text.viewfinder"_s}));
}

} // namespace orvane

#include "tests/unit/marking/submit/SubmitFixture.h"

namespace orvane::test {

using ::testing::ElementsAre;

namespace {

const SendTarget chat{.name = u"Chat %1"_s, .bundleID = u"com.example.chat"_s, .kind = SendTargetKind::ai};
const SendTarget messenger{
    .name = u"Talk"_s, .bundleID = u"com.example.talk"_s, .kind = SendTargetKind::comms};
const SendTarget custom{.name = u"Mine"_s, .bundleID = u"com.example.mine"_s, .kind = SendTargetKind::custom};

class SubmitSend : public SubmitFixture {
protected:
    std::optional<SubmitResult> send(const std::optional<SendTarget>& target, bool image = false) {
        return submit({.markers = {marker(1, {10, 10, 30, 30}, u"CTA"_s), marker(2, {100, 100, 50, 60})},
                       .annotations = {box({20, 20, 5, 5})},
                       .modes = {.image = image, .directSend = true},
                       .sendTarget = target});
    }

    std::vector<QByteArray> regionFiles() const {
        return {bytes(u"region-1.png"_s), bytes(u"region-2.png"_s)};
    }

    QString metadata() const {
        const QString path = displayedFolder();
        return u"[Orvane] 2 region(s) sent as images → Chat %1\n"
               "Note: arrows, boxes, ellipses, highlights, and text in these images are user annotations "
               "added "
               "with Orvane — not part of the captured UI.\n"
               "Attached images, in order:\n"
               "  [0] CTA — markup: box\n"
               "  [1] region\n"
               "Full screenshot (not attached): {"_s +
               path + u"/display-annotated.png}\nManifest: {"_s + path + u"/SESSION.md}\n"_s;
    }

    bool holdsPaths() const {
        return clipboard.text().startsWith(u"[Orvane] 2 annotation(s) on Display\nScreenshot: "_s +
                                           displayedFolder() + u"/display-annotated.png\n"_s);
    }

    bool holdsLastRegion() const { return clipboard.image() == picture(u"region-2.png"_s); }
};

TEST_F(SubmitSend, AnAgentGetsTheRegionsAndATextAboutThem) {
    const auto result = send(chat);
    ASSERT_TRUE(result);
    ASSERT_EQ(sender.sent.size(), 1U);
    EXPECT_EQ(sender.sent.front().regions, regionFiles());
    EXPECT_EQ(sender.sent.front().metadata, metadata());
    EXPECT_EQ(sender.sent.front().target, chat);
    EXPECT_EQ(result->sendOutcome, (SendOutcome{.activated = true, .sentCount = 2, .total = 2}));
    EXPECT_TRUE(clipboard.writes.empty()) << "the text that was pasted last stays there";
}

TEST_F(SubmitSend, WhereTheAgentIsNotReachedThePathsAreOnTheClipboard) {
    sender.reachesTarget = false;
    const auto result = send(chat);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->sendOutcome, (SendOutcome{.activated = false, .sentCount = 0, .total = 2}));
    EXPECT_TRUE(holdsPaths());
}

TEST_F(SubmitSend, InTheImageModeNoTextGoesAlong) {
    for (const bool reached : {true, false}) {
        clipboard.writes.clear();
        sender.reachesTarget = reached;
        send(chat, true);
        EXPECT_FALSE(sender.sent.back().metadata);
        EXPECT_EQ(sender.sent.back().regions.size(), 2U);
        EXPECT_TRUE(holdsLastRegion()) << reached;
        ASSERT_TRUE(QDir(folder()).removeRecursively());
    }
}

TEST_F(SubmitSend, AMessengerGetsPicturesOnly) {
    for (const bool reached : {true, false}) {
        clipboard.writes.clear();
        sender.reachesTarget = reached;
        send(messenger);
        EXPECT_FALSE(sender.sent.back().metadata);
        EXPECT_TRUE(holdsLastRegion()) << reached;
        ASSERT_TRUE(QDir(folder()).removeRecursively());
    }
}

TEST_F(SubmitSend, AnApplicationOfTheUsersGetsPicturesOnlyAndTheClipboardStays) {
    send(custom);
    EXPECT_FALSE(sender.sent.back().metadata);
    EXPECT_EQ(sender.sent.back().regions, regionFiles());
    EXPECT_TRUE(clipboard.writes.empty());
}

TEST_F(SubmitSend, WhereAnApplicationOfTheUsersIsNotReachedThePathsAreOnTheClipboard) {
    sender.reachesTarget = false;
    send(custom);
    EXPECT_TRUE(holdsPaths());
}

TEST_F(SubmitSend, WithoutATargetTheClipboardIsUsed) {
    const auto result = send(std::nullopt);
    ASSERT_TRUE(result);
    EXPECT_TRUE(sender.sent.empty());
    EXPECT_FALSE(result->sendOutcome);
    EXPECT_TRUE(holdsPaths());
}

TEST_F(SubmitSend, WithoutTheModeTheTargetDoesNotMatter) {
    submit({.markers = {marker(1, {10, 10, 30, 30})}, .annotations = {}, .modes = {}, .sendTarget = chat});
    EXPECT_TRUE(sender.sent.empty());
    EXPECT_EQ(clipboard.writes.size(), 1U);
}

TEST_F(SubmitSend, WithoutASenderTheClipboardIsUsed) {
    SubmitPipeline unable({.storage = storage,
                           .discovery = discovery,
                           .screenCapture = screenCapture,
                           .displays = desktop,
                           .pngWriter = pngWriter,
                           .textRecognizer = textRecognizer,
                           .clipboard = clipboard,
                           .words = words,
                           .sleep = [](std::chrono::milliseconds) {}});
    testing::internal::CaptureStderr();
    const auto result = unable.submit({.markers = {marker(1, {10, 10, 30, 30})},
                                       .annotations = {},
                                       .modes = {.directSend = true},
                                       .sendTarget = chat},
                                      [] {});
    testing::internal::GetCapturedStderr();
    ASSERT_TRUE(result);
    EXPECT_FALSE(result->sendOutcome);
    EXPECT_TRUE(clipboard.text().startsWith(u"[Orvane] 1 annotation(s)"_s));
}

TEST_F(SubmitSend, RegionsGoInTheOrderOfTheirNumbers) {
    submit(
        {.markers = {marker(10, {100, 100, 50, 60}), marker(2, {10, 10, 30, 30}), marker(1, {1, 1, 20, 20})},
         .annotations = {},
         .modes = {.directSend = true},
         .sendTarget = chat});
    EXPECT_THAT(sender.sent.front().regions,
                ElementsAre(bytes(u"region-1.png"_s), bytes(u"region-2.png"_s), bytes(u"region-10.png"_s)));
    EXPECT_TRUE(sender.sent.front().metadata->contains(u"  [0] region\n  [1] region\n  [2] region\n"_s));
}

TEST_F(SubmitSend, ARegionWithoutAPictureIsLeftOut) {
    const auto result = submit({.markers = {marker(1, {5000, 10, 30, 30}), marker(2, {10, 10, 30, 30})},
                                .annotations = {},
                                .modes = {.directSend = true},
                                .sendTarget = chat});
    EXPECT_THAT(sender.sent.front().regions, ElementsAre(bytes(u"region-2.png"_s)));
    EXPECT_EQ(result->sendOutcome->total, 1);
}

TEST_F(SubmitSend, ComesAfterThePicturesAndBeforeTheManifest) {
    QStringList atSend;
    sender.sending = [&] { atSend = files(); };
    send(chat);
    EXPECT_THAT(atSend, ElementsAre(u"display-annotated.png"_s, u"region-1.png"_s, u"region-2.png"_s));
    EXPECT_TRUE(files().contains(u"SESSION.md"_s));
}

} // namespace
} // namespace orvane::test

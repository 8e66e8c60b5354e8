#include "OrvaneCore/capture/ScreenCapture.h"

#include "OrvaneCore/capture/OrvaneError.h"
#include "OrvaneCore/capture/RegionSize.h"
#include "OrvanePlatform/png/IgzipWriter.h"
#include "tests/support/BrokenPngWriter.h"
#include "tests/support/FakeDesktop.h"
#include "tests/support/KnownPicture.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <limits>

namespace orvane {

namespace {

using test::FakeDesktop;
using test::knownPicture;
using test::makeDisplay;

class ScreenCaptureTest : public testing::Test {
protected:
    ScreenCaptureTest() {
        desktop.displayList = {makeDisplay(11, {0, 0, 1000, 800}), makeDisplay(22, {1000, 0, 500, 400}, 2.0)};
        desktop.picture = knownPicture(300, 200, false);
        desktop.addApplication(1, QStringLiteral("App"), 10, {20.7, 30, 300.9, 200.9});
    }

    void resizeWindow(const QRectF& frame, const QSize& pixels) {
        desktop.shareable[0].framePoints = frame;
        desktop.picture = knownPicture(pixels.width(), pixels.height(), false);
    }

    FakeDesktop desktop;
    png::IgzipWriter pngWriter;
    ScreenCapture capture{desktop, desktop, pngWriter};
};

OrvaneError::Case errorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const OrvaneError& error) {
        return error.errorCase();
    }
    throw std::logic_error("no error");
}

} // namespace

TEST_F(ScreenCaptureTest, CapturesAWindowWithItsSizeInPoints) {
    const WindowCapture captured = capture.captureWindow(10, false);
    EXPECT_EQ(captured.image, desktop.picture);
    EXPECT_EQ(captured.width, 300);
    EXPECT_EQ(captured.height, 200);
    EXPECT_EQ(desktop.listings, 1);
    EXPECT_EQ(desktop.cursors, std::vector{false});
}

TEST_F(ScreenCaptureTest, AsksForNoMoreWindowsThanItNeeds) {
    desktop.addApplication(2, QStringLiteral("Other"), 20, {0, 0, 200, 200});
    capture.captureWindow(10, false);
    capture.captureRegion(0, 0, 10, 10, false);
    capture.captureDisplay(11, false);
    capture.captureDisplayExcludingOwnApp(11);
    EXPECT_EQ(desktop.listedWindows, (std::vector<std::vector<qint64>>{{10}, {}, {}, {}}));
}

TEST_F(ScreenCaptureTest, HandsBackWhatTheSourceRemembersOfTheWindow) {
    desktop.shareable[0].listed = QStringLiteral("third from the left");
    capture.captureWindow(10, false);
    ASSERT_EQ(desktop.captured.size(), 1U);
    EXPECT_EQ(std::any_cast<QString>(desktop.captured[0].listed), u"third from the left");
    EXPECT_EQ(desktop.captured[0].framePoints, QRectF(20.7, 30, 300.9, 200.9));
}

TEST_F(ScreenCaptureTest, KnowsNoUnlistedWindow) {
    EXPECT_EQ(errorOf([&] { capture.captureWindow(99, false); }), OrvaneError::Case::windowNotFound);
    EXPECT_EQ(errorOf([&] { capture.captureWindow(0, false); }), OrvaneError::Case::windowNotFound);
}

TEST_F(ScreenCaptureTest, TakesAWindowOfAHundredPixelsAsItIs) {
    resizeWindow({1000, 0, 50, 50}, {100, 100});
    EXPECT_EQ(capture.captureWindow(10, false).image.size(), QSize(100, 100));
}

TEST_F(ScreenCaptureTest, MagnifiesASmallerWindow) {
    resizeWindow({1000, 0, 49, 50}, {98, 100});
    testing::internal::CaptureStderr();
    const WindowCapture captured = capture.captureWindow(10, false);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "orvane: window frame too small (49x50), using 2560x1440\n");
    EXPECT_EQ(captured.image.size(), QSize(2560, 1440));
    EXPECT_EQ(captured.width, 49);
    EXPECT_EQ(captured.height, 50);
}

TEST_F(ScreenCaptureTest, BelievesTheContentsOverAStaleFrame) {
    resizeWindow({0, 0, 50, 300}, {400, 300});
    testing::internal::CaptureStderr();
    EXPECT_EQ(capture.captureWindow(10, false).image.size(), QSize(400, 300));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "orvane: window frame too small (50x300), using 400x300\n");
}

TEST_F(ScreenCaptureTest, BelievesContentsOnlyAboveAHundredPoints) {
    for (const auto& [pixels, expected] : std::vector<std::pair<QSize, QSize>>{
             {{101, 101}, {101, 101}}, {{100, 300}, {2560, 1440}}, {{300, 100}, {2560, 1440}}}) {
        resizeWindow({0, 0, 50, 300}, pixels);
        testing::internal::CaptureStderr();
        EXPECT_EQ(capture.captureWindow(10, false).image.size(), expected) << pixels.width();
        testing::internal::GetCapturedStderr();
    }
    // On the display of scale 2 it takes twice the pixels.
    resizeWindow({1000, 0, 40, 300}, {200, 400});
    testing::internal::CaptureStderr();
    EXPECT_EQ(capture.captureWindow(10, false).image.size(), QSize(2560, 1440));
    testing::internal::GetCapturedStderr();
}

TEST_F(ScreenCaptureTest, CapturesARegionOfTheDisplayItBeginsOn) {
    capture.captureRegion(1010, 20, 30, 40, true);
    capture.captureRegion(999, 20, 30, 40, false);
    EXPECT_EQ(desktop.capturedRegions[0], (std::pair{22U, QRectF(10, 20, 30, 40)}));
    EXPECT_EQ(desktop.capturedRegions[1], (std::pair{11U, QRectF(999, 20, 30, 40)}));
    EXPECT_EQ(desktop.cursors, (std::vector{true, false}));
}

TEST_F(ScreenCaptureTest, CapturesARegionElsewhereRelativeToTheFirstDisplay) {
    capture.captureRegion(-50, -60, 30, 40, false);
    EXPECT_EQ(desktop.capturedRegions[0], (std::pair{11U, QRectF(-50, -60, 30, 40)}));
}

TEST_F(ScreenCaptureTest, RefusesRegionsNoPictureCanHave) {
    constexpr qint64 most = std::numeric_limits<qint64>::max();
    for (const auto& [width, height] : std::vector<std::pair<qint64, qint64>>{{0, 5},
                                                                              {5, 0},
                                                                              {-3, 5},
                                                                              {5, -3},
                                                                              {16385, 1},
                                                                              {1, 16385},
                                                                              {16000, 16000},
                                                                              {most, most},
                                                                              {-most, 1}})
        EXPECT_THROW(capture.captureRegion(0, 0, width, height, false), RegionSizeError) << width << height;
    // At scale 2 the limit holds for pixels.
    EXPECT_THROW(capture.captureRegion(1000, 0, 8193, 1, false), RegionSizeError);
    EXPECT_NO_THROW(capture.captureRegion(1000, 0, 8192, 1, false));
    EXPECT_EQ(desktop.capturedRegions.size(), 1U);
}

TEST_F(ScreenCaptureTest, SaysWhyARegionIsRefused) {
    try {
        capture.captureRegion(0, 0, 0, -4, false);
        FAIL();
    } catch (const RegionSizeError& error) {
        EXPECT_STREQ(error.what(), "A region of 0x-4 holds no pixels: width and height must be at least 1.");
    }
}

TEST_F(ScreenCaptureTest, NeedsADisplay) {
    desktop.displayList.clear();
    EXPECT_EQ(errorOf([&] { capture.captureRegion(0, 0, 5, 5, false); }), OrvaneError::Case::displayNotFound);
    EXPECT_EQ(errorOf([&] { capture.captureDisplay(11, false); }), OrvaneError::Case::displayNotFound);
}

TEST_F(ScreenCaptureTest, CapturesDisplaysById) {
    capture.captureDisplay(22, true);
    capture.captureDisplayExcludingOwnApp(11);
    EXPECT_EQ(desktop.capturedDisplays, std::vector{22U});
    EXPECT_EQ(desktop.capturedWithoutOwn, std::vector{11U});
    EXPECT_EQ(errorOf([&] { capture.captureDisplay(33, false); }), OrvaneError::Case::displayNotFound);
    EXPECT_EQ(errorOf([&] { capture.captureDisplayExcludingOwnApp(33); }),
              OrvaneError::Case::displayNotFound);
}

TEST_F(ScreenCaptureTest, PassesTheDesktopsErrorOn) {
    desktop.failure = QStringLiteral("The display is on fire.");
    try {
        capture.captureRegion(0, 0, 5, 5, false);
        FAIL();
    } catch (const PlatformError& error) {
        EXPECT_EQ(error.message(), u"The display is on fire.");
    }
}

TEST_F(ScreenCaptureTest, GivesUpAHungListingAfterFiveSeconds) {
    desktop.hangs = true;
    const auto started = std::chrono::steady_clock::now();
    EXPECT_EQ(errorOf([&] { capture.captureWindow(10, false); }), OrvaneError::Case::permissionDenied);
    const auto took = std::chrono::steady_clock::now() - started;
    EXPECT_GE(took, std::chrono::milliseconds(4990));
    EXPECT_LT(took, std::chrono::seconds(8));
}

TEST_F(ScreenCaptureTest, SaysThatTheHumanHasYetToAnswerAfterFiveSeconds) {
    desktop.consent = FakeDesktop::Consent::awaited;
    const auto started = std::chrono::steady_clock::now();
    EXPECT_THROW(capture.captureWindow(10, false), CaptureAwaitsHuman);
    EXPECT_GE(std::chrono::steady_clock::now() - started, std::chrono::milliseconds(4990));
    desktop.consent = FakeDesktop::Consent::given;
    EXPECT_NO_THROW(capture.captureWindow(10, false));
}

TEST_F(ScreenCaptureTest, SaysThatTheHumanHasRefused) {
    desktop.consent = FakeDesktop::Consent::refused;
    EXPECT_THROW(capture.captureWindow(10, false), CaptureRefused);
    EXPECT_THROW(capture.captureRegion(0, 0, 10, 10, false), CaptureRefused);
    EXPECT_THROW(capture.captureDisplay(11, false), CaptureRefused);
    EXPECT_THROW(capture.captureDisplayExcludingOwnApp(11), CaptureRefused);
}

TEST_F(ScreenCaptureTest, IsHeldUpByNoOtherCapture) {
    desktop.hangs = true;
    std::vector<std::future<OrvaneError::Case>> hung;
    hung.reserve(4);
    const auto started = std::chrono::steady_clock::now();
    for (int i = 0; i < 4; ++i) {
        hung.push_back(std::async(std::launch::async,
                                  [&] { return errorOf([&] { capture.captureDisplay(11, false); }); }));
    }
    for (auto& call : hung)
        EXPECT_EQ(call.get(), OrvaneError::Case::permissionDenied);
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(9));
    desktop.hangs = false;
    EXPECT_NO_THROW(capture.captureDisplay(11, false));
}

TEST_F(ScreenCaptureTest, TruncatesTheScaleAndTakesTwoOffScreen) {
    desktop.displayList.push_back(makeDisplay(33, {1500, 0, 100, 100}, 1.5));
    EXPECT_EQ(capture.displayScaleFactor({0, 0, 10, 10}), 1);
    EXPECT_EQ(capture.displayScaleFactor({1000, 0, 10, 10}), 2);
    EXPECT_EQ(capture.displayScaleFactor({1500, 0, 10, 10}), 1);
    EXPECT_EQ(capture.displayScaleFactor({-1, 0, 10, 10}), 2);
    EXPECT_EQ(capture.displayScaleFactor({0, 800, 10, 10}), 2);
}

TEST_F(ScreenCaptureTest, ReturnsASmallPngByteForByte) {
    const QByteArray png = pngWriter.encode(knownPicture(1024, 500, false));
    EXPECT_EQ(capture.resizeForLLM(png, 1024), png);
}

TEST_F(ScreenCaptureTest, ShrinksALargerPng) {
    const QByteArray png = pngWriter.encode(knownPicture(1025, 500, false));
    const QByteArray resized = capture.resizeForLLM(png, 1024);
    EXPECT_NE(resized, png);
    const QImage image = QImage::fromData(resized, "PNG");
    EXPECT_EQ(image.width(), 1024);
    EXPECT_NEAR(image.height(), 499.5, 0.5);
}

TEST_F(ScreenCaptureTest, LeavesAloneWhatIsNoImage) {
    EXPECT_EQ(capture.resizeForLLM(QByteArray("no image"), 1024), QByteArray("no image"));
    EXPECT_EQ(capture.resizeForLLM(QByteArray(), 1024), QByteArray());
    const QByteArray broken = pngWriter.encode(knownPicture(1100, 500, false)).left(40);
    EXPECT_EQ(capture.resizeForLLM(broken, 1024), broken);
}

TEST_F(ScreenCaptureTest, LeavesAloneWhatCannotBeEncodedAgain) {
    const QByteArray png = pngWriter.encode(knownPicture(1100, 500, false));
    const test::BrokenPngWriter broken;
    EXPECT_EQ(ScreenCapture(desktop, desktop, broken).resizeForLLM(png, 1024), png);
}

TEST_F(ScreenCaptureTest, KeepsAtLeastOnePixelOfAStrip) {
    EXPECT_EQ(ScreenCapture::resizeForLLM(knownPicture(10000, 1, false), 1024).size(), QSize(1024, 1));
    EXPECT_EQ(ScreenCapture::resizeForLLM(knownPicture(1, 5000, false), 1024).size(), QSize(1, 1024));
}

TEST_F(ScreenCaptureTest, AveragesWhatItShrinks) {
    QImage stripes(2048, 16, QImage::Format_RGB32);
    for (int y = 0; y < stripes.height(); ++y) {
        for (int x = 0; x < stripes.width(); ++x)
            stripes.setPixel(x, y, x % 2 == 0 ? 0xff000000U : 0xffffffffU);
    }
    const QRgb middle = ScreenCapture::resizeForLLM(stripes, 1024).pixel(512, 4);
    EXPECT_NEAR(qRed(middle), 127, 2);
}

} // namespace orvane

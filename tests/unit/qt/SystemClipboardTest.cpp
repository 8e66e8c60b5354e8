#include "OrvanePlatform/qt/SystemClipboard.h"

#include "tests/support/EventLoop.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QStringList>

#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace orvane::qt {

using namespace Qt::StringLiterals;

class SystemClipboardTest : public testing::Test {
protected:
    void SetUp() override { system()->setText(u"from before"_s); }

    static QClipboard* system() { return QGuiApplication::clipboard(); }

    static QImage picture(QRgb color) {
        QImage image(3, 2, QImage::Format_RGB32);
        image.fill(color);
        return image;
    }

    /// Handles what was posted up to now.
    static void handleEvents() { QCoreApplication::processEvents(); }

    std::optional<SystemClipboard> clipboard{std::in_place};
};

TEST_F(SystemClipboardTest, WritesText) {
    clipboard->writeText(u"Grüße & 日本 %1"_s);
    handleEvents();
    EXPECT_EQ(system()->text(), u"Grüße & 日本 %1"_s);
    EXPECT_FALSE(system()->mimeData()->hasImage());
}

TEST_F(SystemClipboardTest, WritesAPictureAlone) {
    clipboard->writeImage(picture(qRgb(10, 20, 30)));
    handleEvents();
    EXPECT_EQ(system()->image().convertToFormat(QImage::Format_RGB32), picture(qRgb(10, 20, 30)));
    EXPECT_FALSE(system()->mimeData()->hasText());
}

TEST_F(SystemClipboardTest, AnotherThreadWaitsForNothing) {
    // The main thread handles no events meanwhile: a writer that waited for it would never come back.
    std::thread writer([this] { clipboard->writeText(u"from afar"_s); });
    writer.join();
    EXPECT_EQ(system()->text(), u"from before"_s);
    EXPECT_TRUE(test::eventuallyInLoop([] { return system()->text() == u"from afar"_s; }));
}

TEST_F(SystemClipboardTest, WritesInTheOrderOfTheCalls) {
    QStringList seen;
    const auto watching = QObject::connect(system(), &QClipboard::dataChanged, system(), [&seen] {
        seen.append(system()->mimeData()->hasImage() ? u"picture"_s : system()->text());
    });
    std::thread writer([this] {
        clipboard->writeText(u"one"_s);
        clipboard->writeImage(picture(qRgb(1, 2, 3)));
        clipboard->writeText(u"three"_s);
    });
    writer.join();
    handleEvents();
    QObject::disconnect(watching);
    EXPECT_EQ(seen, QStringList({u"one"_s, u"picture"_s, u"three"_s}));
    EXPECT_EQ(system()->text(), u"three"_s);
}

TEST_F(SystemClipboardTest, EachOfManyThreadsKeepsItsOrder) {
    constexpr int threadCount = 8;
    constexpr int writesEach = 50;
    std::vector<QStringList> seen(threadCount);
    const auto watching = QObject::connect(system(), &QClipboard::dataChanged, system(), [&seen] {
        const QStringList parts = system()->text().split(u' ');
        seen.at(parts.at(0).toUInt()).append(parts.at(1));
    });
    std::vector<std::thread> writers;
    writers.reserve(threadCount);
    for (int i = 0; i < threadCount; ++i) {
        writers.emplace_back([this, i] {
            for (int k = 0; k < writesEach; ++k)
                clipboard->writeText(QString::number(i) + u' ' + QString::number(k));
        });
    }
    for (std::thread& writer : writers)
        writer.join();
    handleEvents();
    QObject::disconnect(watching);
    QStringList expected;
    for (int k = 0; k < writesEach; ++k)
        expected.append(QString::number(k));
    EXPECT_EQ(seen, std::vector<QStringList>(threadCount, expected));
}

TEST_F(SystemClipboardTest, WhatIsNotWrittenWhenItGoesIsNotWritten) {
    clipboard->writeText(u"too late"_s);
    clipboard.reset();
    handleEvents();
    EXPECT_EQ(system()->text(), u"from before"_s);
}

} // namespace orvane::qt

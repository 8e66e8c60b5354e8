#pragma once

#include "OrvaneCore/capture/OrvaneError.h"
#include "OrvaneCore/marking/submit/SubmitPipeline.h"
#include "OrvanePlatform/png/IgzipWriter.h"
#include "tests/support/FakeDesktop.h"
#include "tests/support/FakeTextRecognition.h"
#include "tests/support/InMemorySettings.h"
#include "tests/support/KnownPicture.h"
#include "tests/support/MacWords.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <utility>
#include <variant>

namespace orvane::test {

using namespace Qt::StringLiterals;

/// Displays with a picture each, some of which cannot be captured, and most not without our own windows.
class FakeScreens final : public ScreenSource {
public:
    explicit FakeScreens(FakeDesktop& desktop)
        : m_desktop(desktop) {}

    std::map<quint32, QImage> pictures;
    /// Without our own windows.
    std::map<quint32, QImage> picturesWithoutOwn;
    /// What captures of a display throw.
    std::map<quint32, std::function<void()>> failures;
    std::vector<quint32> captured;
    std::vector<bool> cursors;

    ShareableContent listContent(const std::vector<qint64>& windowIds, std::stop_token stop) override {
        return m_desktop.listContent(windowIds, std::move(stop));
    }
    QImage captureWindow(const ShareableWindow&, bool) override { throw PlatformError(u"no windows here"_s); }
    QImage captureRegion(const Display&, const QRectF&, bool) override {
        throw PlatformError(u"no regions here"_s);
    }
    QImage captureDisplay(const Display& display, bool showsCursor) override {
        captured.push_back(display.id);
        cursors.push_back(showsCursor);
        if (const auto failure = failures.find(display.id); failure != failures.end())
            failure->second();
        return pictures[display.id];
    }
    QImage captureWithoutOwnWindows(const Display& display) override {
        const auto picture = picturesWithoutOwn.find(display.id);
        if (picture == picturesWithoutOwn.end())
            throw PlatformError(u"our windows are wanted"_s);
        return picture->second;
    }

private:
    FakeDesktop& m_desktop;
};

/// What is on the clipboard, one write after the other.
class RecordingClipboard final : public Clipboard {
public:
    std::vector<std::variant<QString, QImage>> writes;
    /// Called at each write.
    std::function<void()> written = [] {};

    void writeText(const QString& text) override {
        writes.emplace_back(text);
        written();
    }
    void writeImage(const QImage& image) override {
        writes.emplace_back(image);
        written();
    }

    /// Of the only write; a note when it is no such one.
    QString text() const {
        const auto* text = writes.size() == 1 ? std::get_if<QString>(&writes.front()) : nullptr;
        return text != nullptr ? *text : u"not one text"_s;
    }
    QImage image() const {
        const auto* image = writes.size() == 1 ? std::get_if<QImage>(&writes.front()) : nullptr;
        return image != nullptr ? *image : QImage();
    }
};

class RecordingSender final : public DirectSender {
public:
    struct Sent {
        std::vector<QByteArray> regions;
        std::optional<QString> metadata;
        SendTarget target;
    };

    std::vector<Sent> sent;
    bool reachesTarget = true;
    /// Called at each send.
    std::function<void()> sending = [] {};

    SendOutcome send(const std::vector<QByteArray>& regions, const std::optional<QString>& metadata,
                     const SendTarget& target) override {
        sent.push_back({regions, metadata, target});
        sending();
        const int count = static_cast<int>(regions.size());
        return {.activated = reachesTarget, .sentCount = reachesTarget ? count : 0, .total = count};
    }
};

/// A pipeline on a desktop made of values, in a home folder of its own, on a clock that only `sleep` moves.
class SubmitFixture : public testing::Test {
protected:
    static constexpr quint32 mainId = 11;
    static constexpr quint32 leftId = 3000000012;

    SubmitFixture() {
        addDisplay(makeDisplay(mainId, {0, 0, 400, 300}), knownPicture(400, 300, false));
        storage.ensureDirectories();
    }

    void addDisplay(const Display& display, const QImage& picture) {
        desktop.displayList.push_back(display);
        screens.pictures[display.id] = picture;
    }

    /// To the left of the main one, at twice its scale, with a picture of another brightness.
    void addLeftDisplay() {
        QImage picture = knownPicture(600, 400, false);
        picture.invertPixels();
        addDisplay(makeDisplay(leftId, {-300, 50, 300, 200}, 2), picture);
    }

    static Marker marker(int index, const QRectF& rect, const QString& label = {}) {
        return {.rect = rect, .label = label, .color = QColor(0x3B, 0x82, 0xF6), .index = index};
    }

    static Annotation box(const QRectF& rect) {
        return {.kind = Annotation::Kind::box,
                .start = rect.topLeft(),
                .end = rect.bottomRight(),
                .color = Qt::red,
                .strokeWidth = 3};
    }

    /// Submits, and keeps what was logged meanwhile.
    std::optional<SubmitResult> submit(const SubmitRequest& request) {
        testing::internal::CaptureStderr();
        std::optional<SubmitResult> result = pipeline.submit(request, [this] { event(u"captured"_s); });
        log = QString::fromStdString(testing::internal::GetCapturedStderr());
        return result;
    }

    void event(const QString& what) { events.append(what); }

    /// What moves the clock.
    void sleep(std::chrono::milliseconds time) {
        event(u"sleep "_s + QString::number(time.count()));
        now = now.addMSecs(time.count());
    }

    QStringList sessions() const {
        return QDir(home.path() + u"/.orvane/sessions"_s)
            .entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks);
    }

    /// The only session's folder.
    QString folder() const { return home.path() + u"/.orvane/sessions/"_s + sessions().value(0); }
    QString displayedFolder() const { return u"~/.orvane/sessions/"_s + sessions().value(0); }

    /// Names, sorted, hidden ones too.
    QStringList files() const {
        return QDir(folder()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name);
    }

    QByteArray bytes(const QString& file) const {
        QFile opened(folder() + u'/' + file);
        return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray();
    }

    QImage picture(const QString& file) const { return QImage(folder() + u'/' + file); }

    QTemporaryDir home;
    InMemorySettings settings;
    QDateTime now = QDateTime(QDate(2026, 11, 15), QTime(9, 26, 11, 482), Qt::UTC);
    StorageManager storage{settings, home.path(), [this] { return now; },
                           [this](std::chrono::milliseconds time) { sleep(time); }};
    FakeDesktop desktop;
    FakeScreens screens{desktop};
    png::IgzipWriter pngWriter;
    WindowDiscovery discovery{desktop, desktop};
    ScreenCapture screenCapture{screens, desktop, pngWriter};
    FakeTextRecognition recognition;
    TextRecognizer textRecognizer{recognition};
    RecordingClipboard clipboard;
    RecordingSender sender;
    PlatformWords words = macWords();
    QStringList events;
    QString log;
    SubmitPipeline pipeline{{.storage = storage,
                             .discovery = discovery,
                             .screenCapture = screenCapture,
                             .displays = desktop,
                             .pngWriter = pngWriter,
                             .textRecognizer = textRecognizer,
                             .clipboard = clipboard,
                             .words = words,
                             .directSender = &sender,
                             .sleep = [this](std::chrono::milliseconds time) { sleep(time); },
                             .clock = [this] { return now; }}};
};

} // namespace orvane::test

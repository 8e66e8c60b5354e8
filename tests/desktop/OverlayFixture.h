#pragma once

#include "Orvane/BackgroundTasks.h"
#include "OrvaneCore/marking/overlay/MarkerManager.h"
#include "OrvaneCore/marking/overlay/OverlayController.h"
#include "OrvaneCore/marking/submit/SubmitPipeline.h"
#include "OrvaneCore/recognition/TextRecognizer.h"
#include "OrvaneCore/send/SendTargets.h"
#include "OrvaneCore/storage/StorageManager.h"
#include "OrvaneCore/surface/Tooltips.h"
#include "OrvanePlatform/freedesktop/DesktopWords.h"
#include "OrvanePlatform/qt/SystemClipboard.h"
#include "OrvanePlatform/x11/X11DesktopKeyboard.h"
#include "tests/desktop/GuiFixture.h"
#include "tests/support/FakeTextRecognition.h"
#include "tests/support/InMemorySettings.h"

#include <QDir>
#include <QProcess>

#include <chrono>
#include <functional>
#include <thread>
#include <vector>

namespace orvane::test {

/// The overlay with all that it works on, as the application puts it together.
class OverlayFixture : public GuiFixture {
protected:
    using GuiFixture::GuiFixture;

    /// A window of one colour, without decorations, that the overlay is seen over.
    std::unique_ptr<TestWindow> cover(const QString& geometry, const QString& color = u"#ffffff"_s) {
        return std::make_unique<TestWindow>(
            QStringList{u"--undecorated"_s, u"--color"_s, color, u"--geometry"_s, geometry});
    }

    /// Shows the overlay and waits until it has the keyboard.
    void show() {
        controller.showOverlay();
        ASSERT_TRUE(eventuallyInLoop([&] { return controller.isShown() && window().isActiveWindow(); }));
    }

    OverlayWindow& window(std::size_t index = 0) { return *controller.windows().at(index); }

    /// With the left button, in pixels, by the way of a point halfway.
    static void drag(const QPoint& from, const QPoint& to) {
        moveMouse(from);
        runCommand(u"xdotool"_s, {u"mousedown"_s, u"1"_s});
        moveMouse((from + to) / 2);
        moveMouse(to);
        runCommand(u"xdotool"_s, {u"mouseup"_s, u"1"_s});
    }

    /// Draws a region and closes the editor of its label.
    void mark(const QPoint& from, const QPoint& to) {
        const std::size_t before = manager.markers().size();
        drag(from, to);
        ASSERT_TRUE(eventuallyInLoop([&] { return manager.markers().size() == before + 1; }));
        if (manager.modes().ocr)
            return;
        ASSERT_TRUE(eventuallyInLoop([] { return isEditing(); }));
        press(u"Escape"_s);
        ASSERT_TRUE(eventuallyInLoop([] { return !isEditing(); }));
    }

    /// Whether the keys go into a text.
    static bool isEditing() {
        const QWidget* widget = QApplication::focusWidget();
        return widget && (widget->inherits("QPlainTextEdit") || widget->inherits("QLineEdit"));
    }

    static void type(const QString& text) {
        runCommand(u"xdotool"_s, {u"type"_s, u"--delay"_s, u"5"_s, text});
    }

    /// Writes a text into the editor that is opening, and closes it.
    static void write(const QString& text) {
        ASSERT_TRUE(eventuallyInLoop([] { return isEditing(); }));
        type(text);
        press(u"Return"_s);
        ASSERT_TRUE(eventuallyInLoop([] { return !isEditing(); }));
    }

    static void press(const QString& key) { runCommand(u"xdotool"_s, {u"key"_s, key}); }

    /// What an X client gets from the clipboard in a format; nothing when there is none.
    static std::optional<QByteArray> clipboard(const QString& format) {
        QProcess xclip;
        xclip.start(u"xclip"_s, {u"-selection"_s, u"clipboard"_s, u"-o"_s, u"-t"_s, format});
        if (!eventuallyInLoop([&] { return xclip.state() == QProcess::NotRunning; }) || xclip.exitCode() != 0)
            return std::nullopt;
        return xclip.readAllStandardOutput();
    }

    /// Waits for the notice that ends a submission.
    ::testing::AssertionResult isSubmitted(std::size_t count = 1) {
        if (eventuallyInLoop([&] { return toasts.size() >= count; }, 20000))
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "no submission has ended";
    }

    /// The folder of the last submission.
    QDir session() { return QDir(storage.latestSessionDir().value_or(QString())); }

    QStringList sessionFiles() { return session().entryList(QDir::Files, QDir::Name); }

    static QByteArray fileBytes(const QString& path) {
        QFile file(path);
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }

    InMemorySettings settings;
    StorageManager storage{settings, desktop.home()};
    FakeTextRecognition recognition;
    TextRecognizer recognizer{recognition};
    qt::SystemClipboard systemClipboard;
    x11::X11DesktopKeyboard keyboard{DesktopFixture::session};
    MarkerManager manager{settings};
    SendTargets sendTargets;
    Tooltips tooltips{surfaces};
    std::vector<SubmitToast> toasts;
    /// Called when other windows are to be away, or may come back.
    std::function<void(bool)> holdWindowsBack = [](bool) {};
    /// Called on the thread of the submission.
    std::function<void(std::chrono::milliseconds)> sleep = [](std::chrono::milliseconds time) {
        std::this_thread::sleep_for(time);
    };
    PlatformWords words = freedesktop::desktopWords();
    SubmitPipeline pipeline{{.storage = storage,
                             .discovery = discovery,
                             .screenCapture = capture,
                             .displays = displays,
                             .pngWriter = pngWriter,
                             .textRecognizer = recognizer,
                             .clipboard = systemClipboard,
                             .words = words,
                             .sleep = [this](std::chrono::milliseconds time) { sleep(time); }}};
    BackgroundTasks tasks;
    OverlayController controller{
        {.manager = manager,
         .sendTargets = sendTargets,
         .pipeline = pipeline,
         .tasks = tasks,
         .keyboard = keyboard,
         .surfaces = surfaces,
         .displays = displays,
         .capture = capture,
         .words = words,
         .showToast = [this](const SubmitToast& toast) { toasts.push_back(toast); },
         .holdWindowsBack = [this](bool areHeldBack) { holdWindowsBack(areHeldBack); }}};
};

} // namespace orvane::test

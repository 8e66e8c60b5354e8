#pragma once

#include "OrvaneCore/capture/OrvaneError.h"
#include "OrvaneCore/recording/ScreenRecorder.h"
#include "OrvanePlatform/png/IgzipWriter.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FakeDesktop.h"
#include "tests/support/FakeMedia.h"
#include "tests/support/InMemorySettings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QTemporaryDir>

namespace orvane::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// A recorder of a desktop made of values, on a clock that the test moves.
class RecorderFixture : public testing::Test {
protected:
    static constexpr qint64 windowId = 40;

    RecorderFixture() {
        desktop.displayList = {makeDisplay(11, {0, 0, 4000, 3000})};
        desktop.addApplication(7, u"Terminal"_s, windowId, {10, 20, 800, 600}, u"build | main"_s);
        show({});
        storage.ensureDirectories();
        storage.setSaveRawVideo(false);
    }

    /// From now on the screen shows a fifth of each of these cells of the grid in another colour than the
    /// rest: too little for a major change.
    void show(const std::vector<QPoint>& cells) {
        QImage picture(800, 600, QImage::Format_RGB32);
        picture.fill(Qt::black);
        QPainter painter(&picture);
        for (const QPoint& cell : cells)
            painter.fillRect(cell.x() * 100, cell.y() * 100, 100, 20, Qt::white);
        painter.end();
        desktop.picture = picture;
    }

    /// The first cell blinks: every call shows it in the other colour.
    void blink() {
        m_blinkOn = !m_blinkOn;
        show(m_blinkOn ? std::vector<QPoint>{{0, 0}} : std::vector<QPoint>{});
    }

    QString start(qint64 intervalMs = 1000) {
        return start(WindowTarget{u"Terminal"_s, windowId}, RecordingSource::mcp, intervalMs);
    }
    QString start(const RecordingTarget& target, RecordingSource source = RecordingSource::mcp,
                  qint64 intervalMs = 1000) {
        QString id = recorder.startRecording(target, intervalMs, source);
        clock.awaitSleeper();
        return id;
    }

    QStringList files(const QString& id) const {
        return QDir(storage.sessionDir(id)).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }
    QString report(const QString& id) const {
        QFile file(storage.sessionDir(id) + u"/SESSION.md"_s);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return QString::fromUtf8(file.readAll());
    }
    QImage picture(const QString& id, const QString& name) const {
        return QImage(storage.sessionDir(id) + u'/' + name);
    }

    QTemporaryDir home;
    InMemorySettings settings;
    FakeClock clock;
    StorageManager storage{settings, home.path(), [this] { return clock.now(); },
                           [this](std::chrono::milliseconds time) { clock.jump(time); }};
    FakeDesktop desktop;
    png::IgzipWriter pngWriter;
    FakeMedia media;
    WindowDiscovery discovery{desktop, desktop};
    ScreenCapture screenCapture{desktop, desktop, pngWriter};
    /// Time takes none here, so that everything would come too fast to be compared.
    static constexpr std::size_t everyComparison = 1000;
    ScreenRecorder recorder{discovery, screenCapture, storage, pngWriter, media, clock, everyComparison};

private:
    bool m_blinkOn = false;
};

/// The message of the OrvaneError that the call throws.
template <class Call>
QString thrownBy(Call call) {
    try {
        call();
    } catch (const OrvaneError& error) {
        return error.description();
    }
    return u"nothing"_s;
}

} // namespace orvane::test

#pragma once

#include "OrvaneCore/recording/ScreenRecorder.h"
#include "OrvanePlatform/media/LazyMedia.h"
#include "tests/desktop/DesktopFixture.h"
#include "tests/support/InMemorySettings.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QPainter>
#include <QRegularExpression>

#include <mutex>

namespace orvane::test {

/// The machine's clock, which remembers how often the recorder has slept. So a test waits for a look instead
/// of some time: the recorder sleeps, looks once, sleeps again.
class WatchedClock final : public Clock {
public:
    QDateTime now() override { return m_clock.now(); }
    Monotonic monotonic() override { return m_clock.monotonic(); }

    bool sleepUntil(Monotonic moment, const std::stop_token& stop) override {
        setAsleep(true);
        const bool due = m_clock.sleepUntil(moment, stop);
        setAsleep(false);
        return due;
    }

    /// The sleeps that have begun, which are the number of the look that is under way or comes next.
    int sleeps() {
        const std::scoped_lock lock(m_mutex);
        return m_sleeps;
    }

    /// The number of the first look that begins after this call, and so sees all that is shown now.
    int nextLook() {
        const std::scoped_lock lock(m_mutex);
        return m_asleep ? m_sleeps : m_sleeps + 1;
    }

private:
    void setAsleep(bool asleep) {
        const std::scoped_lock lock(m_mutex);
        m_asleep = asleep;
        m_sleeps += asleep ? 1 : 0;
    }

    SystemClock m_clock;
    std::mutex m_mutex;
    int m_sleeps = 0;
    bool m_asleep = false;
};

using Lines = std::vector<std::string>;

/// An application object, with which the labels of changes are drawn; it opens no windows.
class Offscreen {
    char m_program[14] = "desktop_tests";
    char m_option[10] = "-platform";
    char m_platform[10] = "offscreen";
    // The application takes out what it has understood.
    char* m_arguments[4] = {m_program, m_option, m_platform, nullptr};
    int m_argumentCount = 3;
    QGuiApplication m_application{m_argumentCount, m_arguments};
};

/// The recorder with all its real parts on a virtual desktop; without movies unless a test asks for them.
class RecordingFixture : public DesktopFixture {
protected:
    static constexpr int columns = 8;
    static constexpr int rows = 6;

    explicit RecordingFixture(const QStringList& desktopOptions = {u"--size"_s, u"1280x780"_s})
        : DesktopFixture(desktopOptions) {
        storage.ensureDirectories();
        storage.setSaveRawVideo(false);
    }

    /// Waits for the first look that begins after now, and gives its number; 0 when there is none in time.
    int awaitLook() {
        const int look = clock.nextLook();
        return eventually([&] { return clock.sleeps() > look; }, lookDeadlineMs) ? look : 0;
    }

    /// The entries since the last call without their times, "change-#.png" for every numbered picture of a
    /// change. Times and numbers have to ascend.
    Lines news() {
        static const QRegularExpression time(u"^T\\+([0-9]+\\.[0-9])s \\| "_s);
        static const QRegularExpression change(u"change-([0-9]{3,})\\.png$"_s);
        const QStringList polled = recorder.pollTimeline().events;
        events += polled;
        Lines found;
        found.reserve(polled.size());
        for (QString line : polled) {
            const QRegularExpressionMatch timed = time.match(line);
            EXPECT_TRUE(timed.hasMatch()) << line.toStdString();
            EXPECT_GE(timed.captured(1).toDouble(), lastTime) << line.toStdString();
            lastTime = timed.captured(1).toDouble();
            line.remove(time);
            const QRegularExpressionMatch numbered = change.match(line);
            if (numbered.hasMatch()) {
                EXPECT_GT(numbered.captured(1).toInt(), lastChange) << line.toStdString();
                lastChange = numbered.captured(1).toInt();
                line.replace(change, u"change-#.png"_s);
            }
            found.push_back(line.toStdString());
        }
        return found;
    }

    QString file(const QString& id, const QString& name) const {
        return QDir(storage.sessionDir(id)).filePath(name);
    }
    QImage picture(const QString& id, const QString& name) const {
        return QImage(file(id, name)).convertToFormat(QImage::Format_RGB32);
    }
    /// The picture of the last change.
    QImage lastChangePicture(const QString& id) const {
        return picture(id, u"change-%1.png"_s.arg(lastChange, 3, 10, QChar(u'0')));
    }
    QString report(const QString& id) const {
        QFile report(file(id, u"SESSION.md"_s));
        EXPECT_TRUE(report.open(QIODevice::ReadOnly));
        return QString::fromUtf8(report.readAll());
    }

    /// That the folder holds what the entries name, the report and the small picture, and that the report
    /// tells the same entries. After the end of the recording, when news() has told all of it.
    void expectWholeSession(const QString& id) {
        QStringList files{u"SESSION.md"_s, u"thumbnail.png"_s};
        QStringList table;
        for (const QString& line : events) {
            const QStringList parts = line.split(u" | "_s);
            if (parts.size() > 3)
                files += parts.last();
            table += u"| "_s + line + (parts.size() > 3 ? u" |"_s : u" | — |"_s);
        }
        if (QFile::exists(file(id, u"recording.mp4"_s)))
            files += u"recording.mp4"_s;
        files.sort();
        EXPECT_EQ(QDir(storage.sessionDir(id)).entryList(QDir::Files | QDir::Hidden, QDir::Name), files);
        EXPECT_EQ(report(id).split(u'\n').filter(QRegularExpression(u"^\\| T\\+"_s)), table);
        EXPECT_EQ(storage.latestSessionDir(), QFileInfo(storage.sessionDir(id)).canonicalFilePath());
    }

    static constexpr int lookDeadlineMs = 20000;

    Offscreen offscreen;
    WatchedClock clock;
    InMemorySettings settings;
    StorageManager storage{settings, desktop.home()};
    media::LazyMedia media;
    ScreenRecorder recorder{discovery, capture, storage, pngWriter, media, clock};

    /// All that news() has told.
    QStringList events;
    double lastTime = 0;
    int lastChange = 0;
};

/// The rectangle around all pixels in which the pictures differ.
inline QRect difference(const QImage& one, const QImage& other) {
    if (one.size() != other.size())
        return one.rect().united(other.rect());
    QRect found;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            if (one.pixel(x, y) != other.pixel(x, y))
                found |= QRect(x, y, 1, 1);
        }
    }
    return found;
}

} // namespace orvane::test

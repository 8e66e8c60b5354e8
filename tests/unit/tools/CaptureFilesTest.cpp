#include "OrvaneCore/tools/CaptureFiles.h"

#include "OrvaneCore/capture/OrvaneError.h"
#include "OrvanePlatform/png/IgzipWriter.h"
#include "tests/support/BrokenPngWriter.h"
#include "tests/support/InMemorySettings.h"
#include "tests/support/KnownPicture.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace orvane {

namespace {

using test::knownPicture;

class CaptureFilesTest : public testing::Test {
protected:
    CaptureFilesTest() { storage.ensureDirectories(); }

    QStringList savedNames() const {
        return QDir(storage.capturesDir()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    QTemporaryDir home;
    test::InMemorySettings settings;
    StorageManager storage{settings, home.path()};
    png::IgzipWriter pngWriter;
    CaptureFiles files{storage, pngWriter, [] { return QDateTime({2026, 3, 4}, {5, 6, 7, 890}); }};
};

} // namespace

TEST_F(CaptureFilesTest, HandsOutTheSameBytesOfASmallPicture) {
    const EncodedCapture encoded = files.encode(knownPicture(1024, 700, false));
    EXPECT_EQ(encoded.agentPng, encoded.fullPng);
    EXPECT_EQ(encoded.agentSize, QSize(1024, 700));
    EXPECT_EQ(QImage::fromData(encoded.fullPng), knownPicture(1024, 700, false));
}

TEST_F(CaptureFilesTest, ShrinksALargePictureForTheAgentOnly) {
    const EncodedCapture encoded = files.encode(knownPicture(2048, 100, false));
    EXPECT_EQ(encoded.agentSize, QSize(1024, 50));
    EXPECT_EQ(QImage::fromData(encoded.agentPng).size(), QSize(1024, 50));
    EXPECT_EQ(QImage::fromData(encoded.fullPng), knownPicture(2048, 100, false));
}

TEST_F(CaptureFilesTest, FailsWhereNothingCanBeEncoded) {
    const test::BrokenPngWriter broken;
    const CaptureFiles brokenFiles(storage, broken, &QDateTime::currentDateTime);
    EXPECT_THROW(brokenFiles.encode(knownPicture(10, 10, false)), OrvaneError);
    EXPECT_THROW(brokenFiles.encode(knownPicture(2000, 10, false)), OrvaneError);
    EXPECT_THROW(files.encode(QImage()), OrvaneError);
}

TEST_F(CaptureFilesTest, NamesAFileAfterTimeApplicationAndKind) {
    const EncodedCapture encoded = files.encode(knownPicture(10, 10, false));
    files.save(encoded.fullPng, QStringLiteral("My App"));
    files.save(encoded.fullPng, QStringLiteral("My App"), QStringLiteral("-before"));
    files.save(encoded.fullPng, std::nullopt, QStringLiteral("-region"));
    EXPECT_EQ(savedNames(), (QStringList{QStringLiteral("20260304-050607-My App-before.png"),
                                         QStringLiteral("20260304-050607-My App.png"),
                                         QStringLiteral("20260304-050607-region.png")}));
}

TEST_F(CaptureFilesTest, SavesTheWholePicture) {
    const EncodedCapture encoded = files.encode(knownPicture(2048, 100, false));
    files.save(encoded.fullPng, QStringLiteral("App"));
    QFile file(storage.capturesDir() + QStringLiteral("/20260304-050607-App.png"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), encoded.fullPng);
}

TEST_F(CaptureFilesTest, HasSavedWhatItHandsOut) {
    for (const int width : {800, 2048}) {
        const EncodedCapture encoded =
            files.encodeAndSave(knownPicture(width, 100, false), QStringLiteral("App"), QStringLiteral("-x"));
        EXPECT_EQ(encoded.agentPng, files.encode(knownPicture(width, 100, false)).agentPng);
        EXPECT_EQ(QImage::fromData(encoded.fullPng), knownPicture(width, 100, false));
        EXPECT_EQ(savedNames(), QStringList{QStringLiteral("20260304-050607-App-x.png")});
        QFile file(storage.capturesDir() + QStringLiteral("/20260304-050607-App-x.png"));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.readAll(), encoded.fullPng);
        ASSERT_TRUE(file.remove());
    }
}

TEST_F(CaptureFilesTest, SavesNothingWhereNothingCanBeEncoded) {
    const test::BrokenPngWriter broken;
    const CaptureFiles brokenFiles(storage, broken, &QDateTime::currentDateTime);
    for (const int width : {10, 2000})
        EXPECT_THROW(brokenFiles.encodeAndSave(knownPicture(width, 10, false), std::nullopt), OrvaneError);
    EXPECT_EQ(savedNames(), QStringList());
}

TEST_F(CaptureFilesTest, KeepsStrangeNamesInsideTheFolder) {
    const EncodedCapture encoded = files.encode(knownPicture(10, 10, false));
    for (const QString& name :
         {QStringLiteral("../../escape"), QStringLiteral("a/b\nc\td"), QString(10000, u'x'),
          QString(10000, u'漢'), QString(QChar(0)), QStringLiteral("..")}) {
        files.save(encoded.fullPng, name, QStringLiteral("-region"));
        const QStringList saved = savedNames();
        ASSERT_EQ(saved.size(), 1) << name.left(20).toStdString();
        EXPECT_TRUE(saved.front().endsWith(u"-region.png"));
        EXPECT_LE(saved.front().toUtf8().size(), 255);
        QFile::remove(storage.capturesDir() + u'/' + saved.front());
    }
    EXPECT_EQ(QDir(home.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral(".orvane")});
}

TEST_F(CaptureFilesTest, GoesOnWhereNothingCanBeWritten) {
    const EncodedCapture encoded = files.encode(knownPicture(10, 10, false));
    QDir(storage.capturesDir()).removeRecursively();
    QFile inTheWay(storage.capturesDir());
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    EXPECT_NO_THROW(files.save(encoded.fullPng, QStringLiteral("App")));
    for (const int width : {10, 2048}) {
        const EncodedCapture shown =
            files.encodeAndSave(knownPicture(width, 10, false), QStringLiteral("App"));
        EXPECT_EQ(QImage::fromData(shown.fullPng), knownPicture(width, 10, false));
        EXPECT_FALSE(shown.agentPng.isEmpty());
    }
}

TEST(LegalFileName, ReplacesOnlyWhatMustBe) {
    EXPECT_EQ(legalFileName(QStringLiteral("Visual Studio: a.b (1)"), 100), u"Visual Studio: a.b (1)");
    EXPECT_EQ(legalFileName(QStringLiteral("a/b\nc"), 100), u"a-b-c");
}

TEST(LegalFileName, CutsBetweenCharacters) {
    EXPECT_EQ(legalFileName(QStringLiteral("äöü"), 5), u"äö");
    EXPECT_EQ(legalFileName(QStringLiteral("a😀b"), 4), u"a");
    EXPECT_EQ(legalFileName(QStringLiteral("a😀b"), 5), u"a😀");
    EXPECT_EQ(legalFileName(QStringLiteral("abc"), 0), u"");
    for (qsizetype most = 1; most < 40; ++most) {
        const qsizetype size = legalFileName(QString(50, u'漢'), most).toUtf8().size();
        EXPECT_LE(size, most);
        EXPECT_GT(size, most - 3);
    }
}

} // namespace orvane

#include "OrvaneCore/storage/ThumbnailCache.h"

#include "OrvanePlatform/png/IgzipWriter.h"
#include "tests/support/BrokenPngWriter.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace orvane {

using namespace Qt::StringLiterals;

class ThumbnailCacheTest : public testing::Test {
protected:
    QString source(const QSize& size, QRgb color = qRgb(10, 200, 30)) {
        QImage picture(size, QImage::Format_RGB32);
        picture.fill(color);
        QString path = folder.filePath(u"source.png"_s);
        EXPECT_TRUE(picture.save(path));
        return path;
    }
    QString thumbnail() const { return folder.filePath(u"thumbnail.png"_s); }

    QTemporaryDir folder;
    png::IgzipWriter pngWriter;
    ThumbnailCache cache{pngWriter};
};

TEST_F(ThumbnailCacheTest, IsFourHundredWide) {
    cache.generate(source({1920, 1080}), folder.path());
    const QImage loaded = ThumbnailCache::load(folder.path());
    EXPECT_EQ(loaded.size(), QSize(400, 225));
    EXPECT_EQ(loaded.pixel(200, 100), qRgb(10, 200, 30));
}

TEST_F(ThumbnailCacheTest, GrowsSmallPictures) {
    cache.generate(source({100, 50}), folder.path());
    EXPECT_EQ(ThumbnailCache::load(folder.path()).size(), QSize(400, 200));
}

TEST_F(ThumbnailCacheTest, IsNeverFlatterThanAPixel) {
    cache.generate(source({5000, 1}), folder.path());
    EXPECT_EQ(ThumbnailCache::load(folder.path()).size(), QSize(400, 1));
}

TEST_F(ThumbnailCacheTest, IsMadeOnce) {
    cache.generate(source({800, 600}), folder.path());
    cache.generate(source({100, 100}, qRgb(1, 2, 3)), folder.path());
    const QImage loaded = ThumbnailCache::load(folder.path());
    EXPECT_EQ(loaded.size(), QSize(400, 300));
    EXPECT_EQ(loaded.pixel(5, 5), qRgb(10, 200, 30));
}

TEST_F(ThumbnailCacheTest, IsNotThereWhereItCannotBeEncoded) {
    const test::BrokenPngWriter broken;
    ThumbnailCache(broken).generate(source({800, 600}), folder.path());
    EXPECT_FALSE(QFile::exists(thumbnail()));
}

TEST_F(ThumbnailCacheTest, IsNotMadeFromWhatIsNoPicture) {
    cache.generate(folder.filePath(u"missing.png"_s), folder.path());
    QFile text(folder.filePath(u"text.png"_s));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("no picture");
    text.close();
    cache.generate(text.fileName(), folder.path());
    EXPECT_FALSE(QFile::exists(thumbnail()));
    EXPECT_TRUE(ThumbnailCache::load(folder.path()).isNull());
}

TEST_F(ThumbnailCacheTest, IsNotMadeInAFolderThatIsNotThere) {
    cache.generate(source({8, 8}), folder.filePath(u"nowhere"_s));
    EXPECT_FALSE(QDir(folder.filePath(u"nowhere"_s)).exists());
}

TEST_F(ThumbnailCacheTest, CanBeTakenAway) {
    ThumbnailCache::invalidate(folder.path());
    cache.generate(source({8, 8}), folder.path());
    EXPECT_TRUE(QFile::exists(thumbnail()));
    ThumbnailCache::invalidate(folder.path());
    EXPECT_FALSE(QFile::exists(thumbnail()));
}

} // namespace orvane

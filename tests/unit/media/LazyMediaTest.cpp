#include "OrvanePlatform/media/LazyMedia.h"

#include "OrvaneCore/platform/PlatformError.h"
#include "OrvanePlatform/modules/ModuleLoader.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace orvane::media {
namespace {

using testing::AllOf;
using testing::HasSubstr;

const VideoFormat smallFormat{QSize(64, 48), 30, 100'000, 60};

std::string saidBy(LazyMedia& media, const QString& path) {
    try {
        media.createMp4(path, smallFormat);
    } catch (const PlatformError& error) {
        return error.what();
    }
    return {};
}

TEST(LazyMediaTest, AMissingModuleSaysWhatToInstallAndLeavesNoFile) {
    const QTemporaryDir folder;
    LazyMedia media(folder.path());
    const QString path = folder.filePath(u"movie.mp4"_s);

    EXPECT_THAT(saidBy(media, path),
                AllOf(HasSubstr("libavcodec59"), HasSubstr("libavformat59"), HasSubstr("libswscale6"),
                      HasSubstr("libavutil57"), HasSubstr("orvane-media"),
                      HasSubstr(folder.path().toStdString())));
    EXPECT_FALSE(QFile::exists(path));
    // It is no less true the second time.
    EXPECT_THAT(saidBy(media, path), HasSubstr("libavcodec59"));
}

TEST(LazyMediaTest, AModuleThatIsNoModuleSaysSo) {
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"orvane-media.so"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("no library");
    file.close();
    LazyMedia media(folder.path());

    EXPECT_THAT(saidBy(media, folder.filePath(u"movie.mp4"_s)), HasSubstr("libavcodec59"));
}

TEST(LazyMediaTest, AModuleThatCameInTheMeantimeIsUsed) {
    const QTemporaryDir folder;
    LazyMedia media(folder.path());
    const QString path = folder.filePath(u"movie.mp4"_s);
    ASSERT_NE(saidBy(media, path), "");

    const QString name = u"orvane-media.so"_s;
    ASSERT_TRUE(
        QFile::link(QDir(modules::ModuleLoader::standardFolder()).filePath(name), folder.filePath(name)));

    EXPECT_EQ(saidBy(media, path), "");
    EXPECT_TRUE(QFile::exists(path));
}

} // namespace
} // namespace orvane::media

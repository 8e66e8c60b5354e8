#include "OrvaneCore/base/PlainFile.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>

namespace orvane {
namespace {

using namespace Qt::StringLiterals;

class PlainFileTest : public testing::Test {
protected:
    PlainFileTest() {
        QFile file(path());
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("four");
    }

    QString path() const { return under(u"file"_s); }
    QString under(const QString& name) const { return m_folder.filePath(name); }

private:
    QTemporaryDir m_folder;
};

TEST_F(PlainFileTest, GivesAllBytesUpToTheLimit) {
    EXPECT_EQ(readPlainFile(path(), 4), QByteArray("four"));
    EXPECT_EQ(readPlainFile(path(), 3), std::nullopt);
}

TEST_F(PlainFileTest, FollowsALink) {
    ASSERT_TRUE(QFile::link(path(), under(u"link"_s)));
    EXPECT_EQ(readPlainFile(under(u"link"_s), 4), QByteArray("four"));
}

TEST_F(PlainFileTest, NothingElseIsRead) {
    ASSERT_EQ(::mkfifo(QFile::encodeName(under(u"pipe"_s)).constData(), 0600), 0);
    for (const QString& other : {under(u"missing"_s), under(u"pipe"_s), under(u"."_s), u"/dev/zero"_s})
        EXPECT_EQ(readPlainFile(other, 1000), std::nullopt) << qPrintable(other);
}

} // namespace
} // namespace orvane

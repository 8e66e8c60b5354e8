#include "OrvaneCore/mcp/MCPEndpoint.h"

#include "tests/support/InMemorySecrets.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace orvane {
namespace {

using namespace Qt::StringLiterals;

const MCPEndpointInfo sample{u"http://127.0.0.1:47600/mcp"_s, 47600, QString(64, u'a'), 4242, u"0.1.0"_s,
                             u"2026-11-15T09:26:11Z"_s};

class MCPEndpointTest : public testing::Test {
protected:
    QString folder() const { return m_home.path() + u"/.orvane"_s; }
    QString file() const { return folder() + u"/mcp-endpoint.json"_s; }

    QStringList entries() const {
        return QDir(folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                        QDir::NoDotAndDotDot);
    }

    void put(const QByteArray& bytes) const {
        ASSERT_TRUE(QDir().mkpath(folder()));
        QFile out(file());
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        ASSERT_EQ(out.write(bytes), bytes.size());
    }

    unsigned mode() const {
        struct stat status {};
        EXPECT_EQ(::stat(QFile::encodeName(file()).constData(), &status), 0);
        return status.st_mode & 07777U;
    }

    static bool isToken(const QString& text) {
        static const QRegularExpression pattern(u"\\A[0-9a-f]{64}\\z"_s);
        return pattern.match(text).hasMatch();
    }

    QTemporaryDir m_home;
    test::InMemorySecrets m_secrets;
    MCPEndpoint m_endpoint{m_home.path(), m_secrets};
};

TEST_F(MCPEndpointTest, HasItsFixedValues) {
    EXPECT_EQ(MCPEndpoint::defaultPort, 47600);
    EXPECT_EQ(MCPEndpoint::tokenKey, "mcpHttpToken"_L1);
    EXPECT_EQ(m_endpoint.filePath(), file());
}

TEST_F(MCPEndpointTest, MakesATokenOnceAndKeepsIt) {
    const QString token = m_endpoint.token();
    EXPECT_TRUE(isToken(token)) << token.toStdString();
    EXPECT_EQ(m_endpoint.token(), token);
    EXPECT_EQ(m_secrets.values, (QMap<QString, QString>{{u"mcpHttpToken"_s, token}}));
    EXPECT_EQ(MCPEndpoint(m_home.path(), m_secrets).token(), token);
}

TEST_F(MCPEndpointTest, GivesAStoredTokenAsItIs) {
    m_secrets.values.insert(u"mcpHttpToken"_s, u"mine"_s);
    EXPECT_EQ(m_endpoint.token(), u"mine"_s);
}

TEST_F(MCPEndpointTest, ReplacesAnEmptyToken) {
    m_secrets.values.insert(u"mcpHttpToken"_s, u""_s);
    const QString token = m_endpoint.token();
    EXPECT_TRUE(isToken(token));
    EXPECT_EQ(m_secrets.values.value(u"mcpHttpToken"_s), token);
}

TEST_F(MCPEndpointTest, AnewTokenTakesThePlaceOfTheFormer) {
    const QString former = m_endpoint.token();
    const QString token = m_endpoint.regenerateToken();
    EXPECT_TRUE(isToken(token));
    EXPECT_NE(token, former);
    EXPECT_EQ(m_endpoint.token(), token);
}

TEST_F(MCPEndpointTest, GivesAWorkingTokenWhereNothingCanBeStored) {
    m_secrets.refuses = true;
    const QString token = m_endpoint.token();
    EXPECT_TRUE(isToken(token));
    EXPECT_NE(m_endpoint.token(), token);
}

TEST_F(MCPEndpointTest, NoTwoTokensAreAlike) {
    QSet<QString> tokens;
    QSet<QChar> digitsAtTheEnd;
    for (int i = 0; i < 200; ++i) {
        const QString token = m_endpoint.regenerateToken();
        tokens.insert(token);
        digitsAtTheEnd.insert(token.back());
    }
    EXPECT_EQ(tokens.size(), 200);
    EXPECT_EQ(digitsAtTheEnd.size(), 16);
}

TEST_F(MCPEndpointTest, WritesAFileForItsUserAlone) {
    const mode_t before = ::umask(0);
    m_endpoint.write(sample);
    ::umask(before);
    EXPECT_EQ(mode(), 0600U);
    EXPECT_EQ(entries(), QStringList{u"mcp-endpoint.json"_s});
    QFile written(file());
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(written.readAll(), sample.encoded());
    EXPECT_EQ(m_endpoint.read(), sample);
}

TEST_F(MCPEndpointTest, ReplacesWhatACrashLeft) {
    put("left by somebody else");
    ASSERT_TRUE(QFile::setPermissions(file(), QFileDevice::Permissions(0x6666)));
    m_endpoint.write(sample);
    EXPECT_EQ(mode(), 0600U);
    EXPECT_EQ(m_endpoint.read(), sample);
}

TEST_F(MCPEndpointTest, SaysNothingWhenItCannotWrite) {
    put("x");
    ASSERT_TRUE(QFile::remove(file()));
    ASSERT_TRUE(QDir().mkdir(file()));
    testing::internal::CaptureStderr();
    m_endpoint.write(sample);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(entries(), QStringList{u"mcp-endpoint.json"_s});
    EXPECT_EQ(m_endpoint.read(), std::nullopt);
}

TEST_F(MCPEndpointTest, SaysNothingWhereTheFolderCannotBe) {
    QFile inTheWay(folder());
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    testing::internal::CaptureStderr();
    m_endpoint.write(sample);
    EXPECT_EQ(m_endpoint.read(), std::nullopt);
    m_endpoint.remove();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(QFileInfo(folder()).isFile());
}

TEST_F(MCPEndpointTest, RemovesTheFileAloneAndOnlyOnce) {
    m_endpoint.write(sample);
    m_endpoint.remove();
    EXPECT_EQ(entries(), QStringList());
    EXPECT_EQ(m_endpoint.read(), std::nullopt);
    m_endpoint.remove();
    EXPECT_TRUE(QFileInfo(folder()).isDir());
}

TEST_F(MCPEndpointTest, ReadsAfreshEachTime) {
    EXPECT_EQ(m_endpoint.read(), std::nullopt);
    m_endpoint.write(sample);
    EXPECT_EQ(m_endpoint.read(), sample);
    MCPEndpointInfo other = sample;
    other.pid = 7;
    m_endpoint.write(other);
    EXPECT_EQ(m_endpoint.read(), other);
}

TEST_F(MCPEndpointTest, AFileThatIsNoneIsNothing) {
    for (const QByteArray& bytes : {QByteArray(), QByteArray("{"), sample.encoded().chopped(3),
                                    sample.encoded() + sample.encoded(), QByteArray(4096, '\xff')}) {
        put(bytes);
        EXPECT_EQ(m_endpoint.read(), std::nullopt) << bytes.left(20).constData();
    }
}

TEST_F(MCPEndpointTest, AHugeFileIsNothing) {
    put(sample.encoded() + QByteArray(qsizetype{64} * 1024, ' '));
    EXPECT_EQ(m_endpoint.read(), std::nullopt);
    // Only its length was wrong.
    put(sample.encoded() + QByteArray(1024, ' '));
    EXPECT_EQ(m_endpoint.read(), sample);
}

TEST_F(MCPEndpointTest, APipeInItsPlaceIsNothingAndIsNotWaitedFor) {
    ASSERT_TRUE(QDir().mkpath(folder()));
    ASSERT_EQ(::mkfifo(QFile::encodeName(file()).constData(), 0600), 0);
    EXPECT_EQ(m_endpoint.read(), std::nullopt);
}

} // namespace
} // namespace orvane

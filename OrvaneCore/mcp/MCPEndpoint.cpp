#include "OrvaneCore/mcp/MCPEndpoint.h"

#include "OrvaneCore/base/AtomicFile.h"
#include "OrvaneCore/base/PlainFile.h"
#include "OrvaneCore/platform/SecretStore.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <array>

namespace orvane {

namespace {

using namespace Qt::StringLiterals;

/// Far above what the six values can take.
constexpr qint64 largestFile = qint64{64} * 1024;

QString freshToken() {
    std::array<quint32, 8> words{};
    QRandomGenerator::system()->fillRange(words.data(), static_cast<qsizetype>(words.size()));
    const QByteArray bytes(reinterpret_cast<const char*>(words.data()), sizeof words);
    return QString::fromLatin1(bytes.toHex());
}

} // namespace

MCPEndpoint::MCPEndpoint(const QString& homeDirectory, SecretStore& secrets)
    : m_secrets(secrets)
    , m_filePath(homeDirectory + u"/.orvane/mcp-endpoint.json"_s) {}

QString MCPEndpoint::token() {
    const std::optional<QString> stored = m_secrets.get(tokenKey);
    return stored && !stored->isEmpty() ? *stored : regenerateToken();
}

QString MCPEndpoint::regenerateToken() {
    QString token = freshToken();
    m_secrets.set(tokenKey, token);
    return token;
}

void MCPEndpoint::write(const MCPEndpointInfo& info) const {
    QDir().mkpath(QFileInfo(m_filePath).path());
    writeFileAtomically(m_filePath, info.encoded(), QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

std::optional<MCPEndpointInfo> MCPEndpoint::read() const {
    const std::optional<QByteArray> bytes = readPlainFile(m_filePath, largestFile);
    return bytes ? MCPEndpointInfo::decoded(*bytes) : std::nullopt;
}

void MCPEndpoint::remove() const {
    QFile::remove(m_filePath);
}

} // namespace orvane

// One message to the MCP server, whatever its bytes.
#include "OrvaneCore/base/MessageError.h"
#include "OrvaneCore/mcp/MCPRequest.h"
#include "OrvaneCore/mcp/MCPServer.h"
#include "OrvaneCore/mcp/ToolCallHandler.h"
#include "tests/fuzz/Check.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace {

using namespace orvane;
using namespace Qt::StringLiterals;
using fuzz::check;

/// Gives back what it is called with, so that it all comes out in the reply.
class EchoingHandler final : public ToolCallHandler {
public:
    QJsonObject handleToolCall(const QString& name, const QJsonObject& arguments) override {
        return {{u"name"_s, name}, {u"arguments"_s, arguments}};
    }
};

void checkReply(const MCPReply& reply) {
    check(reply.outcome.size() == 1, "a reply has one outcome");
    check(reply.outcome[u"result"_s].isObject() != reply.outcome[u"error"_s].isObject(),
          "a reply has a result or an error");

    QByteArray line;
    try {
        line = reply.serialised();
    } catch (const MessageError&) {
        return;
    }
    check(!line.contains('\n'), "a reply is one line");
    const MCPRequest read = MCPRequest::parse(line);
    check(read.message.size() == 3, "a reply has three keys");
    check(read.message[u"jsonrpc"_s] == u"2.0"_s, "a reply names its version");
    check(read.id == reply.id, "a reply has its id");
    const QString key = reply.outcome.keys().first();
    check(read.message[key] == reply.outcome[key], "a reply can be read back");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static EchoingHandler handler;
    static const MCPServer server(handler);
    const QByteArrayView message(bytes, static_cast<qsizetype>(size));
    const std::optional<MCPReply> processed = server.process(message);
    if (processed)
        checkReply(*processed);
    try {
        check(server.handleMessage(message) == processed, "a message is answered the same each time");
    } catch (const MessageError&) {
        check(processed && processed->outcome[u"error"_s][u"code"_s] == -32603,
              "what is no JSON is an error");
    }
    return 0;
}

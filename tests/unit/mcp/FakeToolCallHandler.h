#pragma once

#include "OrvaneCore/mcp/ToolCallHandler.h"

#include <QJsonArray>

#include <functional>
#include <mutex>
#include <vector>

namespace orvane {

/// Keeps every call and answers with what `answer` gives. Any thread.
class FakeToolCallHandler final : public ToolCallHandler {
public:
    struct Call {
        QString name;
        QJsonObject arguments;
        bool operator==(const Call&) const = default;
    };

    QJsonObject handleToolCall(const QString& name, const QJsonObject& arguments) override {
        {
            const std::lock_guard lock(m_mutex);
            m_calls.push_back({name, arguments});
        }
        return answer(name, arguments);
    }

    std::vector<Call> calls() const {
        const std::lock_guard lock(m_mutex);
        return m_calls;
    }

    std::function<QJsonObject(const QString&, const QJsonObject&)> answer =
        [](const QString&, const QJsonObject&) { return QJsonObject(); };

private:
    mutable std::mutex m_mutex;
    std::vector<Call> m_calls;
};

} // namespace orvane

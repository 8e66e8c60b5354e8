#include "Orvane/RetentionSweep.h"

#include "OrvaneCore/base/Log.h"

#include <QString>

#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;

RetentionSweep::RetentionSweep(Sweep sweep, std::function<void()> giveWay)
    : m_sweep(std::move(sweep))
    , m_giveWay(std::move(giveWay)) {}

void RetentionSweep::begin() {
    if (!m_isUnderWay.exchange(true))
        m_thread = std::jthread([this](const std::stop_token& stop) { run(stop); });
}

void RetentionSweep::run(const std::stop_token& stop) {
    m_giveWay();
    const int count = m_sweep(stop);
    if (count >= 1)
        logLine(u"cleaned up "_s + QString::number(count) + u" expired item(s)"_s);
    m_isUnderWay = false;
}

} // namespace orvane

#include "Orvane/RetentionSweep.h"

#include "OrvaneCore/base/Log.h"

#include <QString>

#include <thread>
#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

void run(const RetentionSweep::Sweep& sweep, const std::stop_token& stop) {
    const int count = sweep(stop);
    // A process that ends has nothing more to say.
    if (count >= 1 && !stop.stop_requested())
        logLine(u"cleaned up "_s + QString::number(count) + u" expired item(s)"_s);
}

} // namespace

RetentionSweep::RetentionSweep(std::function<Sweep()> prepare, std::function<void()> giveWay)
    : m_prepare(std::move(prepare))
    , m_giveWay(std::move(giveWay)) {}

RetentionSweep::~RetentionSweep() {
    m_stop.request_stop();
}

void RetentionSweep::begin() {
    if (m_isUnderWay->exchange(true))
        return;
    // Nothing of this object goes along.
    std::thread([sweep = m_prepare(), giveWay = m_giveWay, stop = m_stop.get_token(),
                 isUnderWay = m_isUnderWay] {
        giveWay();
        run(sweep, stop);
        *isUnderWay = false;
    }).detach();
}

} // namespace orvane

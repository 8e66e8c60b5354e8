#include "Orvane/AlreadyRunningAlert.h"

namespace orvane {

using namespace Qt::StringLiterals;

AlreadyRunningAlert::AlreadyRunningAlert(const PlatformWords& words)
    : QMessageBox(Information, u"Orvane"_s, u"Orvane is already running"_s) {
    setInformativeText(u"Look for the pin in your "_s + words.tray +
                       u". Only one instance can run at a time."_s);
}

} // namespace orvane

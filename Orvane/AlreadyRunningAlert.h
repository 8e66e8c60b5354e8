#pragma once

#include "OrvaneCore/platform/PlatformWords.h"

#include <QMessageBox>

namespace orvane {

/// What a second copy of the application shows before it leaves. Main thread.
class AlreadyRunningAlert final : public QMessageBox {
public:
    explicit AlreadyRunningAlert(const PlatformWords& words);
};

} // namespace orvane

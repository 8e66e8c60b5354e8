#pragma once

namespace orvane {

/// Held by the one copy of the application that runs; gives the lock up when it goes.
class InstanceLock {
public:
    virtual ~InstanceLock() = default;
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;

protected:
    InstanceLock() = default;
};

} // namespace orvane

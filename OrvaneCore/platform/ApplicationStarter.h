#pragma once

namespace orvane {

/// Starts the tray application beside this process.
class ApplicationStarter {
public:
    /// Set in the environment of a copy that was started this way: if another one holds the instance lock, it
    /// is to leave without a word.
    static constexpr const char* startedByLauncherVariable = "ORVANE_STARTED_BY_LAUNCHER";

    virtual ~ApplicationStarter() = default;

    /// True when a start is under way, or is not needed because the application runs or is being started
    /// already; nothing is known then about whether it will come to answer. False when it cannot be started.
    virtual bool start() = 0;

protected:
    ApplicationStarter() = default;
    ApplicationStarter(const ApplicationStarter&) = default;
    ApplicationStarter& operator=(const ApplicationStarter&) = default;
};

} // namespace orvane

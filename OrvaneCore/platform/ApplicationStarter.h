#pragma once

namespace orvane {

/// Starts the tray application beside this process.
class ApplicationStarter {
public:
    /// Set in the environment of a copy that was started this way: if another one holds the instance lock, it
    /// is to leave without a word.
    static constexpr const char* startedByLauncherVariable = "ORVANE_STARTED_BY_LAUNCHER";

    enum class Outcome {
        /// A start is under way; nothing is known about whether it will come to answer.
        started,
        /// Nothing was started, because another copy holds the instance lock: it runs, or is being started.
        notNeeded,
        impossible,
    };

    virtual ~ApplicationStarter() = default;

    virtual Outcome start() = 0;

protected:
    ApplicationStarter() = default;
    ApplicationStarter(const ApplicationStarter&) = default;
    ApplicationStarter& operator=(const ApplicationStarter&) = default;
};

} // namespace orvane

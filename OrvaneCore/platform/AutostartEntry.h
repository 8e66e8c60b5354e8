#pragma once

namespace orvane {

/// Whether the desktop starts this program when the user logs in. Any thread.
class AutostartEntry {
public:
    virtual ~AutostartEntry() = default;

    /// Whether the next login starts the program, as far as the desktop's rules tell.
    virtual bool isRegistered() const = 0;

    /// From the next login on the running executable is started, with no arguments.
    /// Throws PlatformError when that cannot be had, and then nothing has changed.
    virtual void registerEntry() = 0;

    /// From the next login on it is not started any more, whoever had it started.
    /// Throws PlatformError when that cannot be had, and then nothing has changed.
    virtual void unregisterEntry() = 0;

protected:
    AutostartEntry() = default;
    AutostartEntry(const AutostartEntry&) = default;
    AutostartEntry& operator=(const AutostartEntry&) = default;
};

} // namespace orvane

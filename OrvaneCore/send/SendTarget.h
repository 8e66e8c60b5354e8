#pragma once

#include <QString>

namespace orvane {

/// What an application that marks can be sent to is, and by that what it is given.
enum class SendTargetKind {
    ai,     ///< Pictures and then a text about them.
    comms,  ///< Pictures only.
    custom, ///< One that the user added; pictures only.
};

/// An application that marks can be sent to.
struct SendTarget {
    /// The name by which the user knows it.
    QString name;
    /// What the platform finds it by.
    QString bundleID;
    SendTargetKind kind = SendTargetKind::ai;

    bool operator==(const SendTarget&) const = default;
};

/// What came of sending.
struct SendOutcome {
    /// The application ran and was brought to the front.
    bool activated = false;
    /// Pictures that were pasted: all of them, or none.
    int sentCount = 0;
    int total = 0;

    bool operator==(const SendOutcome&) const = default;
};

} // namespace orvane

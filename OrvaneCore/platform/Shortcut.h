#pragma once

#include <QString>
#include <QStringView>

#include <optional>

namespace orvane {

/// A key with modifiers, in the numbers it is stored in: a virtual key code and a modifier mask of the Carbon
/// event API. A shortcut can hold numbers that no keyboard here can give; only using it shows that.
struct Shortcut {
    static constexpr int command = 256;
    static constexpr int shift = 512;
    static constexpr int option = 2048;
    static constexpr int control = 4096;

    int carbonKeyCode = 0;
    /// The sum of the modifiers above.
    int carbonModifiers = 0;

    /// The form in which a shortcut is stored: a JSON object with the two members as integers.
    QString toJson() const;

    /// Nothing when the text is not a JSON object with both members as integers of 0 or more. Other members
    /// do not matter.
    static std::optional<Shortcut> fromJson(QStringView text);

    friend bool operator==(const Shortcut&, const Shortcut&) = default;
};

} // namespace orvane

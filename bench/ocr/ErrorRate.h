#pragma once

#include <QString>
#include <QStringList>

namespace orvane::bench {

/// How many characters of a text were read wrongly.
struct ErrorRate {
    /// Insertions, deletions and substitutions.
    qint64 errors = 0;
    /// Characters of the reference.
    qint64 characters = 0;

    ErrorRate& operator+=(const ErrorRate& other) {
        errors += other.errors;
        characters += other.characters;
        return *this;
    }
    double percent() const {
        return characters == 0 ? 0 : 100.0 * static_cast<double>(errors) / static_cast<double>(characters);
    }
};

/// The edit distance between the lines, in their order and joined by spaces, and what was read, after white
/// space of any kind and length became one space on either side.
ErrorRate errorRate(const QStringList& lines, const QString& read);

/// The same without regard to the order of lines, and to what was read besides: each line is held against the
/// place in what was read that is most like it.
ErrorRate errorRateInAnyOrder(const QStringList& lines, const QString& read);

} // namespace orvane::bench

#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QtGlobal>

#include <optional>

/// The text of a value in a JSON object (RFC 8259), byte for byte: what a parser gives has lost how it was
/// written. Whether the text is JSON at all is for a parser to say. No call fails or reads beyond the end
/// whatever the bytes, and none takes longer than in proportion to their number. Any thread.
namespace orvane::raw_member {

/// In bytes of the text.
struct Place {
    qsizetype begin;
    qsizetype size;
};

/// Where the value of the object's own member of that name stands, of several the last one's. `key` is ASCII;
/// in the text it may be written with escapes. Nothing where there is none, or the text is no object as far
/// as one sees by its brackets, quotes and commas.
std::optional<Place> find(QByteArrayView object, QByteArrayView key);

/// Whether it is a number as JSON writes them.
bool isNumber(QByteArrayView value);

/// Whether that number is neither too large nor too small for a double; digits may get lost in it.
bool fitsDouble(QByteArrayView number);

} // namespace orvane::raw_member

#pragma once

#include <QString>
#include <QStringView>

namespace orvane {

// Texts of others, such as window titles, that are shown, stored, logged and pasted to terminals. A control
// character in them is no text: the controls of ISO 6429 (C0, DEL and C1), the line and paragraph separators,
// and the marks, embeddings, overrides and isolates of the Unicode bidirectional algorithm (UAX 9), which
// make a text look like another one.

/// The text without its control characters.
QString withoutControls(const QString& text);

/// The text on one line: a space stands for each control character.
QString onOneLine(QStringView text);

} // namespace orvane

#pragma once

#include <QString>

#include <optional>

/// The name a human gave a session. It lives nowhere but in the session's `SESSION.md`, on a line made of
/// "**Name:** " and the name. Both functions are pure; any thread.
namespace orvane::session_naming {

/// The text with its first name line replaced, or with a new one where there was none: ahead of the first
/// "**App:**" line, else under the title line, else at the end. The name is taken as it is, so the caller
/// gives one line without blanks around it. Nothing else in the text changes.
QString setName(const QString& markdown, const QString& name);

/// What the first name line holds, without blanks and tabs around it; nothing when there is no such line
/// or it is empty.
std::optional<QString> parseName(const QString& markdown);

} // namespace orvane::session_naming

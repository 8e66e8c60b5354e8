#pragma once

#include <QJsonArray>
#include <QString>
#include <QStringList>

/// The tools as an agent sees them, and the text that introduces them. Constant; any thread.
/// The texts stand in `catalogue/`, and agents decide from these words what to call.
namespace orvane::tool_catalogue {

/// The tools in their public order, each an object with `name`, `description` and `inputSchema` (a JSON
/// Schema). Read anew at each call.
QJsonArray toolDefinitions();

/// The names of the tools, in the same order.
QStringList names();

/// What the "initialize" result tells the agent about the whole.
QString instructions();

} // namespace orvane::tool_catalogue

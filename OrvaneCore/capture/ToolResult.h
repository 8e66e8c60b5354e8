#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace orvane {

// The result objects of "tools/call" (MCP 2024-11-05): a list of content items, and a flag on failures.

/// One text item.
QJsonObject toolResult(const QString& text);

/// The text first, then the image. `png` are the bytes of a PNG file.
QJsonObject toolResultWithImage(const QString& text, const QByteArray& png);

/// The text, then two images in this order.
QJsonObject toolResultWithImages(const QString& text, const QByteArray& firstPng,
                                 const QByteArray& secondPng);

/// A failure the agent is meant to read: "Error: " and the message.
QJsonObject toolError(const QString& message);

} // namespace orvane

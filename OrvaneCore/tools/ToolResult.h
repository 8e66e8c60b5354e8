#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>

namespace orvane {

// The result objects of "tools/call" (MCP 2024-11-05): a list of content items, and a flag on failures.

QJsonObject textItem(const QString& text);
/// `png` are the bytes of a PNG file, here and below.
QJsonObject imageItem(const QByteArray& png);

/// These items in this order.
QJsonObject toolResultWithItems(const QJsonArray& items);

/// One text item.
QJsonObject toolResult(const QString& text);

/// The text first, then the image.
QJsonObject toolResultWithImage(const QString& text, const QByteArray& png);

/// The text, then two images in this order.
QJsonObject toolResultWithImages(const QString& text, const QByteArray& firstPng,
                                 const QByteArray& secondPng);

/// A failure the agent is meant to read: "Error: " and the message.
QJsonObject toolError(const QString& message);

} // namespace orvane

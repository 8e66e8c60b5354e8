#include "OrvaneCore/tools/ToolResult.h"

namespace orvane {

using namespace Qt::StringLiterals;

QJsonObject textItem(const QString& text) {
    return {{u"type"_s, u"text"_s}, {u"text"_s, text}};
}

QJsonObject imageItem(const QByteArray& png) {
    return {{u"type"_s, u"image"_s},
            {u"data"_s, QString::fromLatin1(png.toBase64())},
            {u"mimeType"_s, u"image/png"_s}};
}

QJsonObject toolResultWithItems(const QJsonArray& items) {
    return {{u"content"_s, items}};
}

QJsonObject toolResult(const QString& text) {
    return toolResultWithItems({textItem(text)});
}

QJsonObject toolResultWithImage(const QString& text, const QByteArray& png) {
    return toolResultWithItems({textItem(text), imageItem(png)});
}

QJsonObject toolResultWithImages(const QString& text, const QByteArray& firstPng,
                                 const QByteArray& secondPng) {
    return toolResultWithItems({textItem(text), imageItem(firstPng), imageItem(secondPng)});
}

QJsonObject toolError(const QString& message) {
    QJsonObject result = toolResult(u"Error: "_s + message);
    result.insert(u"isError"_s, true);
    return result;
}

} // namespace orvane

#include "OrvaneCore/mcp/ToolCatalogue.h"

#include <QByteArray>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

// The macro wants to stand outside of every namespace.
static void registerCatalogue() {
    Q_INIT_RESOURCE(catalogue);
}

namespace orvane {

namespace {

using namespace Qt::StringLiterals;

QByteArray readCatalogueFile(const QString& name) {
    // The linker drops a static library's resources unless somebody asks for them.
    static const bool registered = (registerCatalogue(), true);
    Q_UNUSED(registered)

    QFile file(u":/orvane/catalogue/"_s + name);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("The tool catalogue is missing from the executable");
    return file.readAll();
}

} // namespace

QJsonArray tool_catalogue::toolDefinitions() {
    return QJsonDocument::fromJson(readCatalogueFile(u"tools.json"_s)).array();
}

QStringList tool_catalogue::names() {
    QStringList names;
    const QJsonArray tools = toolDefinitions();
    for (const auto& tool : tools)
        names.append(tool[u"name"_s].toString());
    return names;
}

QString tool_catalogue::instructions() {
    return QString::fromUtf8(readCatalogueFile(u"instructions.txt"_s));
}

} // namespace orvane

#include "OrvanePlatform/modules/ModuleLoader.h"

#include "OrvaneCore/platform/PlatformError.h"

#include <QCoreApplication>
#include <QDir>
#include <QPluginLoader>

#include <utility>

namespace orvane::modules {

using namespace Qt::StringLiterals;

ModuleLoader::ModuleLoader(QString folder)
    : m_folder(std::move(folder)) {}

QString ModuleLoader::standardFolder() {
    return QDir::cleanPath(QCoreApplication::applicationDirPath() + u"/../lib/orvane"_s);
}

QObject& ModuleLoader::load(const QString& name) const {
    // Qt keeps one library for each file, and it stays loaded when the loader that opened it goes.
    QPluginLoader loader(QDir(m_folder).filePath(name));
    QObject* root = loader.instance();
    if (root == nullptr) {
        throw PlatformError(
            u"The module %1 could not be loaded from %2: %3"_s.arg(name, m_folder, loader.errorString()));
    }
    return *root;
}

void ModuleLoader::throwForeign(const QString& name) const {
    throw PlatformError(
        u"The module %1 in %2 does not fit this program; install both from the same build."_s.arg(name,
                                                                                                  m_folder));
}

} // namespace orvane::modules

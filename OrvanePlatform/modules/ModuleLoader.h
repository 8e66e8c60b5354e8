#pragma once

#include <QObject>
#include <QString>

#include <memory>

namespace orvane::modules {

/// Opens the module libraries: what is too large to be linked into a program that an agent starts for every
/// session, and is loaded when it is first needed. Any thread.
class ModuleLoader {
public:
    /// `folder`: where the modules lie.
    explicit ModuleLoader(QString folder = standardFolder());

    /// ../lib/orvane/ from the folder of the executable, as built and as installed.
    /// Needs a QCoreApplication in the process.
    static QString standardFolder();

    /// The module's root object, of which there is one in the process; `name` is the file's without its
    /// suffix. A module that was loaded stays until the process ends. Throws PlatformError, with a sentence
    /// that names the file and the reason, when there is no such module or it does not load.
    QObject& load(const QString& name) const;

    /// The same as the interface that the module is known to implement.
    template <class Interface>
    Interface& load(const QString& name) const {
        if (auto* module = qobject_cast<Interface*>(&load(name)))
            return *module;
        throwForeign(name);
    }

private:
    [[noreturn]] void throwForeign(const QString& name) const;

    QString m_folder;
};

} // namespace orvane::modules

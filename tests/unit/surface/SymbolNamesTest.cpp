// Icons are named where texts are made, and drawn elsewhere: here the two are compared.
#include "OrvaneCore/surface/SymbolGlyphs.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <map>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

/// Texts with dots between words that name a file, or what is unique in the world, and no icon.
bool namesSomethingElse(const QString& text) {
    static const QRegularExpression other(
        u"^(com|org)\\.|\\.(desktop|gif|jpg|json|link|lock|md|mov|mp4|png|so|txt|version)$"_s);
    return other.match(text).hasMatch();
}

/// The icons that the sources of the program name, each with a file that does: all texts that have the form
/// of an icon's name, and those that are given as one, whatever their form.
std::map<QString, QString> namedIcons() {
    static const QRegularExpression dotted(u"u\"([a-z][a-z0-9]*(?:\\.[a-z0-9]+)+)\""_s);
    static const QRegularExpression given(u"icon\\s*=\\s*u\"([^\"]*)\"|drawSymbol\\([^;]*?u\"([^\"]*)\""_s);
    std::map<QString, QString> icons;
    for (const QString& folder : {u"/Orvane"_s, u"/OrvaneCore"_s}) {
        QDirIterator files(QStringLiteral(ORVANE_PROGRAM_DIR) + folder, {u"*.h"_s, u"*.cpp"_s}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            // There they are drawn.
            if (file.fileName().endsWith(u"/SymbolGlyphs.cpp"_s))
                continue;
            if (!file.open(QFile::ReadOnly)) {
                ADD_FAILURE() << file.fileName().toStdString();
                continue;
            }
            const QString source = QString::fromUtf8(file.readAll());
            for (auto matches = dotted.globalMatch(source); matches.hasNext();) {
                const QString name = matches.next().captured(1);
                if (!namesSomethingElse(name))
                    icons.emplace(name, file.fileName());
            }
            for (auto matches = given.globalMatch(source); matches.hasNext();)
                icons.emplace(matches.next().capturedTexts().last(), file.fileName());
        }
    }
    return icons;
}

} // namespace

TEST(SymbolNames, EveryIconThatATextNamesHasADrawing) {
    const std::map<QString, QString> icons = namedIcons();
    for (const auto& [name, file] : icons)
        EXPECT_FALSE(symbolPath(name).isEmpty()) << name.toStdString() << " in " << file.toStdString();
}

TEST(SymbolNames, AreFoundWhereTheyAreGiven) {
    const std::map<QString, QString> icons = namedIcons();
    for (const QString& name :
         {u"checkmark.circle.fill"_s, u"doc.on.clipboard.fill"_s, u"exclamationmark.triangle.fill"_s,
          u"paperplane.fill"_s, u"record.circle.fill"_s, u"text.viewfinder"_s})
        EXPECT_TRUE(icons.contains(name)) << name.toStdString();
}

} // namespace orvane::test

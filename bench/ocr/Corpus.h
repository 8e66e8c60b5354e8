#pragma once

#include <QImage>
#include <QString>
#include <QStringList>

#include <vector>

namespace orvane::bench {

/// A picture of interface text, and what is written in it.
struct Sample {
    QImage picture;
    /// In reading order: panes from left to right, rows from the top, a row of a table is one line.
    QStringList lines;
    /// As the recogniser's data files are called: "eng".
    QString language;
    /// Of the crop of one line "sentence", "label", "code", "path" or "row", and "line" in other languages;
    /// of a panel what it is, such as "dialog".
    QString kind;
    QString font;
    bool isDark = false;
    int pixelSize = 0;
};

/// Draws the pictures of one set of texts, always the same ones.
class Corpus {
public:
    /// `folder`: the set, "tuning" or "heldout". `fonts`: the families for English.
    Corpus(QString folder, QStringList fonts, quint32 seed);

    /// Crops of one line in English, over all sizes from 11 to 18 px, fonts and themes.
    std::vector<Sample> englishCrops() const;
    /// Dialogs, tables, menus, code and pairs of panes in English.
    std::vector<Sample> englishPanels() const;
    /// Crops of one line from 13 to 18 px in the other languages.
    std::vector<Sample> otherCrops(const QString& language) const;

private:
    QStringList read(const QString& name) const;

    QString m_folder;
    QStringList m_fonts;
    quint32 m_seed = 0;
};

} // namespace orvane::bench

#pragma once

#include <QColor>
#include <QFont>
#include <QString>
#include <QStringList>

#include <random>

namespace orvane::bench {

/// Random numbers that are the same on every machine.
class Random {
public:
    explicit Random(quint32 seed)
        : m_engine(seed) {}

    /// From `low` to `high`, both of them included.
    int between(int low, int high) {
        return low + static_cast<int>(m_engine() % static_cast<quint32>(high - low + 1));
    }
    const QString& of(const QStringList& list) { return list[between(0, static_cast<int>(list.size()) - 1)]; }

private:
    std::mt19937 m_engine;
};

/// The texts of one set.
struct TextPool {
    QStringList sentences;
    QStringList labels;
    QStringList code;
    QStringList words;

    /// A line of a kind: "sentence", "label", "code", "path", "row".
    QString line(const QString& kind, Random& random) const;
    QString path(Random& random) const;
    /// A file name, a date, a size and a number.
    QStringList cells(Random& random) const;
};

/// A font and its colours.
struct Look {
    QFont font;
    QColor background;
    QColor ink;
};

/// Throws std::runtime_error when the font is not installed: another one would be measured in its place.
Look makeLook(const QString& family, int pixelSize, bool isDark, Random& random);

} // namespace orvane::bench

#include "OrvanePlatform/freedesktop/DesktopEntryKeys.h"

#include <QList>

namespace orvane::freedesktop {

using namespace Qt::StringLiterals;

namespace {

QString unescaped(const QString& value) {
    QString result;
    result.reserve(value.size());
    for (qsizetype i = 0; i < value.size(); ++i) {
        const QChar next = i + 1 < value.size() ? value[i + 1] : QChar();
        if (value[i] != u'\\' || next.isNull()) {
            result += value[i];
            continue;
        }
        ++i;
        result += next == u's'   ? QChar(u' ')
                  : next == u'n' ? QChar(u'\n')
                  : next == u't' ? QChar(u'\t')
                  : next == u'r' ? QChar(u'\r')
                                 : next;
    }
    return result;
}

} // namespace

QHash<QString, QString> readDesktopEntryKeys(const QByteArray& contents) {
    QHash<QString, QString> values;
    bool inGroup = false;
    for (const QByteArray& rawLine : contents.split('\n')) {
        const QByteArray line = rawLine.trimmed();
        if (line.startsWith('[')) {
            inGroup = line == "[Desktop Entry]";
            continue;
        }
        const qsizetype equals = line.indexOf('=');
        if (!inGroup || equals <= 0 || line.startsWith('#'))
            continue;
        values.insert(QString::fromUtf8(line.left(equals)).trimmed(),
                      unescaped(QString::fromUtf8(line.mid(equals + 1)).trimmed()));
    }
    return values;
}

QString escapedDesktopEntryValue(const QString& value) {
    QString result = value;
    result.replace(u"\\"_s, u"\\\\"_s)
        .replace(u"\n"_s, u"\\n"_s)
        .replace(u"\t"_s, u"\\t"_s)
        .replace(u"\r"_s, u"\\r"_s);
    // Spaces at either end are taken for the layout of the line.
    for (const qsizetype end : {result.size() - 1, qsizetype(0)}) {
        if (end >= 0 && end < result.size() && result[end] == u' ')
            result.replace(end, 1, u"\\s"_s);
    }
    return result;
}

} // namespace orvane::freedesktop

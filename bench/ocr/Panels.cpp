#include "bench/ocr/Panels.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

namespace orvane::bench {

using namespace Qt::StringLiterals;

namespace {

/// A painter on a picture of its own, with the measures of its font.
class Sheet {
public:
    Sheet(int width, int height, const Look& look)
        : m_look(look)
        , m_metrics(look.font)
        , m_picture(width, height, QImage::Format_RGB32)
        , m_painter((m_picture.fill(look.background), &m_picture)) {
        m_painter.setFont(look.font);
        m_painter.setPen(look.ink);
    }

    QPainter& painter() { return m_painter; }

    /// `top`: of the row; the text stands in its middle.
    void text(int left, int top, int rowHeight, const QString& text) {
        m_painter.drawText(left, top + (rowHeight - m_metrics.height()) / 2 + m_metrics.ascent(), text);
    }

    QImage take() {
        m_painter.end();
        return m_picture;
    }

private:
    Look m_look;
    QFontMetrics m_metrics;
    QImage m_picture;
    QPainter m_painter;
};

QColor shifted(const QColor& colour, int step) {
    const bool isLight = colour.lightness() > 127;
    const auto shift = [&](int channel) {
        return std::clamp(isLight ? channel - step : channel + step, 0, 255);
    };
    return {shift(colour.red()), shift(colour.green()), shift(colour.blue())};
}

QStringList pick(const QStringList& from, int count, Random& random) {
    QStringList picked;
    while (picked.size() < count) {
        const QString& text = random.of(from);
        if (!picked.contains(text))
            picked.append(text);
    }
    return picked;
}

Panel dialog(const TextPool& pool, const Look& look, Random& random) {
    const QFontMetrics metrics(look.font);
    const QString message = random.of(pool.sentences);
    const QStringList buttons = pick(pool.labels, 3, random);
    const int rowHeight = metrics.height() + 12;
    int buttonsWidth = 0;
    for (const QString& button : buttons)
        buttonsWidth += metrics.horizontalAdvance(button) + 36;
    Sheet sheet(std::max(metrics.horizontalAdvance(message), buttonsWidth) + 40, 3 * rowHeight + 20, look);
    sheet.text(20, 10, rowHeight, message);
    int left = 20;
    for (const QString& button : buttons) {
        const QRect frame(left, 10 + 2 * rowHeight, metrics.horizontalAdvance(button) + 24, rowHeight);
        sheet.painter().setBrush(shifted(look.background, 24));
        sheet.painter().setPen(shifted(look.background, 70));
        sheet.painter().drawRoundedRect(frame, 4, 4);
        sheet.painter().setPen(look.ink);
        sheet.text(left + 12, frame.top(), rowHeight, button);
        left += frame.width() + 12;
    }
    return {sheet.take(), {message, buttons.join(u' ')}, u"dialog"_s};
}

Panel table(const TextPool& pool, const Look& look, bool hasLines, Random& random) {
    const QFontMetrics metrics(look.font);
    std::vector<QStringList> rows{{u"Name"_s, u"Modified"_s, u"Size"_s, u"Price"_s}};
    for (int row = 0; row < 6; ++row)
        rows.push_back(pool.cells(random));
    const int rowHeight = metrics.height() + 8;
    std::vector<int> lefts{0};
    for (int column = 0; column < rows[0].size(); ++column) {
        int widest = 0;
        for (const QStringList& row : rows)
            widest = std::max(widest, metrics.horizontalAdvance(row[column]));
        lefts.push_back(lefts.back() + widest + 24);
    }
    const int height = rowHeight * static_cast<int>(rows.size());
    Sheet sheet(lefts.back() + 1, height + 1, look);
    QStringList lines;
    for (size_t row = 0; row < rows.size(); ++row) {
        const int top = rowHeight * static_cast<int>(row);
        if (row == 0)
            sheet.painter().fillRect(0, top, lefts.back(), rowHeight, shifted(look.background, 20));
        for (size_t column = 0; column + 1 < lefts.size(); ++column)
            sheet.text(lefts[column] + 8, top, rowHeight, rows[row][static_cast<qsizetype>(column)]);
        lines.append(rows[row].join(u' '));
    }
    if (hasLines) {
        sheet.painter().setPen(shifted(look.background, 45));
        for (size_t row = 0; row <= rows.size(); ++row) {
            const int y = rowHeight * static_cast<int>(row);
            sheet.painter().drawLine(0, y, lefts.back(), y);
        }
        for (const int left : lefts)
            sheet.painter().drawLine(left, 0, left, height);
    }
    return {sheet.take(), lines, hasLines ? u"table with lines"_s : u"table"_s};
}

Panel menu(const TextPool& pool, const Look& look, Random& random) {
    static const QStringList keys{u"Ctrl+S"_s,   u"Ctrl+Shift+N"_s, u"F5"_s,
                                  u"Alt+Left"_s, u"Ctrl+W"_s,       u"F11"_s};
    const QFontMetrics metrics(look.font);
    const QStringList labels = pick(pool.labels, 7, random);
    int widest = 0;
    for (const QString& label : labels)
        widest = std::max(widest, metrics.horizontalAdvance(label));
    const int rowHeight = metrics.height() + 8;
    const int keysLeft = 16 + widest + 32;
    Sheet sheet(keysLeft + metrics.horizontalAdvance(keys[1]) + 16, 7 * rowHeight + 12, look);
    QStringList lines;
    for (int row = 0; row < labels.size(); ++row) {
        const int top = 6 + row * rowHeight;
        if (row == 2) {
            // The pointer is over this one.
            sheet.painter().fillRect(4, top, keysLeft + 60, rowHeight, QColor(53, 132, 228));
            sheet.painter().setPen(Qt::white);
        }
        sheet.text(16, top, rowHeight, labels[row]);
        QString line = labels[row];
        if (row % 2 == 0) {
            const QString& key = random.of(keys);
            sheet.text(keysLeft, top, rowHeight, key);
            line += u' ' + key;
        }
        sheet.painter().setPen(look.ink);
        lines.append(line);
    }
    return {sheet.take(), lines, u"menu"_s};
}

Panel code(const TextPool& pool, const Look& look, Random& random) {
    const QFontMetrics metrics(look.font);
    const QStringList lines = pick(pool.code, 8, random);
    const int rowHeight = metrics.height() + 2;
    int widest = 0;
    for (const QString& line : lines)
        widest = std::max(widest, metrics.horizontalAdvance(line));
    Sheet sheet(widest + 80, 8 * rowHeight + 8, look);
    QStringList trimmed;
    for (int row = 0; row < lines.size(); ++row) {
        sheet.text(8 + 20 * (row % 3), 4 + row * rowHeight, rowHeight, lines[row]);
        trimmed.append(lines[row].trimmed());
    }
    return {sheet.take(), trimmed, u"code"_s};
}

Panel panes(const TextPool& pool, const Look& left, const Look& right, Random& random) {
    const QFontMetrics metrics(left.font);
    const QStringList labels = pick(pool.labels, 6, random);
    const QStringList sentences = pick(pool.sentences, 5, random);
    int leftWidth = 0;
    for (const QString& label : labels)
        leftWidth = std::max(leftWidth, metrics.horizontalAdvance(label) + 24);
    int rightWidth = 0;
    for (const QString& sentence : sentences)
        rightWidth = std::max(rightWidth, metrics.horizontalAdvance(sentence) + 24);
    const int rowHeight = metrics.height() + 8;
    Sheet sheet(leftWidth + rightWidth, 6 * rowHeight + 8, left);
    for (int row = 0; row < labels.size(); ++row)
        sheet.text(12, 4 + row * rowHeight, rowHeight, labels[row]);
    sheet.painter().fillRect(leftWidth, 0, rightWidth, 6 * rowHeight + 8, right.background);
    sheet.painter().setPen(right.ink);
    for (int row = 0; row < sentences.size(); ++row)
        sheet.text(leftWidth + 12, 10 + row * (rowHeight + 3), rowHeight, sentences[row]);
    return {sheet.take(), labels + sentences, u"panes"_s};
}

} // namespace

std::vector<Panel> drawPanels(const TextPool& pool, const QString& family, const QString& codeFamily,
                              int pixelSize, bool isDark, Random& random) {
    const auto look = [&] { return makeLook(family, pixelSize, isDark, random); };
    std::vector<Panel> panels;
    panels.push_back(dialog(pool, look(), random));
    panels.push_back(table(pool, look(), true, random));
    panels.push_back(table(pool, look(), false, random));
    panels.push_back(menu(pool, look(), random));
    panels.push_back(code(pool, makeLook(codeFamily, pixelSize, isDark, random), random));
    panels.push_back(panes(pool, makeLook(family, pixelSize, !isDark, random), look(), random));
    return panels;
}

} // namespace orvane::bench

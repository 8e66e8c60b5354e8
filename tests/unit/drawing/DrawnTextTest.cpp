#include "OrvaneCore/drawing/DrawnText.h"

#include "tests/unit/marking/Drawings.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

#include <optional>
#include <thread>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

constexpr int pixelSize = 20;

QSizeF sizeOf(const QString& text, qreal scale = 1) {
    return DrawnText(text, pixelSize, QFont::Normal, scale).size();
}

/// In black on white, with its top-left corner at 20,20.
QImage written(const QString& text, qreal scale = 1) {
    QImage picture = ground({400, 200});
    QPainter painter(&picture);
    DrawnText(text, pixelSize, QFont::Normal, scale).draw(painter, {20, 20}, QColor(black));
    painter.end();
    return picture;
}

/// Sets the font of the application for as long as it lives.
class ApplicationFont {
public:
    explicit ApplicationFont(const QFont& font)
        : m_before(QGuiApplication::font()) {
        QGuiApplication::setFont(font);
    }
    ~ApplicationFont() { QGuiApplication::setFont(m_before); }
    ApplicationFont(const ApplicationFont&) = delete;
    ApplicationFont& operator=(const ApplicationFont&) = delete;

private:
    QFont m_before;
};

} // namespace

TEST(DrawnText, IsExactlyInProportionToItsScale) {
    for (const QString& text : {u"Hamburgefonts"_s, u"il1|"_s, u"two\nlines"_s, u"שלום"_s, u""_s}) {
        const QSizeF one = sizeOf(text);
        for (const qreal scale : {0.25, 1.25, 1.5, 2.0, 3.0, 10.0}) {
            EXPECT_DOUBLE_EQ(sizeOf(text, scale).width(), scale * one.width());
            EXPECT_DOUBLE_EQ(sizeOf(text, scale).height(), scale * one.height());
        }
    }
}

TEST(DrawnText, IsWiderWithEveryLetterAndSpace) {
    EXPECT_GT(sizeOf(u"MM"_s).width(), sizeOf(u"M"_s).width() + 10);
    EXPECT_GT(sizeOf(u"M "_s).width(), sizeOf(u"M"_s).width() + 3);
    EXPECT_GT(sizeOf(u"  "_s).width(), sizeOf(u" "_s).width() + 3);
    EXPECT_GT(sizeOf(u" M"_s).width(), sizeOf(u"M"_s).width() + 3);
    EXPECT_GT(sizeOf(u"שלום  "_s).width(), sizeOf(u"שלום"_s).width() + 6);
    EXPECT_DOUBLE_EQ(sizeOf(u"M"_s.repeated(1000)).width(), 1000 * sizeOf(u"M"_s).width());
}

TEST(DrawnText, HasNoWidthAndOneLineWhenEmpty) {
    EXPECT_EQ(sizeOf(u""_s).width(), 0);
    EXPECT_EQ(sizeOf(u""_s).height(), sizeOf(u"M"_s).height());
    EXPECT_TRUE(inkBounds(written(u""_s)).isEmpty());
    EXPECT_TRUE(inkBounds(written(u"   "_s)).isEmpty());
}

TEST(DrawnText, HasTheFontsSize) {
    EXPECT_GT(sizeOf(u"M"_s).height(), pixelSize);
    EXPECT_LT(sizeOf(u"M"_s).height(), 1.6 * pixelSize);
    EXPECT_GT(DrawnText(u"M"_s, 40, QFont::Normal, 1).size().height(), 1.9 * sizeOf(u"M"_s).height());
    // A capital letter is about 0.7 of it.
    const int capital = inkBounds(written(u"H"_s), white, 100).height();
    EXPECT_GT(capital, 0.6 * pixelSize);
    EXPECT_LT(capital, 0.85 * pixelSize);
}

TEST(DrawnText, IsHeavierInBold) {
    const auto inkOf = [](QFont::Weight weight) {
        QImage picture = ground({200, 80});
        QPainter painter(&picture);
        DrawnText(u"weight"_s, pixelSize, weight, 2).draw(painter, {5, 5}, QColor(black));
        painter.end();
        return difference(picture, ground({200, 80}), 0).mean;
    };
    EXPECT_GT(inkOf(QFont::Bold), 1.2 * inkOf(QFont::Normal));
}

TEST(DrawnText, BreaksAtNewlinesOnly) {
    const QSizeF one = sizeOf(u"a long line of words"_s);
    const QSizeF three = sizeOf(u"short\na long line of words\n!"_s);
    EXPECT_DOUBLE_EQ(three.height(), 3 * one.height());
    EXPECT_DOUBLE_EQ(three.width(), one.width());
    EXPECT_DOUBLE_EQ(sizeOf(u"a\n\nb"_s).height(), 3 * one.height());
    EXPECT_DOUBLE_EQ(sizeOf(u"a\n"_s).height(), 2 * one.height());
    EXPECT_DOUBLE_EQ(sizeOf(u"word "_s.repeated(2000)).height(), one.height());
}

TEST(DrawnText, StandsAtItsTopLeft) {
    for (const qreal scale : {1.0, 1.5, 2.0, 3.0}) {
        const QRectF box(QPointF(20, 20), sizeOf(u"Hj"_s, scale));
        const QRect ink = inkBounds(written(u"Hj"_s, scale), white, 8);
        EXPECT_TRUE(box.toAlignedRect().contains(ink)) << scale;
        EXPECT_LT(ink.left() - box.left(), 4 * scale);
        EXPECT_LT(ink.top() - box.top(), 0.4 * pixelSize * scale);
        EXPECT_LT(box.bottom() - ink.bottom(), 0.3 * pixelSize * scale);
    }
}

TEST(DrawnText, StandsThereAlsoWhenItRunsFromRightToLeft) {
    const QRectF box(QPointF(20, 20), sizeOf(u"שלום עולם\nכן"_s));
    const QRect ink = inkBounds(written(u"שלום עולם\nכן"_s), white, 8);
    EXPECT_TRUE(box.toAlignedRect().contains(ink));
    EXPECT_LT(ink.left() - box.left(), 6);
    EXPECT_LT(box.right() - ink.right(), 6);
    // All lines begin at the left.
    const QRect second =
        inkBounds(written(u"שלום עולם\nכן"_s).copy(QRect(0, static_cast<int>(box.center().y()) + 1, 400, 60)),
                  white, 8);
    EXPECT_LT(second.left() - box.left(), 6);
    EXPECT_LT(second.right(), box.center().x());
}

TEST(DrawnText, PutsItsMiddleInTheMiddle) {
    for (const qreal scale : {1.0, 2.0}) {
        const DrawnText text(u"Hop"_s, pixelSize, QFont::Normal, scale);
        QImage centred = ground({400, 200});
        QPainter painter(&centred);
        text.drawCentered(painter, {200, 100}, QColor(black));
        painter.end();
        QImage expected = ground({400, 200});
        QPainter other(&expected);
        text.draw(other, QPointF(200 - text.size().width() / 2, 100 - text.size().height() / 2),
                  QColor(black));
        other.end();
        EXPECT_EQ(centred, expected);
        EXPECT_NEAR(inkBounds(centred, white, 100).center().x(), 200, 1.5 * scale);
    }
}

TEST(DrawnText, IsOfItsColour) {
    QImage picture = ground({200, 100});
    QPainter painter(&picture);
    painter.setPen(Qt::red);
    DrawnText(u"IIII"_s, 40, QFont::Bold, 1).draw(painter, {10, 10}, QColor(blue));
    painter.end();
    const QRect ink = inkBounds(picture);
    int pure = 0;
    for (int x = ink.left(); x <= ink.right(); ++x) {
        const QRgb pixel = picture.pixel(x, ink.center().y());
        pure += pixel == blue ? 1 : 0;
        // Between the ground and the ink and nowhere else.
        const qreal part = coverage(pixel, white, blue);
        EXPECT_LE(colorDistance(pixel, blended(blue, part, white)), 3) << x;
    }
    EXPECT_GT(pure, 8);
}

TEST(DrawnText, LeavesThePainterAsItWas) {
    QImage picture = ground({400, 200});
    QPainter painter(&picture);
    setUnusual(painter);
    const PainterSettings before(painter);
    const DrawnText text(u"words"_s, pixelSize, QFont::Bold, 2);
    text.draw(painter, {10, 10}, QColor(black));
    text.drawCentered(painter, {10, 10}, QColor(black));
    EXPECT_EQ(PainterSettings(painter), before);
    EXPECT_FALSE(inkBounds(picture).isEmpty());
}

TEST(DrawnText, GoesByNoFontOfTheDesktopOrThePainter) {
    const QSizeF size = sizeOf(u"Same everywhere"_s);
    const QImage picture = written(u"Same everywhere"_s);
    QFont other(u"serif"_s, 40);
    other.setItalic(true);
    other.setUnderline(true);
    other.setStretch(150);
    other.setCapitalization(QFont::AllUppercase);
    other.setLetterSpacing(QFont::AbsoluteSpacing, 5);
    const ApplicationFont applicationFont(other);
    EXPECT_EQ(sizeOf(u"Same everywhere"_s), size);
    EXPECT_EQ(written(u"Same everywhere"_s), picture);

    QImage inOtherFont = ground({400, 200});
    QPainter painter(&inOtherFont);
    painter.setFont(other);
    DrawnText(u"Same everywhere"_s, pixelSize, QFont::Normal, 1).draw(painter, {20, 20}, QColor(black));
    painter.end();
    EXPECT_EQ(inOtherFont, picture);
}

TEST(DrawnText, HasThePixelsOfTheDrawingWhateverTheResolutionOfThePicture) {
    QImage fine = ground({400, 200});
    fine.setDotsPerMeterX(20000);
    fine.setDotsPerMeterY(20000);
    QPainter painter(&fine);
    DrawnText(u"Same"_s, pixelSize, QFont::Normal, 1).draw(painter, {20, 20}, QColor(black));
    painter.end();
    EXPECT_EQ(difference(fine, written(u"Same"_s), 0).largest, 0);
}

TEST(DrawnText, IsDrawnOnAnyThread) {
    const QImage expected = written(u"worker\nשלום"_s);
    QImage fromWorker;
    std::thread([&fromWorker] { fromWorker = written(u"worker\nשלום"_s); }).join();
    EXPECT_EQ(fromWorker, expected);
}

TEST(DrawnText, IsAsLargeAsItIsSaidToBeInEveryFont) {
    for (const QFont& font :
         {systemFont(12), systemFont(20), systemFont(12, QFont::Bold), monospacedFont(12)}) {
        for (const QString& text : {u"Note"_s, u"two\nlines"_s, u" "_s, u""_s}) {
            // The second time it is remembered.
            for (int i = 0; i < 2; ++i)
                EXPECT_EQ(drawnTextSize(text, font), DrawnText(text, font, 1).size());
        }
    }
    EXPECT_EQ(drawnTextSize(u"Note"_s, systemFont(12)) * 2, DrawnText(u"Note"_s, systemFont(12), 2).size());
}

TEST(DrawnText, BreaksBetweenWordsWhereItsRoomEnds) {
    const QFont font = systemFont(pixelSize);
    const QSizeF line = drawnTextSize(u"A label of"_s, font);
    const QSizeF room(line.width() + 2, 1000);
    const QSizeF wrapped = drawnTextSize(u"A label of two lines"_s, font, room);
    const QSizeF byHand = drawnTextSize(u"A label of\ntwo lines"_s, font);
    EXPECT_DOUBLE_EQ(wrapped.height(), byHand.height());
    EXPECT_NEAR(wrapped.width(), byHand.width(), 1.5);
    EXPECT_LE(wrapped.width(), room.width());
    EXPECT_EQ(wrapped * 2, DrawnText(u"A label of two lines"_s, font, 2, room).size());
    // As if there were none.
    EXPECT_EQ(drawnTextSize(u"A label of"_s, font, room), line);
}

TEST(DrawnText, BreaksWithinWordsThatAreWiderThanItsRoom) {
    const QFont font = systemFont(pixelSize);
    const qreal letter = drawnTextSize(u"M"_s, font).width();
    const QSizeF wrapped = drawnTextSize(u"M"_s.repeated(10), font, QSizeF(4.5 * letter, 1000));
    EXPECT_DOUBLE_EQ(wrapped.height(), 3 * drawnTextSize(u"M"_s, font).height());
    EXPECT_NEAR(wrapped.width(), 4 * letter, 0.5);
}

TEST(DrawnText, ShowsAllOfItselfWithinItsSizeAndRoom) {
    const QFont font = systemFont(pixelSize);
    for (const QString& text : {u"Latin words that go on and on"_s, u"שלום עולם זה טקסט ארוך"_s,
                                u"日本語の文章はどこでも折り返す"_s, u"one\ntwo and three and four"_s}) {
        const QSizeF room(110, 1000);
        const DrawnText drawn(text, font, 1, room);
        EXPECT_LE(drawn.size().width(), room.width());
        EXPECT_GT(drawn.size().height(), 1.9 * drawnTextSize(u"M"_s, font).height());
        QImage picture = ground({400, 400});
        QPainter painter(&picture);
        drawn.draw(painter, {100, 100}, QColor(black));
        painter.end();
        const QRect ink = inkBounds(picture, white, 100);
        EXPECT_TRUE(QRectF({100, 100}, drawn.size()).adjusted(-2, -2, 2, 2).contains(ink))
            << text.toStdString();
        EXPECT_GT(ink.height(), drawn.size().height() / 2);
    }
}

TEST(DrawnText, EndsWithAnEllipsisWhereItsRoomIsTooLow) {
    const QFont font = systemFont(pixelSize);
    const qreal line = drawnTextSize(u"M"_s, font).height();
    const auto pictureOfText = [&](const QString& text, const std::optional<QSizeF>& room) {
        QImage picture = ground({400, 200});
        QPainter painter(&picture);
        DrawnText(text, font, 1, room).draw(painter, {20, 20}, QColor(black));
        painter.end();
        return picture;
    };
    const QString words = u"one\ntwo\nthree\nfour"_s;
    EXPECT_EQ(pictureOfText(words, QSizeF(300, 2.5 * line)), pictureOfText(u"one\ntwo…"_s, std::nullopt));
    EXPECT_DOUBLE_EQ(drawnTextSize(words, font, QSizeF(300, 2.5 * line)).height(), 2 * line);
    EXPECT_EQ(pictureOfText(words, QSizeF(300, 4.1 * line)), pictureOfText(words, std::nullopt));
    // One line there is always.
    EXPECT_EQ(pictureOfText(words, QSizeF(300, 1)), pictureOfText(u"one…"_s, std::nullopt));
    const QSizeF cut = drawnTextSize(u"M"_s.repeated(1000), font, QSizeF(300, 2.5 * line));
    EXPECT_DOUBLE_EQ(cut.height(), 2 * line);
    EXPECT_LE(cut.width(), 300);
    EXPECT_GT(cut.width(), 270);
}

TEST(DrawnText, RoomIsGivenOnlyToTextsThatNeedIt) {
    const QFont font = systemFont(pixelSize);
    const QSizeF word = drawnTextSize(u"word"_s, font);
    const QString text = u"word word word word"_s;
    EXPECT_EQ(roomForText(u"word"_s, font, word, 10), std::nullopt);
    EXPECT_EQ(roomForText(text, font, {1000, 100}, 10), std::nullopt);
    const qreal two = drawnTextSize(u"word word"_s, font).width() + 1;
    const qreal three = drawnTextSize(u"word word word"_s, font).width() + 1;
    const qreal line = word.height();
    EXPECT_EQ(roomForText(text, font, {three, 2 * line}, two), QSizeF(two, 2 * line));
    // Never wider than the most there is.
    EXPECT_EQ(roomForText(text, font, {two, 2 * line}, three), QSizeF(two, 2 * line));
    // In the preferred width it would be too high.
    EXPECT_EQ(roomForText(text, font, {three, 2 * line}, word.width() + 1), QSizeF(three, 2 * line));
    EXPECT_EQ(roomForText(text, font, {-5, -5}, 100), QSizeF(1, -5));
}

TEST(DrawnText, MayBeVeryLong) {
    const QString text = u"x"_s.repeated(100000);
    EXPECT_DOUBLE_EQ(sizeOf(text).width(), 100000 * sizeOf(u"x"_s).width());
    EXPECT_EQ(inkBounds(written(text), white, 8).right(), 399);
    const QString lines = u"x\n"_s.repeated(1000);
    EXPECT_DOUBLE_EQ(sizeOf(lines).height(), 1001 * sizeOf(u"x"_s).height());
}

TEST(DrawnText, MayBeNoText) {
    const QChar loneSurrogate(0xD83D);
    for (const QString& text : {QString(loneSurrogate), QString(QChar(u'\0')), u"\x01\x02\u200F\u202E"_s,
                                u"\uFFFE\uFFFF"_s, u"\n"_s, u"\t"_s}) {
        EXPECT_GE(sizeOf(text).width(), 0);
        EXPECT_GE(sizeOf(text).height(), sizeOf(u"M"_s).height());
        written(text);
    }
}

} // namespace orvane::test

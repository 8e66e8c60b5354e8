#include "OrvaneCore/surface/SymbolGlyphs.h"
#include "tests/support/DrawnPixels.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace orvane::test {

using namespace Qt::StringLiterals;

namespace {

const QStringList& names() {
    static const QStringList all = {
        u"checkmark.bubble.fill"_s,
        u"checkmark.circle.fill"_s,
        u"doc.on.clipboard.fill"_s,
        u"exclamationmark.triangle.fill"_s,
        u"gearshape.arrow.triangle.2.circlepath"_s,
        u"mic.slash"_s,
        u"paperplane.fill"_s,
        u"photo.on.rectangle.angled"_s,
        u"record.circle.fill"_s,
        u"scribble.variable"_s,
        u"text.viewfinder"_s,
        u"trash"_s,
        u"video.slash"_s,
        u"xmark.circle.fill"_s,
    };
    return all;
}

QImage drawn(const QString& name, int side = 28) {
    QImage picture = ground({side, side}, black);
    QPainter painter(&picture);
    drawSymbol(painter, name, picture.rect(), Qt::white);
    return picture;
}

} // namespace

TEST(SymbolGlyphs, FillTheirSquareWithoutLeavingIt) {
    for (const QString& name : names()) {
        const QRectF bounds = symbolPath(name).boundingRect();
        EXPECT_TRUE(QRectF(0, 0, symbolSide, symbolSide).contains(bounds)) << name.toStdString();
        EXPECT_GE(std::max(bounds.width(), bounds.height()), 20) << name.toStdString();
    }
}

TEST(SymbolGlyphs, DifferFromEachOther) {
    std::set<QByteArray> pictures;
    for (const QString& name : names()) {
        const QImage picture = drawn(name);
        pictures.insert(
            QByteArray(reinterpret_cast<const char*>(picture.constBits()), picture.sizeInBytes()));
    }
    EXPECT_EQ(pictures.size(), static_cast<std::size_t>(names().size()));
}

TEST(SymbolGlyphs, ARecordSignIsADiscWithARingCutOut) {
    const QImage picture = drawn(u"record.circle.fill"_s, 280);
    EXPECT_TRUE(isColor(picture, {140, 140}, white));
    EXPECT_TRUE(isColor(picture, {140 + 67, 140}, black));
    EXPECT_TRUE(isColor(picture, {140 + 100, 140}, white));
    EXPECT_TRUE(isColor(picture, {140, 140 - 100}, white));
    EXPECT_TRUE(isColor(picture, {20, 20}, black));
}

TEST(SymbolGlyphs, ACheckmarkIsCutOutOfItsDisc) {
    const QImage picture = drawn(u"checkmark.circle.fill"_s, 280);
    EXPECT_TRUE(isColor(picture, {124, 184}, black));
    EXPECT_TRUE(isColor(picture, {140, 60}, white));
}

TEST(SymbolGlyphs, WhatIsOffIsCrossedOut) {
    for (const QString& name : {u"mic.slash"_s, u"video.slash"_s}) {
        const QImage picture = drawn(name, 280);
        EXPECT_TRUE(isColor(picture, {140, 140}, white)) << name.toStdString();
        // Between the line and what it goes through.
        EXPECT_TRUE(isColor(picture, {154, 127}, black)) << name.toStdString();
        EXPECT_TRUE(isColor(picture, {126, 153}, black)) << name.toStdString();
    }
}

TEST(SymbolGlyphs, AreDrawnIntoTheirSquare) {
    const QImage whole = drawn(u"xmark.circle.fill"_s, 14);
    QImage picture = ground({60, 40}, black);
    QPainter painter(&picture);
    drawSymbol(painter, u"xmark.circle.fill"_s, QRectF(30, 10, 14, 14), Qt::white);
    EXPECT_EQ(picture.copy(30, 10, 14, 14), whole);
    EXPECT_TRUE(QRect(30, 10, 14, 14).contains(inkBounds(picture, black)));
}

TEST(SymbolGlyphs, UnknownNamesDrawNothing) {
    for (const QString& name : {u""_s, u"no.such.symbol"_s, u"Trash"_s, u"trash "_s}) {
        EXPECT_TRUE(symbolPath(name).isEmpty());
        EXPECT_TRUE(inkBounds(drawn(name), black).isEmpty());
    }
}

TEST(SymbolGlyphs, PainterIsGivenBackAsItWas) {
    QImage picture = ground({40, 40});
    QPainter painter(&picture);
    setUnusual(painter);
    const PainterSettings before(painter);
    drawSymbol(painter, u"trash"_s, QRectF(2, 2, 20, 20), Qt::red);
    EXPECT_EQ(PainterSettings(painter), before);
}

} // namespace orvane::test

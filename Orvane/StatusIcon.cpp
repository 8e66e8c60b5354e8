#include "Orvane/StatusIcon.h"

#include "Orvane/MenuBarGlyph.h"
#include "OrvaneCore/surface/SymbolGlyphs.h"

#include <QColor>
#include <QIconEngine>
#include <QPainter>
#include <QPixmap>

#include <algorithm>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

constexpr QRgb red = 0xffff3b30;

class Engine : public QIconEngine {
public:
    explicit Engine(bool isRecording)
        : m_isRecording(isRecording) {}

    /// Into a slot whose size is the panel's.
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        const qreal side = std::min({menu_bar_glyph::side, qreal(rect.width()), qreal(rect.height())});
        QRectF square(0, 0, side, side);
        square.moveCenter(QRectF(rect).center());
        status_icon::draw(*painter, square, m_isRecording);
    }

    /// For those who fit a picture into their panel themselves: it fills its size.
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return scaledPixmap(size, mode, state, 1);
    }

    /// `size` is in pixels.
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode /*mode*/, QIcon::State /*state*/,
                         qreal /*scale*/) override {
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        const qreal side = std::min(size.width(), size.height());
        QRectF square(0, 0, side, side);
        square.moveCenter(QRectF(picture.rect()).center());
        status_icon::draw(painter, square, m_isRecording);
        return picture;
    }

    QList<QSize> availableSizes(QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        QList<QSize> sizes;
        for (const int side : {16, 18, 22, 24, 32, 36, 44, 48, 64})
            sizes << QSize(side, side);
        return sizes;
    }

    QIconEngine* clone() const override { return new Engine(m_isRecording); }

private:
    bool m_isRecording;
};

} // namespace

QIcon status_icon::icon(bool isRecording) {
    return QIcon(new Engine(isRecording));
}

QString status_icon::description(bool isRecording) {
    return isRecording ? u"Orvane (Recording)"_s : u"Orvane"_s;
}

void status_icon::draw(QPainter& painter, const QRectF& square, bool isRecording) {
    if (isRecording) {
        drawSymbol(painter, u"record.circle.fill"_s, square, QColor::fromRgba(red));
    } else {
        menu_bar_glyph::drawPin(painter, square);
    }
}

} // namespace orvane

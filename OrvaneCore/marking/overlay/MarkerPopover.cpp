#include "OrvaneCore/marking/overlay/MarkerPopover.h"

#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QTextDocument>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

/// Three lines of text.
constexpr QSize noteEditorSize(240, 54);

} // namespace

MarkerPopover::MarkerPopover(const QString& text, QWidget* parent)
    : PopoverBubble(parent)
    , m_editor(new QPlainTextEdit(text, this)) {
    m_editor->setPlaceholderText(u"Add a note  ·  Enter to save"_s);
    m_editor->setFrameShape(QFrame::NoFrame);
    m_editor->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_editor->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_editor->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    m_editor->document()->setDocumentMargin(0);
    m_editor->viewport()->setAutoFillBackground(false);
    setEditor(m_editor, noteEditorSize);
}

QString MarkerPopover::text() const {
    return m_editor->toPlainText();
}

void MarkerPopover::selectAll() {
    m_editor->selectAll();
}

bool MarkerPopover::isLineBreak(const QKeyEvent& event) const {
    return event.modifiers().testFlag(Qt::ShiftModifier);
}

} // namespace orvane

#include "OrvaneCore/marking/editing/AnnotationTextPopover.h"

#include <QLineEdit>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

constexpr QSize lineEditorSize(220, 22);

} // namespace

AnnotationTextPopover::AnnotationTextPopover(const QString& text, QWidget* parent)
    : PopoverBubble(parent)
    , m_editor(new QLineEdit(text, this)) {
    m_editor->setPlaceholderText(u"Type text · Enter to place"_s);
    m_editor->setFrame(false);
    setEditor(m_editor, lineEditorSize);
}

QString AnnotationTextPopover::text() const {
    return m_editor->text();
}

void AnnotationTextPopover::selectAll() {
    m_editor->selectAll();
}

bool AnnotationTextPopover::isLineBreak(const QKeyEvent& /*event*/) const {
    return false;
}

} // namespace orvane

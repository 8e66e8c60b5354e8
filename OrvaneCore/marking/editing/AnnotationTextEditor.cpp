#include "OrvaneCore/marking/editing/AnnotationTextEditor.h"

#include "OrvaneCore/marking/editing/AnnotationTextPopover.h"

#include <utility>

namespace orvane {

AnnotationTextEditor::AnnotationTextEditor(QWidget& view,
                                           std::function<void(const QUuid&, const QString&)> closed)
    : m_view(view)
    , m_closed(std::move(closed)) {}

AnnotationTextEditor::~AnnotationTextEditor() = default;

void AnnotationTextEditor::open(const QUuid& annotation, const QPointF& viewPoint, const QString& words) {
    close();
    m_popover.reset(new AnnotationTextPopover(words, &m_view));
    m_popover->setOnClose([this, annotation, words] {
        const auto popover = std::move(m_popover);
        const bool areWordsKept = popover->wasCancelled() && !words.isEmpty();
        m_closed(annotation, areWordsKept ? words : popover->text());
        m_view.setFocus();
    });
    m_popover->openAt(viewPoint);
}

void AnnotationTextEditor::close() {
    if (m_popover)
        m_popover->closePopover();
}

} // namespace orvane

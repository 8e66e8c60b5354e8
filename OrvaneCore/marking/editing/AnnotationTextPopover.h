#pragma once

#include "OrvaneCore/surface/PopoverBubble.h"

class QLineEdit;

namespace orvane {

/// Where the text of a text annotation is typed.
class AnnotationTextPopover : public PopoverBubble {
public:
    /// `text` is what the annotation says so far.
    AnnotationTextPopover(const QString& text, QWidget* parent);

    QString text() const override;

protected:
    void selectAll() override;
    bool isLineBreak(const QKeyEvent& event) const override;

private:
    QLineEdit* m_editor;
};

} // namespace orvane

#pragma once

#include "OrvaneCore/surface/PopoverBubble.h"

class QPlainTextEdit;

namespace orvane {

/// Where a marker gets its label, of one line or several: Shift+Return begins a new one.
class MarkerPopover : public PopoverBubble {
public:
    /// `text` is the label so far.
    MarkerPopover(const QString& text, QWidget* parent);

    QString text() const override;

protected:
    void selectAll() override;
    bool isLineBreak(const QKeyEvent& event) const override;

private:
    QPlainTextEdit* m_editor;
};

} // namespace orvane

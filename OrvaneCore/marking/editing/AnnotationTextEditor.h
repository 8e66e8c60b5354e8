#pragma once

#include <QObject>
#include <QPointF>
#include <QString>
#include <QUuid>

#include <functional>
#include <memory>

class QWidget;

namespace orvane {

class AnnotationTextPopover;

/// Lets the user write the text of an annotation in a popover of a view, one at a time. Main thread.
class AnnotationTextEditor {
public:
    /// The view outlives this object. `closed` takes what was written, however the popover was closed; the
    /// view has the keyboard again afterwards.
    AnnotationTextEditor(QWidget& view, std::function<void(const QUuid&, const QString&)> closed);
    ~AnnotationTextEditor();
    AnnotationTextEditor(const AnnotationTextEditor&) = delete;
    AnnotationTextEditor& operator=(const AnnotationTextEditor&) = delete;

    /// Opens at a point of the view, for a new text or with the words of one. Words stay as they were where
    /// Escape closes the popover. Closes what is open.
    void open(const QUuid& annotation, const QPointF& viewPoint, const QString& words = {});
    void close();

private:
    /// A popover may be in one of its events.
    struct DeleteLater {
        void operator()(QObject* object) const { object->deleteLater(); }
    };

    QWidget& m_view;
    std::function<void(const QUuid&, const QString&)> m_closed;
    std::unique_ptr<AnnotationTextPopover, DeleteLater> m_popover;
};

} // namespace orvane

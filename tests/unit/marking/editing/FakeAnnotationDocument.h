#pragma once

#include "OrvaneCore/marking/AnnotationDocument.h"
#include "OrvaneCore/marking/Palettes.h"

#include <functional>
#include <utility>
#include <vector>

namespace orvane::test {

/// A document of shapes and nothing else, in which a test says what may be done to them.
class FakeAnnotationDocument : public AnnotationDocument {
public:
    std::function<bool(const Annotation&)> isHittable = [](const Annotation&) { return true; };
    std::function<bool(const Annotation&)> isChangeable = [](const Annotation&) { return true; };
    Annotation::Role role = Annotation::Role::human;

    AnnotationTool currentTool() const override { return m_tool; }
    void setCurrentTool(AnnotationTool tool) override { take(m_tool, tool); }
    QColor markupColor() const override { return m_color; }
    void setMarkupColor(const QColor& color) override { take(m_color, color); }
    qreal markupStrokeWidth() const override { return m_strokeWidth; }
    void setMarkupStrokeWidth(qreal width) override { take(m_strokeWidth, width); }
    std::optional<QUuid> selectedAnnotationId() const override { return m_selectedId; }
    void setSelectedAnnotationId(const std::optional<QUuid>& id) override { take(m_selectedId, id); }
    const std::vector<Annotation>& annotations() const override { return m_annotations; }
    void setAnnotations(std::vector<Annotation> annotations) override {
        take(m_annotations, std::move(annotations));
    }
    void addAnnotation(const Annotation& annotation) override {
        m_annotations.push_back(annotation);
        take(m_selectedId, std::optional(annotation.id));
    }
    void updateAnnotation(const Annotation& annotation) override {
        for (Annotation& candidate : m_annotations) {
            if (candidate.id == annotation.id)
                candidate = annotation;
        }
        m_observers.notify();
    }
    void removeAnnotation(const QUuid& id) override {
        std::erase_if(m_annotations, [&id](const Annotation& candidate) { return candidate.id == id; });
        take(m_selectedId, m_selectedId == id ? std::nullopt : m_selectedId);
    }
    bool canHit(const Annotation& annotation) const override { return isHittable(annotation); }
    bool canChange(const Annotation& annotation) const override { return isChangeable(annotation); }
    Annotation::Role roleOfNew() const override { return role; }
    [[nodiscard]] Observers::Subscription observe(std::function<void()> changed) override {
        return m_observers.add(std::move(changed));
    }

private:
    template <typename Value>
    void take(Value& member, Value value) {
        member = std::move(value);
        m_observers.notify();
    }

    Observers m_observers;
    AnnotationTool m_tool = AnnotationTool::select;
    QColor m_color = QColor::fromRgb(markup_colors::defaultColor);
    qreal m_strokeWidth = markup_colors::strokePresets[1];
    std::optional<QUuid> m_selectedId;
    std::vector<Annotation> m_annotations;
};

} // namespace orvane::test

#include "OrvaneCore/marking/editing/AnnotationRemoval.h"

#include "tests/unit/marking/editing/FakeAnnotationDocument.h"

#include <gmock/gmock.h>

namespace orvane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AnnotationRemovalTest : public testing::Test {
protected:
    /// Selects it as well.
    QUuid add() {
        const Annotation added{.end = {10, 10}};
        document.addAnnotation(added);
        return added.id;
    }
    void lock(const QUuid& locked) {
        document.isChangeable = [locked](const Annotation& annotation) { return annotation.id != locked; };
    }
    std::vector<QUuid> ids() const {
        std::vector<QUuid> all;
        for (const Annotation& annotation : document.annotations())
            all.push_back(annotation.id);
        return all;
    }

    test::FakeAnnotationDocument document;
};

} // namespace

TEST_F(AnnotationRemovalTest, TheSelectedOneGoes) {
    const QUuid selected = add();
    const QUuid other = add();
    document.setSelectedAnnotationId(selected);
    EXPECT_TRUE(removeSelectedAnnotation(document));
    EXPECT_THAT(ids(), ElementsAre(other));
    EXPECT_EQ(document.selectedAnnotationId(), std::nullopt);
    EXPECT_FALSE(removeSelectedAnnotation(document));
    EXPECT_THAT(ids(), ElementsAre(other));
}

TEST_F(AnnotationRemovalTest, ASelectedOneThatCannotBeChangedStaysAndKeepsTheOthers) {
    const QUuid other = add();
    const QUuid selected = add();
    lock(selected);
    EXPECT_TRUE(removeSelectedAnnotation(document));
    EXPECT_THAT(ids(), ElementsAre(other, selected));
    EXPECT_EQ(document.selectedAnnotationId(), selected);
}

TEST_F(AnnotationRemovalTest, ASelectionOfNothingKeepsTheOthers) {
    const QUuid other = add();
    document.setSelectedAnnotationId(QUuid::createUuid());
    EXPECT_TRUE(removeSelectedAnnotation(document));
    EXPECT_THAT(ids(), ElementsAre(other));
}

TEST_F(AnnotationRemovalTest, OfThoseThatCanBeChangedTheNewestGoesFirst) {
    const QUuid first = add();
    const QUuid locked = add();
    add();
    lock(locked);
    document.setSelectedAnnotationId(first);
    EXPECT_TRUE(removeLastAnnotation(document));
    EXPECT_THAT(ids(), ElementsAre(first, locked));
    EXPECT_TRUE(removeLastAnnotation(document));
    EXPECT_THAT(ids(), ElementsAre(locked));
    EXPECT_FALSE(removeLastAnnotation(document));
    EXPECT_THAT(ids(), ElementsAre(locked));
}

TEST_F(AnnotationRemovalTest, NothingGoesWhereNothingIs) {
    EXPECT_FALSE(removeSelectedAnnotation(document));
    EXPECT_FALSE(removeLastAnnotation(document));
    EXPECT_THAT(ids(), IsEmpty());
}

} // namespace orvane

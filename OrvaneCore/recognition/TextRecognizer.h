#pragma once

#include "OrvaneCore/recognition/ReadingBudget.h"

#include <QImage>
#include <QRectF>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <vector>

namespace orvane {

class TextRecognitionBackend;

/// One line of text that was read in a picture.
struct RecognizedText {
    QString text;
    /// Fractions of the picture's width and height, from its top-left corner, y down.
    QRectF boundingBox;
    float confidence = 0;
};

/// Reads the text of a picture. Nothing here throws: what cannot be read is empty, with a line in the log.
/// Any thread; blocks for as long as the backend takes, or as the budget lasts.
class TextRecognizer {
public:
    /// Lines that are less certain than this are dropped.
    static constexpr float minConfidence = 0.4F;
    /// What one tool call has for reading. An agent's pipe waits 30 s for a reply, and taking the pictures
    /// and encoding them have to fit in as well.
    static constexpr std::chrono::seconds timeOfToolCall{20};

    /// Reads by the machine's clock. The backend outlives the recognizer.
    explicit TextRecognizer(TextRecognitionBackend& backend);
    /// Both outlive the recognizer and its budgets.
    TextRecognizer(TextRecognitionBackend& backend, Clock& clock)
        : m_backend(backend)
        , m_clock(clock) {}

    /// The lines in the order the backend gives them.
    std::vector<RecognizedText> recognize(const QImage& image) const;

    /// The text of each line, joined by newlines; empty when there is none.
    QString recognizeJoined(const QImage& image) const;

    /// What is read of it within the budget. Where something was left unread, a last line says how much:
    /// "(Text not read in time: 12 of 96 lines.)", or "(Text not read in time.)" of a picture whose turn came
    /// after the budget's end.
    QString recognizeJoined(const QImage& image, const ReadingBudget& budget) const;

    /// All pictures of the call are read with the one budget.
    ReadingBudget budgetOfToolCall() const { return {m_clock, timeOfToolCall}; }

private:
    struct Recognition {
        std::vector<RecognizedText> texts;
        qsizetype found = 0;
        qsizetype unread = 0;
    };

    QStringList preferredLanguages() const;
    Recognition read(const QImage& image, const std::function<bool()>& isTimeUp) const;

    TextRecognitionBackend& m_backend;
    Clock& m_clock;
};

} // namespace orvane

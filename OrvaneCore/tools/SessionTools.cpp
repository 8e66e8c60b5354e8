#include "OrvaneCore/tools/SessionTools.h"

#include "OrvaneCore/base/PlainFile.h"
#include "OrvaneCore/base/TypedObject.h"
#include "OrvaneCore/capture/OrvaneError.h"
#include "OrvaneCore/present/session/AnnotationFeedback.h"
#include "OrvaneCore/present/session/PresentSessionJson.h"
#include "OrvaneCore/tools/ToolResult.h"

#include <QDir>
#include <QStringDecoder>

#include <algorithm>
#include <set>
#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 defaultIntervalMs = 1000;
constexpr std::size_t mostFeedbackImages = 4;
// Far above any picture or report, and far below what fills the memory.
constexpr qint64 largestFile = 512LL * 1024 * 1024;
// Tens of thousands of marks; what is parsed takes many times its size.
constexpr qint64 largestSession = 16LL * 1024 * 1024;

const QByteArray pngSignature("\x89PNG\r\n\x1a\n");

/// Nothing for what is not UTF-8, either.
std::optional<QString> readText(const QString& path) {
    const auto bytes = readPlainFile(path, largestFile);
    if (!bytes)
        return std::nullopt;
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder(*bytes);
    return decoder.hasError() ? std::nullopt : std::optional(std::move(text));
}

/// The names of everything in a folder, hidden or not, ascending.
QStringList namesIn(const QString& folder) {
    QStringList names =
        QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    names.sort();
    return names;
}

QString lastComponent(const QString& path) {
    return path.section(u'/', -1, -1, QString::SectionSkipEmpty);
}

QString recordingText(const QString& verb, const QString& sessionId, const QString& path) {
    return u"%1\nSession ID: %2\nSession path: %3"_s.arg(verb, sessionId, path);
}

QString nameLine(const QString& fileName) {
    return u"--- "_s + fileName + u" ---"_s;
}

} // namespace

SessionTools::SessionTools(ScreenRecorder& recorder, const ScreenCapture& screenCapture,
                           TextRecognizer textRecognizer, StorageManager& storage)
    : m_recorder(recorder)
    , m_screenCapture(screenCapture)
    , m_textRecognizer(textRecognizer)
    , m_storage(storage) {}

QJsonObject SessionTools::startRecording(const QJsonObject& arguments) {
    const TypedObject typed(arguments);
    const auto appName = typed.string(QLatin1String("app_name"));
    if (!appName)
        throw OrvaneError::invalidArguments(u"app_name is required"_s);
    const qint64 intervalMs = typed.integer(QLatin1String("interval_ms")).value_or(defaultIntervalMs);
    const QString id = m_recorder.startRecording(*appName, intervalMs, RecordingSource::mcp);
    return toolResult(
        recordingText(u"Recording started for "_s + *appName + u'.', id, m_storage.sessionDir(id)) +
        u"\nCapturing at %1ms intervals. Call poll_recording to check for changes, read_frame to inspect a "
        "frame. Call stop_recording when done."_s.arg(QString::number(intervalMs)));
}

QJsonObject SessionTools::stopRecording(const QJsonObject& /*arguments*/) {
    const QString id = m_recorder.stopRecording();
    const QString folder = m_storage.sessionDir(id);
    QString text = recordingText(u"Recording stopped."_s, id, folder);
    if (const auto report = readText(QDir(folder).filePath(u"SESSION.md"_s)))
        text += u"\n\n"_s + *report;
    QJsonArray items{textItem(text)};
    for (const QString& name : namesIn(folder)) {
        // By the letters alone: any name that holds them counts.
        if (!name.endsWith(u".png") || !(name.contains(u"start") || name.contains(u"end")))
            continue;
        if (const auto image = agentImage(QDir(folder).filePath(name))) {
            items.append(textItem(nameLine(name)));
            items.append(imageItem(*image));
        }
    }
    return toolResultWithItems(items);
}

QJsonObject SessionTools::pollRecording(const QJsonObject& /*arguments*/) {
    const ScreenRecorder::Poll poll = m_recorder.pollTimeline();
    if (poll.sessionDir.isEmpty())
        return toolResult(u"Not recording. Call start_recording first."_s);
    if (poll.events.isEmpty()) {
        return toolResult(
            u"No new events since last poll. Recording is active (session: %1)."_s.arg(poll.sessionId));
    }
    QString text =
        u"Session: %1\nNew events (%2):\n"_s.arg(poll.sessionId, QString::number(poll.events.size()));
    for (const QString& event : poll.events)
        text += u"  "_s + event + u'\n';
    return toolResult(text);
}

QJsonObject SessionTools::readFrame(const QJsonObject& arguments) {
    const TypedObject typed(arguments);
    const auto sessionId = typed.string(QLatin1String("session_id"));
    const auto folder = sessionId ? m_storage.sessionDir(*sessionId) : m_storage.latestSessionDir();
    if (!folder)
        throw OrvaneError::invalidArguments(u"No latest session. Provide session_id."_s);
    const auto frame = typed.string(QLatin1String("frame"));
    if (!frame)
        throw OrvaneError::invalidArguments(u"frame parameter is required"_s);
    const auto image = agentImage(*folder + u'/' + *frame);
    if (!image)
        throw OrvaneError::invalidArguments(u"Frame not found: "_s + *frame);
    return toolResultWithImage(u"Frame: %1 from session %2"_s.arg(*frame, lastComponent(*folder)), *image);
}

QJsonObject SessionTools::getAnnotations(const QJsonObject& arguments) {
    const bool withText = arguments.value(QLatin1String("ocr")).toBool();
    const auto folder = m_storage.latestSessionDir();
    if (!folder)
        return toolResult(u"No annotations found. Use Cmd+Ctrl+P to place markers on screen, then submit."_s);
    const auto report = readText(QDir(*folder).filePath(u"SESSION.md"_s));
    if (!report)
        return toolResult(u"No SESSION.md found in latest session."_s);
    QJsonArray items{textItem(u"Session path: %1\n\n%2"_s.arg(*folder, *report))};
    const ReadingBudget budget = m_textRecognizer.budgetOfToolCall();
    for (const QString& name : namesIn(*folder)) {
        if (!name.startsWith(u"region-") || !name.endsWith(u".png"))
            continue;
        const QString path = QDir(*folder).filePath(name);
        const auto image = agentImage(path);
        if (!image)
            continue;
        QString text = nameLine(name);
        const QString recognized =
            withText ? m_textRecognizer.recognizeJoined(QImage(path), budget) : QString();
        if (!recognized.isEmpty())
            text += u"\nRecognized text:\n"_s + recognized;
        items.append(textItem(text));
        items.append(imageItem(*image));
    }
    return toolResultWithItems(items);
}

QJsonObject SessionTools::getAnnotationFeedback(const QJsonObject& arguments) {
    const TypedObject typed(arguments);
    auto sessionId = typed.string(QLatin1String("sessionId"));
    if (!sessionId)
        sessionId = typed.string(QLatin1String("session_id"));
    if (!sessionId)
        return toolError(u"sessionId is required (from annotate_understanding's result)."_s);
    const QString folder = m_storage.sessionDir(*sessionId);
    const QString displayPath = m_storage.displayPath(folder);
    const auto json = readPlainFile(folder + u"/session.json"_s, largestSession);
    const auto bundle = json ? decodeSession(*json) : std::nullopt;
    if (!bundle)
        return toolResult(notFoundReplyText(*sessionId, displayPath));

    const QStringList names = namesIn(folder);
    QStringList images = annotation_feedback::selectFeedbackImages(
        std::set<QString>(names.begin(), names.end()), bundle->displays,
        annotation_feedback::feedbackDisplayIndices(*bundle));
    QJsonArray items{
        textItem(feedbackReplyText(*sessionId, displayPath, annotation_feedback::feedback(*bundle)))};
    for (const QString& name : images.mid(0, mostFeedbackImages)) {
        if (const auto image = agentImage(QDir(folder).filePath(name)))
            items.append(imageItem(*image));
    }
    return toolResultWithItems(items);
}

std::optional<QByteArray> SessionTools::agentImage(const QString& path) const {
    const auto bytes = readPlainFile(path, largestFile);
    if (!bytes || !bytes->startsWith(pngSignature))
        return std::nullopt;
    // Bytes that are no picture come back as they are.
    QByteArray resized = m_screenCapture.resizeForLLM(*bytes, ScreenCapture::agentMaxDimension);
    return QImage::fromData(resized, "PNG").isNull() ? std::nullopt : std::optional(std::move(resized));
}

} // namespace orvane

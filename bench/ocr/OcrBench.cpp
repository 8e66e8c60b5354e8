#include "bench/ocr/Corpus.h"
#include "bench/ocr/ErrorRate.h"

#include "OrvaneCore/recognition/TextRecognizer.h"
#include "OrvanePlatform/ocr/LazyTextRecognition.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <ctime>
#include <map>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace orvane::bench {

namespace {

struct Set {
    QString folder;
    QStringList fonts;
    quint32 seed = 0;
};

// The second set shares neither texts nor random numbers nor its third font with the first, on which sizes
// and thresholds were chosen.
const std::vector<Set>& sets() {
    static const std::vector<Set> all{
        {u"tuning"_s, {u"DejaVu Sans"_s, u"Liberation Sans"_s, u"Cantarell"_s}, 1},
        {u"heldout"_s, {u"DejaVu Sans"_s, u"Liberation Sans"_s, u"Open Sans"_s}, 1001},
    };
    return all;
}

struct Rates {
    ErrorRate ours;
    ErrorRate plain;
};

/// A table of error rates, one row for each group of samples in the order in which they first came.
class Table {
public:
    void add(const QString& group, const ErrorRate& ours, const ErrorRate& plain) {
        if (m_rates.count(group) == 0)
            m_order.append(group);
        m_rates[group].ours += ours;
        m_rates[group].plain += plain;
    }

    void print(QTextStream& out, const QString& title) const {
        out << "\n| " << title << " | characters | orvane, % | tesseract, % |\n|---|---:|---:|---:|\n";
        for (const QString& group : m_order) {
            const Rates& rates = m_rates.at(group);
            out << "| " << group << " | " << rates.ours.characters << " | " << percent(rates.ours) << " | "
                << percent(rates.plain) << " |\n";
        }
    }

private:
    static QString percent(const ErrorRate& rate) { return QString::number(rate.percent(), 'f', 2); }

    QStringList m_order;
    std::map<QString, Rates> m_rates;
};

QString readWithCommand(const Sample& sample, const QTemporaryDir& folder) {
    const QString file = folder.filePath(u"sample.png"_s);
    sample.picture.save(file);
    QProcess tesseract;
    tesseract.setStandardErrorFile(QProcess::nullDevice());
    tesseract.start(u"tesseract"_s, {file, u"stdout"_s, u"-l"_s, sample.language});
    if (!tesseract.waitForFinished(-1) || tesseract.exitCode() != 0)
        throw std::runtime_error("the tesseract command failed");
    return QString::fromUtf8(tesseract.readAllStandardOutput());
}

double milliseconds(const QElapsedTimer& timer) {
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

void printTimes(QTextStream& out, std::vector<double> times) {
    std::sort(times.begin(), times.end());
    out << "\nTime of a tight region of one English line, after the first call, of " << times.size()
        << ": median " << times[times.size() / 2] << " ms, 95 of 100 within "
        << times[times.size() * 95 / 100] << " ms, maximum " << times.back() << " ms.\n";
}

/// 3840x2160 pixels covered with panels.
QImage fullScreen(const std::vector<Sample>& panels) {
    QImage screen(3840, 2160, QImage::Format_RGB32);
    screen.fill(QColor(120, 130, 150));
    QPainter painter(&screen);
    int left = 0;
    int top = 0;
    int rowHeight = 0;
    for (const Sample& panel : panels) {
        if (left + panel.picture.width() > screen.width()) {
            left = 0;
            top += rowHeight + 8;
            rowHeight = 0;
        }
        painter.drawImage(left, top, panel.picture);
        left += panel.picture.width() + 8;
        rowHeight = std::max(rowHeight, panel.picture.height());
    }
    return screen;
}

class Bench {
public:
    Bench(QTextStream& out, bool withCommand)
        : m_out(out)
        , m_withCommand(withCommand) {}

    void run(const Set& set) {
        const Corpus corpus(set.folder, set.fonts, set.seed);
        m_out << "\n## " << set.folder << "\n";
        crops(corpus.englishCrops());
        const std::vector<Sample> panels = corpus.englishPanels();
        this->panels(panels);
        others(corpus);
        screen(panels);
    }

    /// The languages other than English alone.
    void runOthers(const Set& set) {
        m_out << "\n## " << set.folder << "\n";
        others(Corpus(set.folder, set.fonts, set.seed));
    }

    /// The screen alone. The engines are loaded before.
    void runScreen(const Set& set) {
        const Corpus corpus(set.folder, set.fonts, set.seed);
        const std::vector<Sample> panels = corpus.englishPanels();
        read(panels.front());
        screen(panels);
    }

private:
    void others(const Corpus& corpus) {
        Table others;
        for (const QString& language : {u"chi_sim"_s, u"chi_tra"_s, u"jpn"_s, u"kor"_s}) {
            for (const Sample& sample : corpus.otherCrops(language)) {
                const auto rate = [&](const QString& read) {
                    return errorRate(sample.lines, withoutSpaces(read, language));
                };
                others.add(language, rate(read(sample)), rate(readPlain(sample)));
            }
        }
        others.print(m_out, u"one line, 13 to 18 px"_s);
        m_out.flush();
    }

    static QString withoutSpaces(const QString& text, const QString& language) {
        // Between Chinese and Japanese characters a space is a matter of taste.
        return language == u"kor"_s ? text : text.simplified().remove(u' ');
    }

    QString read(const Sample& sample) const { return m_recognizer.recognizeJoined(sample.picture); }

    QString readPlain(const Sample& sample) const {
        return m_withCommand ? readWithCommand(sample, m_folder) : QString();
    }

    void crops(const std::vector<Sample>& samples) {
        Table total;
        Table bySize;
        Table byFont;
        Table byTheme;
        Table byKind;
        std::vector<double> times;
        times.reserve(samples.size());
        // Loads the module and the engine, which is not part of the times.
        read(samples.front());
        for (const Sample& sample : samples) {
            QElapsedTimer timer;
            timer.start();
            const QString text = read(sample);
            times.push_back(milliseconds(timer));
            const ErrorRate ours = errorRate(sample.lines, text);
            const ErrorRate plain = errorRate(sample.lines, readPlain(sample));
            bySize.add(QString::number(sample.pixelSize) + u" px"_s, ours, plain);
            total.add(sample.pixelSize >= 13 ? u"13 to 18 px"_s : u"11 and 12 px"_s, ours, plain);
            if (sample.pixelSize < 13)
                continue;
            byFont.add(sample.font, ours, plain);
            byTheme.add(sample.isDark ? u"light on dark"_s : u"dark on light"_s, ours, plain);
            byKind.add(sample.kind, ours, plain);
        }
        m_out << "\n### One line of English (" << samples.size() << " pictures)\n";
        total.print(m_out, u"size"_s);
        bySize.print(m_out, u"size"_s);
        byFont.print(m_out, u"font, 13 px and up"_s);
        byTheme.print(m_out, u"theme, 13 px and up"_s);
        byKind.print(m_out, u"kind, 13 px and up"_s);
        printTimes(m_out, times);
        m_out.flush();
    }

    void panels(const std::vector<Sample>& samples) {
        Table inOrder;
        Table inAnyOrder;
        for (const Sample& sample : samples) {
            if (sample.pixelSize < 13)
                continue;
            const QString ours = read(sample);
            const QString plain = readPlain(sample);
            for (const QString& group : {u"all"_s, sample.kind}) {
                inOrder.add(group, errorRate(sample.lines, ours), errorRate(sample.lines, plain));
                inAnyOrder.add(group, errorRateInAnyOrder(sample.lines, ours),
                               errorRateInAnyOrder(sample.lines, plain));
            }
        }
        m_out << "\n### Panels in English, 13 px and up\n";
        inOrder.print(m_out, u"the whole text, in order"_s);
        inAnyOrder.print(m_out, u"line by line, wherever it was read"_s);
        m_out.flush();
    }

    void screen(const std::vector<Sample>& panels) {
        const QImage picture = fullScreen(panels);
        const std::clock_t processorTime = std::clock();
        QElapsedTimer timer;
        timer.start();
        const QString text = m_recognizer.recognizeJoined(picture);
        m_out << "\nA screen of 3840x2160 covered with these panels: " << text.size() << " characters in "
              << milliseconds(timer) << " ms, "
              << 1000.0 * static_cast<double>(std::clock() - processorTime) / CLOCKS_PER_SEC
              << " ms of processor time.\n";
        m_out.flush();
    }

    QTextStream& m_out;
    bool m_withCommand;
    QTemporaryDir m_folder;
    ocr::LazyTextRecognition m_backend;
    TextRecognizer m_recognizer{m_backend};
};

} // namespace

} // namespace orvane::bench

int main(int argc, char* argv[]) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = application.arguments().mid(1);
    QTextStream out(stdout);
    try {
        orvane::bench::Bench bench(out, !arguments.contains(u"--without-command"_s));
        for (const orvane::bench::Set& set : orvane::bench::sets()) {
            const bool isWanted = !arguments.contains(u"--only"_s) || arguments.contains(set.folder);
            if (isWanted && arguments.contains(u"--screen"_s)) {
                bench.runScreen(set);
            } else if (isWanted && arguments.contains(u"--others"_s)) {
                bench.runOthers(set);
            } else if (isWanted) {
                bench.run(set);
            }
        }
    } catch (const std::exception& error) {
        out << "failed: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

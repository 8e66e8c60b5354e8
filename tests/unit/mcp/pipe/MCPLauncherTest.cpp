#include "OrvaneCore/mcp/pipe/MCPLauncher.h"

#include "OrvaneCore/base/Clock.h"
#include "OrvaneCore/mcp/LineReader.h"
#include "OrvaneCore/mcp/pipe/HostClient.h"
#include "OrvaneCore/platform/ApplicationStarter.h"
#include "tests/unit/mcp/FakeStreams.h"

#include <QMap>
#include <QStringList>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <set>

namespace orvane {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

using Outcome = MCPLauncher::Outcome;

const std::string launching = "orvane: launching app for shared-state MCP…\n";
const std::string unavailable = "orvane: app host unavailable — serving MCP in-process\n";
const std::string unreachable = "orvane: host unreachable — falling back in-process\n";

std::string proxying(int port) {
    return "orvane: proxying MCP to http://127.0.0.1:" + std::to_string(port) + "/mcp\n";
}

MCPEndpointInfo endpointAt(int port) {
    return {u"http://127.0.0.1:%1/mcp"_s.arg(port), port, u"token"_s, port + 1, u"0.1.0"_s, u"yesterday"_s};
}

/// The world around a launcher, whose time passes only when somebody sleeps or a probe takes a while.
class World final : public HostClient, public ApplicationStarter, public Clock {
public:
    bool isHealthy(const MCPEndpointInfo& info, milliseconds timeout) override {
        note("probe %1 limit %2"_L1, info.port, timeout);
        const bool healthy = isHostUp(info.port);
        if (!healthy)
            m_now += hostsHang ? timeout : milliseconds(0);
        return healthy;
    }

    std::optional<QByteArray> forward(QByteArrayView line, const MCPEndpointInfo& info,
                                      milliseconds timeout) override {
        note("forward to %1 limit %2"_L1, info.port, timeout);
        forwarded.push_back(line.toByteArray().toStdString());
        tokens.insert(info.token);
        return replies.contains(line.toByteArray()) ? replies.value(line.toByteArray()) : std::nullopt;
    }

    ApplicationStarter::Outcome start() override {
        note("start"_L1);
        if (onStart)
            onStart();
        return isLocked() ? ApplicationStarter::Outcome::notNeeded
               : accepts  ? ApplicationStarter::Outcome::started
                          : ApplicationStarter::Outcome::impossible;
    }

    QDateTime now() override { return {}; }
    Monotonic monotonic() override { return m_now; }
    bool sleepUntil(Monotonic moment, const std::stop_token& stop) override {
        if (stop.stop_requested())
            return false;
        ++sleeps;
        lastSleep = std::chrono::duration_cast<milliseconds>(moment - m_now);
        m_now = moment;
        return true;
    }

    std::optional<MCPEndpointInfo> read() {
        note("read"_L1);
        return file ? file() : std::nullopt;
    }

    milliseconds time() const { return std::chrono::duration_cast<milliseconds>(m_now); }

    std::vector<std::string> events;
    std::vector<std::string> forwarded;
    std::set<QString> tokens;
    QMap<QByteArray, std::optional<QByteArray>> replies;
    std::function<std::optional<MCPEndpointInfo>()> file;
    std::function<bool(int port)> isHostUp = [](int) { return false; };
    std::function<void()> onStart;
    /// Another copy of the application holds the instance lock.
    std::function<bool()> isLocked = [] { return false; };
    bool accepts = true;
    /// A host that is not up takes the whole time limit instead of none.
    bool hostsHang = false;
    int sleeps = 0;
    milliseconds lastSleep{0};

private:
    template <class... Arguments>
    void note(QLatin1String event, Arguments... arguments) {
        QString text = event;
        ((text = text.arg(number(arguments))), ...);
        events.push_back(text.toStdString());
    }
    static qint64 number(int value) { return value; }
    static qint64 number(milliseconds value) { return value.count(); }

    Monotonic m_now{0};
};

class MCPLauncherTest : public testing::Test {
protected:
    MCPLauncherTest() {
        m_world.replies = {{"a", QByteArray("A")}, {"b", QByteArray("B")}, {"note", QByteArray()}};
    }

    Outcome run(const QList<QByteArray>& input, const std::stop_token& stop = {}) {
        m_streams = FakeStreams(input);
        m_lines.emplace(m_streams);
        MCPLauncher launcher([this] { return m_world.read(); }, m_world, m_world, m_world, *m_lines,
                             m_streams);
        testing::internal::CaptureStderr();
        testing::internal::CaptureStdout();
        const Outcome outcome = launcher.run(stop);
        m_log = testing::internal::GetCapturedStderr();
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
        return outcome;
    }

    /// What whoever serves in-process would get to read.
    std::vector<std::string> rest() {
        std::vector<std::string> lines;
        while (const std::optional<QByteArrayView> line = m_lines->next())
            lines.push_back(line->toByteArray().toStdString());
        return lines;
    }

    void hostIsUpAt(int port) {
        m_world.file = [port] { return endpointAt(port); };
        m_world.isHostUp = [port](int asked) { return asked == port; };
    }

    World m_world;
    FakeStreams m_streams{{}};
    std::optional<LineReader> m_lines;
    std::string m_log;
};

TEST(MCPLaunchDecision, AtFirst) {
    EXPECT_EQ(MCPLauncher::decideInitial(endpointAt(1), true), MCPLaunchAction::proxy);
    EXPECT_EQ(MCPLauncher::decideInitial(endpointAt(1), false), MCPLaunchAction::launchThenProxy);
    EXPECT_EQ(MCPLauncher::decideInitial(std::nullopt, true), MCPLaunchAction::launchThenProxy);
    EXPECT_EQ(MCPLauncher::decideInitial(std::nullopt, false), MCPLaunchAction::launchThenProxy);
}

TEST(MCPLaunchDecision, AfterALaunch) {
    EXPECT_EQ(MCPLauncher::decideAfterLaunch(endpointAt(1), true), MCPLaunchAction::proxy);
    EXPECT_EQ(MCPLauncher::decideAfterLaunch(endpointAt(1), false), MCPLaunchAction::inProcess);
    EXPECT_EQ(MCPLauncher::decideAfterLaunch(std::nullopt, true), MCPLaunchAction::inProcess);
    EXPECT_EQ(MCPLauncher::decideAfterLaunch(std::nullopt, false), MCPLaunchAction::inProcess);
}

TEST_F(MCPLauncherTest, PipesToARunningHost) {
    hostIsUpAt(47600);
    EXPECT_EQ(run({"a\nb\n"}), Outcome::inputEnded);
    EXPECT_EQ(m_log, proxying(47600));
    EXPECT_THAT(m_streams.writes(), ElementsAre("A\n", "B\n"));
    EXPECT_THAT(m_world.events, ElementsAre("read", "probe 47600 limit 2000", "read",
                                            "forward to 47600 limit 30000", "forward to 47600 limit 30000"));
    EXPECT_EQ(m_world.tokens, std::set<QString>{u"token"_s});
}

TEST_F(MCPLauncherTest, GoesByWhatTheFileSaysAfterTheProbe) {
    hostIsUpAt(47600);
    int reads = 0;
    m_world.file = [&] { return endpointAt(47600 + reads++); };
    EXPECT_EQ(run({"a\n"}), Outcome::inputEnded);
    EXPECT_EQ(m_log, proxying(47601));
    EXPECT_EQ(m_world.events.back(), "forward to 47601 limit 30000");
}

TEST_F(MCPLauncherTest, ServesInProcessWithoutAWordWhenTheFileWentAfterTheProbe) {
    hostIsUpAt(47600);
    int reads = 0;
    m_world.file = [&] { return reads++ == 0 ? std::optional(endpointAt(47600)) : std::nullopt; };
    EXPECT_EQ(run({"a\n"}), Outcome::inProcess);
    EXPECT_EQ(m_log, "");
    EXPECT_THAT(m_world.events, ElementsAre("read", "probe 47600 limit 2000", "read"));
    EXPECT_THAT(rest(), ElementsAre("a"));
}

TEST_F(MCPLauncherTest, StartsTheApplicationWhereThereIsNoFile) {
    m_world.accepts = false;
    EXPECT_EQ(run({"a\n"}), Outcome::inProcess);
    EXPECT_EQ(m_log, launching + unavailable);
    EXPECT_THAT(m_world.events, ElementsAre("read", "start"));
    EXPECT_EQ(m_world.time(), 0ms);
    EXPECT_THAT(rest(), ElementsAre("a"));
}

TEST_F(MCPLauncherTest, StartsTheApplicationWhereTheFileIsStale) {
    m_world.file = [] { return endpointAt(47600); };
    m_world.hostsHang = true;
    m_world.accepts = false;
    EXPECT_EQ(run({"a\n"}), Outcome::inProcess);
    EXPECT_EQ(m_log, launching + unavailable);
    EXPECT_THAT(m_world.events, ElementsAre("read", "probe 47600 limit 2000", "start"));
    EXPECT_EQ(m_world.time(), 2s);
}

TEST_F(MCPLauncherTest, FindsAnApplicationThatTakesThreeSeconds) {
    m_world.file = [&] { return m_world.time() >= 2500ms ? std::optional(endpointAt(47607)) : std::nullopt; };
    m_world.isHostUp = [&](int) { return m_world.time() >= 3s; };
    EXPECT_EQ(run({"a\n"}), Outcome::inputEnded);
    EXPECT_EQ(m_log, launching + proxying(47607));
    EXPECT_EQ(m_world.time(), 3200ms);
    EXPECT_EQ(m_world.sleeps, 8);
    EXPECT_EQ(m_world.lastSleep, 400ms);
    EXPECT_EQ(m_world.events[m_world.events.size() - 2], "probe 47607 limit 1000");
    EXPECT_THAT(m_streams.writes(), ElementsAre("A\n"));
}

TEST_F(MCPLauncherTest, PipesAtOnceWhereTheStartBroughtTheHostUp) {
    m_world.onStart = [this] { hostIsUpAt(47600); };
    EXPECT_EQ(run({"a\n"}), Outcome::inputEnded);
    EXPECT_THAT(m_world.events, ElementsAre("read", "start", "read", "probe 47600 limit 1000",
                                            "forward to 47600 limit 30000"));
    EXPECT_EQ(m_world.sleeps, 0);
}

TEST_F(MCPLauncherTest, StartsTheApplicationAgainOnceTheOneThatWasEndingIsGone) {
    m_world.isLocked = [&] { return m_world.time() < 3s; };
    int starts = 0;
    m_world.onStart = [&] {
        if (!m_world.isLocked()) {
            ++starts;
        }
    };
    m_world.file = [&] {
        return starts > 0 && m_world.time() >= 4s ? std::optional(endpointAt(47600)) : std::nullopt;
    };
    m_world.isHostUp = [](int) { return true; };
    EXPECT_EQ(run({"a\n"}), Outcome::inputEnded);
    EXPECT_EQ(m_log, launching + proxying(47600));
    EXPECT_EQ(starts, 1) << "it takes its time to come up";
    EXPECT_EQ(m_world.time(), 4s);
}

TEST_F(MCPLauncherTest, AnApplicationThatIsBeingStartedBySomebodyElseIsWaitedFor) {
    m_world.isLocked = [] { return true; };
    EXPECT_EQ(run({"a\n"}), Outcome::inProcess);
    EXPECT_EQ(m_world.time(), 10s);
    EXPECT_EQ(m_log, launching + unavailable);
}

TEST_F(MCPLauncherTest, OneThatCannotBeStartedAgainIsWaitedForAllTheSame) {
    m_world.isLocked = [&] { return m_world.time() < 3s; };
    m_world.accepts = false;
    EXPECT_EQ(run({"a\n"}), Outcome::inProcess);
    EXPECT_EQ(m_world.time(), 10s);
    EXPECT_EQ(std::count(m_world.events.begin(), m_world.events.end(), "start"), 10);
}

TEST_F(MCPLauncherTest, GivesUpAfterTenSecondsWithoutAFile) {
    EXPECT_EQ(run({"a\n"}), Outcome::inProcess);
    EXPECT_EQ(m_log, launching + unavailable);
    EXPECT_EQ(m_world.time(), 10s);
    EXPECT_EQ(m_world.sleeps, 25);
    EXPECT_THAT(m_world.forwarded, IsEmpty());
}

TEST_F(MCPLauncherTest, GivesUpAfterTenSecondsOfProbesThatHang) {
    m_world.onStart = [this] {
        m_world.file = [] { return endpointAt(47600); };
        m_world.hostsHang = true;
    };
    EXPECT_EQ(run({"a\n"}), Outcome::inProcess);
    EXPECT_EQ(std::count(m_world.events.begin(), m_world.events.end(), "probe 47600 limit 1000"), 8);
    EXPECT_EQ(m_world.time(), 8 * 1400ms);
}

TEST_F(MCPLauncherTest, AStopEndsTheWait) {
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(run({"a\n"}, stop.get_token()), Outcome::inProcess);
    EXPECT_EQ(m_log, launching + unavailable);
    EXPECT_THAT(m_world.events, ElementsAre("read", "start", "read"));
}

TEST_F(MCPLauncherTest, CompletesTheWaitWhenTheInputHasEnded) {
    m_world.isHostUp = [&](int) { return m_world.time() >= 1s; };
    m_world.file = [] { return endpointAt(47600); };
    EXPECT_EQ(run({}), Outcome::inputEnded);
    EXPECT_EQ(m_log, launching + proxying(47600));
    EXPECT_EQ(m_streams.events(), "read ");
    EXPECT_THAT(m_world.forwarded, IsEmpty());
}

TEST_F(MCPLauncherTest, ReadsNoInputBeforeItKnowsWhereItGoes) {
    m_world.onStart = [this] { EXPECT_EQ(m_streams.events(), ""); };
    m_world.accepts = false;
    run({"a\n"});
    EXPECT_EQ(m_streams.events(), "");
}

TEST_F(MCPLauncherTest, WritesNothingForANotification) {
    hostIsUpAt(47600);
    EXPECT_EQ(run({"note\na\n"}), Outcome::inputEnded);
    EXPECT_THAT(m_world.forwarded, ElementsAre("note", "a"));
    EXPECT_THAT(m_streams.writes(), ElementsAre("A\n"));
}

TEST_F(MCPLauncherTest, KeepsEmptyLinesToItself) {
    hostIsUpAt(47600);
    EXPECT_EQ(run({"\n\r\na\r\n\n", "\nb"}), Outcome::inputEnded);
    EXPECT_THAT(m_world.forwarded, ElementsAre("a", "b"));
    EXPECT_THAT(m_streams.writes(), ElementsAre("A\n", "B\n"));
}

TEST_F(MCPLauncherTest, ForwardsWhateverElseALineHolds) {
    hostIsUpAt(47600);
    const QByteArray odd("\xff\0 {", 4);
    m_world.replies.insert(odd, QByteArray("odd"));
    m_world.replies.insert(" ", QByteArray("blank"));
    run({odd + "\n \n"});
    EXPECT_THAT(m_world.forwarded, ElementsAre(odd.toStdString(), " "));
    EXPECT_THAT(m_streams.writes(), ElementsAre("odd\n", "blank\n"));
}

TEST_F(MCPLauncherTest, AnswersALineBeforeItWaitsForTheNext) {
    hostIsUpAt(47600);
    run({"a\n", "b\n"});
    EXPECT_EQ(m_streams.events(), "read write read write read ");
}

TEST_F(MCPLauncherTest, AHostThatIsLostTakesTheLineWithItAndNoOther) {
    hostIsUpAt(47600);
    EXPECT_EQ(run({"a\nlost\nb\nc"}), Outcome::inProcess);
    EXPECT_EQ(m_log, proxying(47600) + unreachable);
    EXPECT_THAT(m_streams.writes(), ElementsAre("A\n"));
    EXPECT_THAT(m_world.forwarded, ElementsAre("a", "lost"));
    EXPECT_THAT(rest(), ElementsAre("b", "c"));
}

TEST_F(MCPLauncherTest, NoByteIsLostWhereverTheInputIsCut) {
    hostIsUpAt(47600);
    const QByteArray input = "a\r\nlost\n\nb\nc";
    for (qsizetype at = 1; at < input.size(); ++at) {
        EXPECT_EQ(run({input.first(at), input.sliced(at)}), Outcome::inProcess);
        EXPECT_THAT(rest(), ElementsAre("", "b", "c")) << at;
    }
}

TEST_F(MCPLauncherTest, EndsWhenNobodyReadsTheReplies) {
    hostIsUpAt(47600);
    FakeStreams gone({"a\nb\n"});
    gone.writesBeforeReaderLeaves = 0;
    LineReader lines(gone);
    MCPLauncher launcher([this] { return m_world.read(); }, m_world, m_world, m_world, lines, gone);
    testing::internal::CaptureStderr();
    EXPECT_EQ(launcher.run(), Outcome::inputEnded);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), proxying(47600));
    EXPECT_THAT(m_world.forwarded, ElementsAre("a"));
}

} // namespace
} // namespace orvane

#include "OrvanePlatform/freedesktop/KeyringSecretStore.h"

#include "OrvaneCore/base/Log.h"
#include "OrvanePlatform/freedesktop/SecretService.h"

#include <QMutexLocker>
#include <QObject>
#include <QThread>

#include <future>
#include <memory>
#include <type_traits>
#include <utility>

#include <gio/gio.h>
#include <qt6keychain/keychain.h>

namespace orvane::freedesktop {

using namespace Qt::StringLiterals;

namespace {

using Answer = KeyringSecretStore::Answer;
using Kind = Answer::Kind;

/// QtKeychain speaks through a bus connection of GLib's, which would end the process when the bus goes.
/// GLib has one for the process as long as somebody holds it, and this one is held to the end.
void outliveTheBus() {
    static GDBusConnection* const connection = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    if (connection != nullptr)
        g_dbus_connection_set_exit_on_close(connection, FALSE);
}

/// Lives on the thread on which the keyring is spoken to. There is one in the process and it stays to the
/// end, because QtKeychain has one queue of jobs, bound to the thread that used it first.
QObject& keyringThread() {
    static QObject* const onThread = [] {
        auto* thread = new QThread;
        thread->setObjectName(u"keyring"_s);
        auto* object = new QObject;
        object->moveToThread(thread);
        thread->start();
        return object;
    }();
    return *onThread;
}

Answer answerOf(const QKeychain::Job& job) {
    switch (job.error()) {
    case QKeychain::NoError:
        return {Kind::done, {}, {}};
    case QKeychain::EntryNotFound:
        return {Kind::noSuchSecret, {}, {}};
    default:
        return {Kind::doesNotServe, {}, job.errorString()};
    }
}

/// The job deletes itself once it has finished, whenever that is.
template <class Job, class Told>
void start(Job* job, const QString& key, const Told& told) {
    job->setKey(key);
    QObject::connect(job, &QKeychain::Job::finished, job, [told, job] {
        Answer answer = answerOf(*job);
        if constexpr (std::is_same_v<Job, QKeychain::ReadPasswordJob>)
            answer.value = job->textData();
        told(answer);
    });
    job->start();
}

} // namespace

KeyringSecretStore::KeyringSecretStore(QString service, const QString& filePath,
                                       std::chrono::milliseconds timeout)
    : m_service(std::move(service))
    , m_file(filePath)
    , m_timeout(timeout) {}

std::optional<QString> KeyringSecretStore::get(const QString& key) {
    const std::optional<Answer> answer = run([service = m_service, key](const Told& told) {
        start(new QKeychain::ReadPasswordJob(service), key, told);
    });
    return answer && answer->kind == Kind::done ? std::optional(answer->value) : m_file.get(key);
}

bool KeyringSecretStore::set(const QString& key, const QString& value) {
    const std::optional<Answer> answer = run([service = m_service, key, value](const Told& told) {
        auto* job = new QKeychain::WritePasswordJob(service);
        job->setTextData(value);
        start(job, key, told);
    });
    if (!answer || answer->kind != Kind::done)
        return m_file.set(key, value);
    m_file.remove(key);
    return true;
}

bool KeyringSecretStore::remove(const QString& key) {
    run([service = m_service, key](const Told& told) {
        start(new QKeychain::DeletePasswordJob(service), key, told);
    });
    return m_file.remove(key);
}

std::optional<Answer> KeyringSecretStore::run(const Errand& errand) {
    const QMutexLocker locked(&m_mutex);
    if (!m_keyringServes)
        return std::nullopt;

    // The keyring may answer when nobody waits any more.
    const auto promise = std::make_shared<std::promise<Answer>>();
    std::future<Answer> future = promise->get_future();
    QMetaObject::invokeMethod(
        &keyringThread(),
        [errand, promise, timeout = m_timeout] {
            if (const std::optional<QString> problem = secretServiceProblem(timeout)) {
                promise->set_value({Kind::doesNotServe, {}, *problem});
                return;
            }
            outliveTheBus();
            errand([promise](const Answer& answer) { promise->set_value(answer); });
        },
        Qt::QueuedConnection);

    Answer answer{Kind::doesNotServe, {}, u"it does not answer"_s};
    if (future.wait_for(m_timeout) == std::future_status::ready)
        answer = future.get();
    if (answer.kind != Kind::doesNotServe)
        return answer;
    m_keyringServes = false;
    logLine(u"the desktop's keyring does not serve (%1); secrets are kept in %2"_s.arg(answer.problem,
                                                                                       m_file.filePath()));
    return std::nullopt;
}

} // namespace orvane::freedesktop

// Enters sessions into databases, closes databases to other sessions, and ends sessions.
#include "devserver/tsql/session/database_users.h"

#include <algorithm>
#include <thread>

#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/server.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// How often a waiting session checks whether its client has cancelled.
constexpr milliseconds kTick{10};
constexpr milliseconds kTimeToLeave{500};

} // namespace

std::int32_t DatabaseUsers::NewSessionId() {
    constexpr std::int32_t kLastSession = 32767;
    const std::lock_guard lock(mutex_);
    std::int32_t id = 0;
    do {
        id = next_session_;
        next_session_ = next_session_ >= kLastSession ? kFirstSession : next_session_ + 1;
    } while (sessions_.contains(id));
    return id;
}

void DatabaseUsers::Register(SessionCore& session) {
    const std::lock_guard lock(mutex_);
    sessions_[session.id()] = &session;
}

void DatabaseUsers::Withdraw(SessionCore& session) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return !ending_.contains(&session); });
    sessions_.erase(session.id());
}

template <class Done>
bool DatabaseUsers::WaitFor(std::unique_lock<std::mutex>& lock, const SessionCore& session,
                            milliseconds limit, Done done) {
    const auto end = steady_clock::now() + limit;
    while (!done()) {
        if (session.interruption().requested() || steady_clock::now() >= end) {
            return false;
        }
        changed_.wait_for(lock, kTick);
    }
    return true;
}

DatabaseInfo DatabaseUsers::Enter(const std::string& name, SessionCore& session) {
    std::unique_lock lock(mutex_);
    std::optional<DatabaseInfo> info;
    Usage* usage = nullptr;
    // While the database is closed it may be renamed or removed, so it is looked up each time.
    const bool open = WaitFor(lock, session, session.transactions().LockTime(), [&] {
        info = FindDatabase(list_, name);
        usage = info ? &usage_[info->id] : nullptr;
        return usage == nullptr || usage->closed_by == nullptr || usage->closed_by == &session;
    });
    if (!info) {
        RaiseError(911, {name});
    }
    if (!open) {
        session.CheckCancelled();
        RaiseError(952, {info->name});
    }
    if (info->Option("OFFLINE")) {
        RaiseError(942, {info->name});
    }
    if (info->Option("SINGLE_USER") && usage->OthersThan(session)) {
        RaiseError(924, {info->name});
    }
    usage->name = Folded(info->name);
    usage->sessions.insert(&session);
    return std::move(*info);
}

void DatabaseUsers::Leave(int database, SessionCore& session) {
    const std::lock_guard lock(mutex_);
    usage_[database].sessions.erase(&session);
    changed_.notify_all();
}

bool DatabaseUsers::Close(int database, const SessionCore& session) {
    std::unique_lock lock(mutex_);
    Usage& usage = usage_[database];
    usage.closed_by = &session;
    if (WaitFor(lock, session, kTimeToLeave, [&] { return !usage.OthersThan(session); })) {
        return true;
    }
    usage.closed_by = nullptr;
    changed_.notify_all();
    session.CheckCancelled();
    return false;
}

void DatabaseUsers::Reopen(int database) {
    const std::lock_guard lock(mutex_);
    usage_[database].closed_by = nullptr;
    changed_.notify_all();
}

std::vector<SessionCore*> DatabaseUsers::TakeOthers(int database, const SessionCore& session) {
    std::vector<SessionCore*> others;
    for (const auto& [id, other] : sessions_) {
        if (other != &session && usage_[database].sessions.contains(other)) {
            others.push_back(other);
            ending_.insert(other);
        }
    }
    return others;
}

void DatabaseUsers::CloseAndEndOthers(int database, const SessionCore& session) {
    for (;;) {
        std::vector<SessionCore*> others;
        {
            std::unique_lock lock(mutex_);
            Usage& usage = usage_[database];
            usage.closed_by = &session;
            others = TakeOthers(database, session);
            // A session that is already ending can't be ended, and will soon have left.
            if (others.empty() && WaitFor(lock, session, kTick, [&] { return !usage.OthersThan(session); })) {
                return;
            }
        }
        for (SessionCore* other : others) {
            End(*other, session);
        }
        if (session.interruption().requested()) {
            Reopen(database);
            session.CheckCancelled();
        }
    }
}

/// Ends a session: interrupts what it runs, rolls back its transaction and releases its databases.
void DatabaseUsers::End(SessionCore& session, const SessionCore& by) {
    // Done in every case, because the session's destructor waits for it.
    const auto release = [this](const SessionCore* ended) {
        const std::lock_guard lock(mutex_);
        ending_.erase(ending_.find(ended));
        changed_.notify_all();
    };
    const std::unique_ptr<SessionCore, decltype(release)> taken(&session, release);
    session.interruption().EndSession();
    std::unique_lock running(session.interruption().running(), std::defer_lock);
    do {
        session.Cancel(); // Repeated, because the session may have been between two statements.
        if (running.try_lock()) {
            session.transactions().Abandon();
            session.databases().ReleaseAll();
            return;
        }
        std::this_thread::sleep_for(milliseconds(1));
    } while (
        !by.interruption()
             .session_ended()); // When two sessions end each other, the one that was ended first gives up.
}

void DatabaseUsers::Kill(std::int32_t id, const SessionCore& by) {
    SessionCore* found = nullptr;
    {
        const std::lock_guard lock(mutex_);
        const auto session = sessions_.find(id);
        if (session == sessions_.end()) {
            RaiseError(6106, {std::to_string(id)});
        }
        RaiseIf(session->second == &by, 6104);
        found = session->second;
        ending_.insert(found);
    }
    End(*found, by);
}

std::vector<DatabaseUsers::SessionInfo> DatabaseUsers::Sessions() {
    const std::lock_guard lock(mutex_);
    std::vector<SessionInfo> list;
    for (const auto& [id, session] : sessions_) {
        const ClientInfo& client = session->client();
        list.push_back(
            {id, client.login, client.host_name, client.application, "", session->isolation_level()});
        for (const auto& [database, usage] : usage_) {
            if (usage.sessions.contains(session)) {
                list.back().database = usage.name;
            }
        }
    }
    return list;
}

DatabaseUsers::ListTurn::ListTurn(const SessionCore& session) : users_(session.server().users()) {
    std::unique_lock lock(users_.mutex_);
    const bool taken = users_.WaitFor(lock, session, session.transactions().LockTime(),
                                      [&] { return users_.turn_ == nullptr || users_.turn_ == &session; });
    if (!taken) {
        session.CheckCancelled();
        throw session.transactions().LockError();
    }
    users_.turn_ = &session;
    ++users_.turns_;
}

DatabaseUsers::ListTurn::~ListTurn() {
    const std::lock_guard lock(users_.mutex_);
    if (--users_.turns_ == 0) {
        users_.turn_ = nullptr;
        users_.changed_.notify_all();
    }
}

} // namespace devsql

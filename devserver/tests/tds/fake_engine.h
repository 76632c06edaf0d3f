// A fake engine for the tests of the protocol: it knows one login, and passes each batch and each call to the
// test.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "devserver/engine/engine.h"

namespace devsql::fakes {

class FakeSession;

/// The hooks that a test sets, and what the sessions record. Shared by all sessions. The hooks must be set
/// before a client connects.
struct FakeScript {
    std::function<void(FakeSession&, std::string_view, ResultSink&)> on_batch;
    std::function<void(FakeSession&, const RpcCall&, ResultSink&)> on_call;
    std::function<void()> on_login;

    std::mutex mutex; ///< guards the lists below
    std::vector<LoginRequest> logins;
    std::vector<std::string> batches;
    std::vector<RpcCall> calls;
    std::vector<std::vector<Value>> bulk_rows;
    std::atomic<bool> refuse_bulk = false; ///< LoadRows stops at the first row
    std::atomic<int> loads = 0;            ///< bulk loads that have begun
    std::atomic<int> open_sessions = 0;
    std::atomic<int> cancels = 0; ///< calls of Cancel
};

class FakeSession : public Session {
  public:
    FakeSession(FakeScript& script, std::int32_t id, std::string database)
        : script_(script), id_(id), database_(std::move(database)) {
        ++script_.open_sessions;
    }
    ~FakeSession() override { --script_.open_sessions; }
    FakeSession(const FakeSession&) = delete;
    FakeSession& operator=(const FakeSession&) = delete;

    void ExecuteBatch(std::string_view sql, ResultSink& sink) override {
        cancelled_ = false;
        {
            const std::lock_guard lock(script_.mutex);
            script_.batches.emplace_back(sql);
        }
        if (script_.on_batch) {
            script_.on_batch(*this, sql, sink);
        }
    }
    void ExecuteProcedure(const RpcCall& call, ResultSink& sink) override {
        cancelled_ = false;
        {
            const std::lock_guard lock(script_.mutex);
            script_.calls.push_back(call);
        }
        if (script_.on_call) {
            script_.on_call(*this, call, sink);
        }
    }
    /// Records the rows for the test. Stops at the first row if the test has set `refuse_bulk`, and when the
    /// session has been ended.
    void LoadRows(BulkRows& rows, ResultSink& sink) override {
        ++script_.loads;
        std::vector<Value> row;
        std::int64_t count = 0;
        for (BulkRows::Step step = rows.Next(row); step != BulkRows::Step::End; step = rows.Next(row)) {
            if (step == BulkRows::Step::Gone || script_.refuse_bulk || ended_) {
                return;
            }
            if (step == BulkRows::Step::Row) {
                const std::lock_guard lock(script_.mutex);
                script_.bulk_rows.push_back(row);
                ++count;
            }
        }
        sink.StatementDone(Command::Insert, count, false);
    }
    void Cancel() override {
        cancelled_ = true;
        ++script_.cancels;
    }
    std::string Database() const override { return database_; }
    std::int32_t Id() const override { return id_; }
    bool Ended() const override { return ended_; }
    std::int32_t TransactionCount() const override { return transactions_; }

    bool cancelled() const { return cancelled_; }
    void End() { ended_ = true; }
    void Use(const std::string& database) { database_ = database; }
    void SetTransactions(std::int32_t count) { transactions_ = count; }
    /// Waits until the session is cancelled; false after a minute.
    bool WaitForCancel() const {
        for (int i = 0; i < 30000 && !cancelled_; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        return cancelled_;
    }

  private:
    FakeScript& script_;
    std::int32_t id_;
    std::string database_;
    std::int32_t transactions_ = 0;
    std::atomic<bool> cancelled_ = false;
    std::atomic<bool> ended_ = false;
};

/// Knows the login "sa" with the password "secret" and the databases master and Batch.
class FakeEngine : public Engine {
  public:
    std::unique_ptr<Session> Login(const LoginRequest& request, ResultSink& sink) override {
        {
            const std::lock_guard lock(script.mutex);
            script.logins.push_back(request);
        }
        if (script.on_login) {
            script.on_login();
        }
        if (request.user != "sa" || request.password != "secret") {
            sink.Send({18456, 14, 1, "Login failed for user '" + request.user + "'.", {}, 1});
            return nullptr;
        }
        const std::string database = request.database.empty() ? "master" : request.database;
        if (database != "master" && database != "Batch") {
            sink.Send({4060, 11, 1, "Cannot open database \"" + database + "\".", {}, 1});
            return nullptr;
        }
        sink.DatabaseChanged("master", database);
        sink.Send({5701, 0, 2, "Changed database context to '" + database + "'.", {}, 1});
        sink.Send({5703, 0, 1, "Changed language setting to us_english.", {}, 1});
        return std::make_unique<FakeSession>(script, ++last_id_, database);
    }
    const std::string& ServerName() const override { return name_; }

    FakeScript script;

  private:
    std::string name_ = "FAKE";
    std::atomic<std::int32_t> last_id_ = 50;
};

} // namespace devsql::fakes

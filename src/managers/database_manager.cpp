// Opens connections, runs statements and handles their failures.
#include "managers/database_manager.h"

#include <array>

#include "base/error_log.h"
#include "base/failure.h"

namespace kv {

void Operation::OpenStandard(const std::string& strDatabase, std::int32_t seconds) {
    Create();
    SetDatabase(strDatabase);
    SetTimeouts(seconds);
    Open();
}

void Operation::Create() {
    connection_ = std::make_unique<ado::Connection>();
    connection_->CursorLocation(ado::adUseClient);
}

void Operation::SetTimeouts(std::int32_t seconds) {
    connection_->CommandTimeout(seconds);
    connection_->ConnectionTimeout(seconds);
}

void Operation::SetDatabase(const std::string& strDatabase) {
    connection_->ConnectionString(manager_.BuildConnectionString(strDatabase));
}

void Operation::Open() {
    connection_->Open("", "", "", ado::adOptionUnspecified);
}

void Operation::Close() {
    connection_->Close();
}

std::unique_ptr<ado::Recordset> Operation::Execute(const std::string& statement, std::int32_t options) {
    std::int64_t records_affected = 0; // the call requires it; not used
    std::unique_ptr<ado::Recordset> recordset = connection_->Execute(statement, records_affected, options);
    CollectErrors();
    return recordset;
}

std::unique_ptr<ado::Recordset> Operation::OpenSchema(std::int32_t schema) {
    std::unique_ptr<ado::Recordset> recordset = connection_->OpenSchema(schema);
    CollectErrors();
    return recordset;
}

std::unique_ptr<ado::Recordset> Operation::Execute(ado::Command& command) {
    std::int64_t records_affected = 0;
    std::unique_ptr<ado::Recordset> recordset = command.Execute(records_affected, ado::adOptionUnspecified);
    CollectErrors();
    return recordset;
}

void Operation::CollectErrors() {
    CollectDbErrors(manager_.db_errors_, connection_->Errors());
}

void Operation::Fail(const std::string& description) const {
    RaiseFailure(kProgramFailure, manager_.class_name_, description);
}

void Operation::CleanUp() {
    if (!connection_) {
        return;
    }
    // If the order of the errors has made CollectErrors fail in a step, it fails here again.
    CollectErrors();
    if (connection_->State() != ado::adStateClosed) {
        connection_->Close();
    }
    connection_.reset();
}

DatabaseManager::DatabaseManager(const char* class_name) : class_name_(class_name) {
    ResetDbErrors(db_errors_);
}

bool DatabaseManager::RunOperation(const std::string& error_source, const Steps& steps) {
    bool result = false;
    ResetDbErrors(db_errors_);
    Operation operation(*this);
    WithFailureHandler(
        [&] {
            steps(operation);
            operation.Close();
            operation.connection_.reset();
            result = true;
        },
        [&](const Failure&) {
            operation.CleanUp();
            WriteErrorLog(class_name_ + error_source);
        });
    return result;
}

std::string DatabaseManager::BuildConnectionString(const std::string& strDatabase) const {
    if (Selected().server.empty() || Selected().user.empty()) {
        return {};
    }
    std::string text = "Driver={SQL Server};Server=#;Database=#;Uid=#;Pwd=#;";
    const std::array<const std::string*, 4> values = {&Selected().server, &strDatabase, &Selected().user,
                                                      &Selected().password};
    for (const std::string* value : values) {
        text.replace(text.find('#'), 1, *value);
    }
    return text;
}

std::string ErrorSource(const char* operation, const std::string& argument) {
    return std::string("::") + operation + "('" + argument + "')";
}

std::string ErrorSource(const char* operation, const std::string& first, const std::string& second) {
    return std::string("::") + operation + "('" + first + "', '" + second + "')";
}

} // namespace kv

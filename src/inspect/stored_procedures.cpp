// CViewDataMgr's operations on stored procedures.
#include <algorithm>

#include "base/int16.h"
#include "inspect/result_table.h"
#include "inspect/view_data_mgr.h"

namespace kv {
namespace {

/// Seconds for connecting and for the command, where a procedure's parameters are concerned.
constexpr std::int32_t kProcedureTimeoutSeconds = 60;

/// Makes the command one of the procedure, and asks the server for its parameters.
void SetUp(ado::Command& command, Operation& operation, const std::string& strStoredProcedure) {
    command.ActiveConnection(operation.Connection());
    command.CommandText(strStoredProcedure);
    command.CommandType(ado::adCmdStoredProc);
    command.CommandTimeout(kProcedureTimeoutSeconds);
    command.Parameters().Refresh();
}

std::unique_ptr<ado::Parameter> FreeStanding(const ado::Parameter& live) {
    auto parameter = std::make_unique<ado::Parameter>();
    parameter->Attributes(live.Attributes());
    parameter->Direction(live.Direction());
    parameter->Name(live.Name());
    parameter->NumericScale(live.NumericScale());
    parameter->Precision(live.Precision());
    parameter->Size(live.Size());
    parameter->Type(live.Type());
    parameter->Value(live.Value());
    return parameter;
}

/// What a reference stands for. One that is nothing fails whoever uses it: an element that a failed operation
/// left without an object, a recordset that did not come back and is not asked for.
template <class Object>
Object& Used(const std::unique_ptr<Object>& reference) {
    if (!reference) {
        RaiseRunTimeFailure(run_time::kObjectVariableNotSet);
    }
    return *reference;
}

/// Calls `copy` with each live parameter and its namesake in the array, the first of them, if it has one.
template <class Copy>
void ForEachPair(ado::Parameters& live, ParameterArray& arrParameters, Copy copy) {
    const Int16 count(live.Count());
    const Int16 upper(static_cast<std::int64_t>(arrParameters.size()) - 1);
    for (Int16 i; i < count; ++i) {
        ado::Parameter& parameter = live.Item(i.Value());
        for (Int16 j(1); j <= upper; ++j) {
            ado::Parameter& held = Used(arrParameters[static_cast<std::size_t>(j.Value())]);
            if (parameter.Name() == held.Name()) {
                copy(parameter, held);
                break;
            }
        }
    }
}

} // namespace

bool CViewDataMgr::GetStoredProcedures(const std::string& strDbName,
                                       std::vector<std::string>& arrStoredProcedures) {
    return RunOperation(ErrorSource("GetStoredProcedures", strDbName), [&](Operation& operation) {
        arrStoredProcedures.assign(1, {});
        operation.OpenStandard(strDbName);
        const auto catalogue = operation.OpenSchema(ado::adSchemaProcedures);
        ado::Recordset& rows = Used(catalogue);
        if (rows.Eof() && rows.Bof()) {
            return;
        }
        rows.MoveFirst();
        for (; !rows.Eof(); rows.MoveNext()) {
            arrStoredProcedures.emplace_back();
            std::string& name = arrStoredProcedures.back();
            name = rows.Fields().Item("PROCEDURE_NAME").Value().ToString();
            name.resize(std::min(name.find(';'), name.size())); // the number behind it goes
        }
    });
}

std::string CViewDataMgr::GetStoredProcedure(const std::string& strDbName,
                                             const std::string& strStoredProcedure) {
    std::string text;
    const bool done = RunOperation(
        ErrorSource("GetStoredProcedure", strDbName, strStoredProcedure), [&](Operation& operation) {
            operation.OpenStandard(strDbName);
            const auto lines =
                operation.Execute("sp_helptext '" + strStoredProcedure + "'", ado::adOptionUnspecified);
            ado::Recordset& rows = Used(lines);
            if (rows.Eof() && rows.Bof()) {
                return;
            }
            rows.MoveFirst();
            for (; !rows.Eof(); rows.MoveNext()) {
                text += rows.Fields().Item(0).Value().ToString(); // with the line's own end
            }
        });
    return done ? text : std::string();
}

bool CViewDataMgr::GetStoredProcedureParameters(const std::string& strDbName,
                                                const std::string& strStoredProcedure,
                                                ParameterArray& arrParameters) {
    const std::string source = ErrorSource("GetStoredProcedureParameters", strDbName, strStoredProcedure);
    return RunOperation(source, [&](Operation& operation) {
        arrParameters.clear();
        arrParameters.resize(1);
        operation.OpenStandard(strDbName, kProcedureTimeoutSeconds);
        ado::Command command;
        SetUp(command, operation, strStoredProcedure);
        ado::Parameters& live = command.Parameters();
        arrParameters.resize(static_cast<std::size_t>(live.Count()) + 1);
        const Int16 count(live.Count());
        for (Int16 n(1); n <= count; ++n) {
            arrParameters[static_cast<std::size_t>(n.Value())] = FreeStanding(live.Item(n.Value() - 1));
        }
    });
}

bool CViewDataMgr::ExecuteStoredProcedure(const std::string& strDbName, const std::string& strStoredProcedure,
                                          ParameterArray& arrParameters, TextTable& arrData) {
    const std::string source = ErrorSource("ExecuteStoredProcedure", strDbName, strStoredProcedure);
    return RunOperation(source, [&](Operation& operation) {
        operation.OpenStandard(strDbName, kProcedureTimeoutSeconds);
        ado::Command command;
        SetUp(command, operation, strStoredProcedure);
        // The server's list is the one that goes into the call; the array only supplies values.
        ForEachPair(command.Parameters(), arrParameters,
                    [](ado::Parameter& live, const ado::Parameter& held) { live.Value(held.Value()); });
        const auto rows = operation.Execute(command);
        // Before the copying: the new list keeps the values, those that came out among them.
        command.Parameters().Refresh();
        ForEachPair(command.Parameters(), arrParameters,
                    [](const ado::Parameter& live, ado::Parameter& held) { held.Value(live.Value()); });
        if (!rows) {
            operation.Fail("Data could not be retrieved from the SQL Server!");
        }
        FillTable(arrData, *rows);
    });
}

} // namespace kv

// CViewDataMgr's operations on stored procedures.
#include <algorithm>

#include "base/int16.h"
#include "inspect/view_data_mgr.h"

namespace kv {
namespace {

/// Seconds allowed for connecting and for each call, in the operations that read a procedure's parameters.
constexpr std::int32_t kProcedureTimeoutSeconds = 60;

/// Sets the command up to call the procedure, and asks the server for its parameters.
void SetUp(ado::Command& command, Operation& operation, const std::string& strStoredProcedure) {
    command.ActiveConnection(operation.Connection());
    command.CommandText(strStoredProcedure);
    command.CommandType(ado::adCmdStoredProc);
    command.CommandTimeout(kProcedureTimeoutSeconds);
    command.Parameters().Refresh();
}

/// Returns the object, or raises the run time's failure 91 if there is none: an array element that a failed
/// operation left empty, or a recordset that was not returned.
template <class Object>
Object& Checked(const std::unique_ptr<Object>& reference) {
    if (!reference) {
        RaiseRunTimeFailure(run_time::kObjectVariableNotSet);
    }
    return *reference;
}

/// Calls `copy` with each parameter of the command and the first one of the same name in the array, if any.
template <class Copy>
void ForEachPair(ado::Parameters& live, ParameterArray& arrParameters, Copy copy) {
    const Int16 count(live.Count());
    const Int16 upper(static_cast<std::int64_t>(arrParameters.size()) - 1);
    for (Int16 i; i < count; ++i) {
        ado::Parameter& parameter = live.Item(i.Value());
        for (Int16 j(1); j <= upper; ++j) {
            ado::Parameter& held = Checked(arrParameters[static_cast<std::size_t>(j.Value())]);
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
        ado::Recordset& rows = Checked(catalogue);
        if (rows.Eof() && rows.Bof()) {
            return;
        }
        rows.MoveFirst();
        for (; !rows.Eof(); rows.MoveNext()) {
            arrStoredProcedures.emplace_back();
            std::string& name = arrStoredProcedures.back();
            name = rows.Fields().Item("PROCEDURE_NAME").Value().ToString();
            name.resize(std::min(name.find(';'), name.size())); // cuts the number after the name
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
            ado::Recordset& rows = Checked(lines);
            if (rows.Eof() && rows.Bof()) {
                return;
            }
            rows.MoveFirst();
            for (; !rows.Eof(); rows.MoveNext()) {
                text += rows.Fields().Item(0).Value().ToString(); // each ends with its line end
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
            arrParameters[static_cast<std::size_t>(n.Value())] =
                std::make_unique<ado::Parameter>(live.Item(n.Value() - 1));
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
        // The call uses the server's parameter list; the array only supplies values.
        ForEachPair(command.Parameters(), arrParameters,
                    [](ado::Parameter& live, const ado::Parameter& held) { live.Value(held.Value()); });
        const auto rows = operation.Execute(command);
        // Refreshed before copying back: the new list keeps the values, output values included.
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

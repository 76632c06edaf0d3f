// The catalogues that a connection opens as recordsets.
#include <string>
#include <vector>

#include "ado/connection_impl.h"

namespace ado {
namespace {

/// The first columns of ODBC's catalogue, whose names there depend on the version that the driver speaks.
const std::vector<std::string> kProcedureFields = {"PROCEDURE_CATALOG", "PROCEDURE_SCHEMA", "PROCEDURE_NAME"};

} // namespace

std::unique_ptr<Recordset> Connection::OpenSchema(std::int32_t schema) {
    impl_->CheckOpen(true);
    if (schema != adSchemaProcedures) {
        RaiseOwnError(kFeatureNotAvailable, "ADODB.Connection", "schema " + std::to_string(schema));
    }
    std::int64_t ignored = 0;
    const std::unique_ptr<Recordset> catalogue =
        impl_->Run({.timeout = impl_->command_timeout,
                    .start = [](platform::odbc::Statement& statement) { statement.Procedures(); }},
                   ignored);
    RowStore rows;
    std::vector<Variant> row(kProcedureFields.size());
    for (; !catalogue->Eof(); catalogue->MoveNext()) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            row[i] = catalogue->Fields().Item(static_cast<std::int32_t>(i)).Value();
        }
        rows.Append(row);
    }
    return std::make_unique<Recordset>(kProcedureFields, std::move(rows));
}

} // namespace ado

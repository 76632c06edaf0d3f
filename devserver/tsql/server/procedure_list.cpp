// Joins the tables of system procedures, and takes each one's parameters from procedure_parameters.sql.
#include "devserver/tsql/server/procedure_list.h"

#include <algorithm>
#include <span>
#include <vector>

#include "devserver/tsql/catalogue/embedded_sql.h"
#include "devserver/tsql/procedures/system_procedures.h"
#include "devserver/tsql/replication/replication_procedures.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {
namespace {

/// The parameters of a procedure, as procedure_parameters.sql has them.
std::string_view ParametersOf(std::string_view name) {
    for (const std::string_view batch : embedded::Batches(embedded::kProcedureParameters)) {
        const std::string_view procedure = embedded::After("CREATE PROCEDURE ", batch);
        const std::size_t end = procedure.find('\n');
        if (procedure.substr(0, end) == name) {
            return procedure.substr(end + 1);
        }
    }
    return SystemProcedure{}.parameters;
}

std::vector<SystemProcedure> LoadProcedures() {
    std::vector<SystemProcedure> procedures;
    for (const std::span<const SystemProcedure> list :
         {SystemProcedures(), HelpProcedures(), PropertyProcedures(), LinkedProcedures(),
          DistributorProcedures(), PublicationProcedures()}) {
        for (const SystemProcedure& procedure : list) {
            procedures.push_back({procedure.name, procedure.run, ParametersOf(procedure.name)});
        }
    }
    return procedures;
}

} // namespace

const SystemProcedure* FindSystemProcedure(std::string_view name) {
    static const std::vector<SystemProcedure> procedures = LoadProcedures();
    const auto found = std::ranges::find_if(
        procedures, [&](const SystemProcedure& procedure) { return AsciiEqual(procedure.name, name); });
    return found == procedures.end() ? nullptr : &*found;
}

} // namespace devsql

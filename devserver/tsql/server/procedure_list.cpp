#include "devserver/tsql/server/procedure_list.h"

#include <span>

#include "devserver/tsql/procedures/catalogue_procedures.h"
#include "devserver/tsql/procedures/linked_procedures.h"
#include "devserver/tsql/procedures/system_procedures.h"
#include "devserver/tsql/replication/replication_procedures.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {

const SystemProcedure* FindSystemProcedure(std::string_view name) {
    for (const std::span<const SystemProcedure> list :
         {SystemProcedures(), CatalogueProcedures(), HelpProcedures(), KeyProcedures(), PropertyProcedures(),
          LinkedProcedures(), DistributorProcedures(), PublicationProcedures()}) {
        for (const SystemProcedure& procedure : list) {
            if (AsciiEqual(procedure.name, name)) {
                return &procedure;
            }
        }
    }
    return nullptr;
}

} // namespace devsql

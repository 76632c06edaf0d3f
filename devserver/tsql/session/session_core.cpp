// The beginning and the end of a session.
#include "devserver/tsql/session/session_core.h"

#include "devserver/tsql/session/server.h"

namespace devsql {

SessionCore::SessionCore(Server& server, ClientInfo client)
    : server_(server), client_(std::move(client)), connection_(server.MasterFile()) {
    server_.users().Register(*this);
}

SessionCore::~SessionCore() {
    // Leaves the list first, so that no other session ends one that is already ending.
    server_.users().Withdraw(*this);
    transactions_.Abandon();
    interruption_.Reset();
    DropGlobalTables();
    databases_.ReleaseAll();
}

void SessionCore::SetOptions(const Options& options) {
    options_ = options;
    isolation_level_ = options.isolation_level;
}

void SessionCore::SetIsolationLevel(std::int16_t level) {
    options_.isolation_level = level;
    isolation_level_ = level;
}

void SessionCore::DropGlobalTables() {
    for (const std::string& name : temporaries_.TakeGlobals()) {
        try {
            Catalogue& catalogue = databases_.Get("tempdb");
            const std::optional<ObjectDef> object = catalogue.FindObject("dbo", name);
            if (object && object->type == "U") {
                const TablePtr table = databases_.Table(catalogue, object->id);
                transactions_.Write(catalogue.alias(), [&] {
                    connection_.Execute("DROP TABLE " + table->Qualified());
                    catalogue.RemoveObject(object->id);
                });
            }
        } catch (const std::exception&) { // tempdb is made again at the next start.
            return;
        }
    }
}

void SessionCore::Cancel() {
    interruption_.Request();
    remote_.Cancel();
}

} // namespace devsql

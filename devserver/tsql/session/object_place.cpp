// Fills in the parts that a name leaves out.
#include "devserver/tsql/session/object_place.h"

#include "devserver/tsql/session/session_core.h"

namespace devsql {

ObjectPlace PlaceOf(SessionCore& session, const ast::Name& name) {
    if (session.remote().Means(name)) {
        session.remote().Find(name.parts[0]);
        RaiseError(117, {"object", name.text(), "2"});
    }
    constexpr std::size_t kServerParts = 4;
    if (name.parts.size() == kServerParts) { // This server, under its own name.
        return PlaceOf(session, {{name.parts.begin() + 1, name.parts.end()}});
    }
    const std::size_t count = name.parts.size();
    ObjectPlace place;
    place.name = name.last();
    place.schema = count > 1 && !name.parts[count - 2].empty() ? name.parts[count - 2] : "dbo";
    place.database = count > 2 && !name.parts[0].empty() ? name.parts[0] : session.databases().CurrentName();
    if (IsGlobalTable(place.name)) {
        place.database = "tempdb";
        place.schema = "dbo";
    }
    return place;
}

} // namespace devsql

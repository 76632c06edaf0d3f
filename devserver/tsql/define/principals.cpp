// Logins, users, roles, schemas and rights. Rights are stored and shown but not enforced: every login may do
// everything.
#include <algorithm>

#include "devserver/tsql/define/definitions.h"
#include "devserver/tsql/scalar/required.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/object_place.h"
#include "devserver/tsql/session/server.h"

namespace devsql {
namespace {

struct Principal {
    std::int64_t id = 0;
    std::string name;
    bool role = false;
};

std::optional<Principal> FindPrincipal(Catalogue& catalogue, std::string_view name) {
    SqliteStatement row = catalogue.Prepare("SELECT id, name, role FROM {db}.devsql_users WHERE name = ?1");
    row.BindText(1, name);
    return row.Step() ? std::optional(Principal{row.Int(0), row.Text(1), row.Int(2) != 0}) : std::nullopt;
}

void AddPrincipal(SessionCore& session, const std::string& name, const std::string& login, bool role) {
    Catalogue& catalogue = session.databases().Current();
    session.transactions().Write(catalogue.alias(), [&] {
        RaiseIf(FindPrincipal(catalogue, name).has_value(), 15023, {name});
        // As in SQL Server, the ids of users begin at 5 and those of new roles at 16400.
        catalogue
            .Prepare("INSERT INTO {db}.devsql_users SELECT max(max(id), ?4) + 1, ?1, ?2, ?3, "
                     "CAST((julianday('now', 'localtime') - 2415020.5) * 25920000 AS INTEGER) "
                     "FROM {db}.devsql_users WHERE (id > 16383) = ?3")
            .BindText(1, name)
            .BindText(2, login)
            .BindInt(3, role)
            .BindInt(4, role ? 16399 : 4)
            .Run();
    });
}

/// The permissions that GRANT accepts.
constexpr std::string_view kPermissions =
    "ALL,ALL PRIVILEGES,SELECT,INSERT,UPDATE,DELETE,EXECUTE,EXEC,REFERENCES,CREATE TABLE,CREATE VIEW,"
    "CREATE PROCEDURE,CREATE DATABASE,CREATE DEFAULT,CREATE FUNCTION,CREATE RULE,BACKUP DATABASE,"
    "BACKUP LOG,CONNECT,CONTROL,ALTER,VIEW DEFINITION,TAKE OWNERSHIP,CREATE SCHEMA";

} // namespace

void AddLogin(SessionCore& session, const std::string& name, const std::string& password,
              const std::string& database) {
    RaiseIf(FindLogin(session.connection(), name).has_value(), 15025, {name});
    RaiseIf(name.find('\\') != std::string::npos, 15006, {name});
    RaiseIf(!database.empty() && !FindDatabase(session.connection(), database), 15010, {database});
    session.transactions().Write("main", [&] {
        SaveLogin(session.connection(),
                  {name, HashPassword(password), database.empty() ? "master" : database, false});
    });
}

void AddUser(SessionCore& session, const std::string& login, const std::string& name) {
    RaiseIf(!AsciiEqual(login, "guest") && !FindLogin(session.connection(), login), 15007, {login});
    Catalogue& catalogue = session.databases().Current();
    SqliteStatement known =
        catalogue.Prepare("SELECT name FROM {db}.devsql_users WHERE login = ?1 AND id > 4");
    RaiseIf(known.BindText(1, login).Step(), 15063);
    AddPrincipal(session, name.empty() ? login : name, login, false);
}

void AddRole(SessionCore& session, const std::string& name) {
    AddPrincipal(session, name, "", true);
}

void SetRoleMember(SessionCore& session, const std::string& role, const std::string& member, bool add) {
    Catalogue& catalogue = session.databases().Current();
    const Principal group = Required(FindPrincipal(catalogue, role), 15014, {role});
    RaiseIf(!group.role, 15014, {role});
    RaiseIf(group.id == 0, 15081);
    const Principal user = Required(FindPrincipal(catalogue, member), 15410, {member});
    session.transactions().Write(catalogue.alias(), [&] {
        catalogue
            .Prepare(add ? "INSERT OR IGNORE INTO {db}.devsql_members VALUES(?1, ?2)"
                         : "DELETE FROM {db}.devsql_members WHERE role = ?1 AND member = ?2")
            .BindInt(1, group.id)
            .BindInt(2, user.id)
            .Run();
    });
}

void RunCreatePrincipal(SessionCore& session, const ast::CreatePrincipalStatement& create) {
    switch (create.kind) {
    case ast::ObjectKind::Login:
        AddLogin(session, create.name, create.password, "");
        break;
    case ast::ObjectKind::User:
        if (create.login.empty()) {
            AddPrincipal(session, create.name, "", false);
        } else {
            AddUser(session, create.login, create.name);
        }
        break;
    case ast::ObjectKind::Role:
        AddRole(session, create.name);
        break;
    default: {
        Catalogue& catalogue = session.databases().Current();
        session.transactions().Write(catalogue.alias(), [&] {
            SqliteStatement known = catalogue.Prepare("SELECT 1 FROM {db}.devsql_schemas WHERE name = ?1");
            RaiseIf(known.BindText(1, create.name).Step(), 2714, {create.name}, 6);
            catalogue.Prepare("INSERT INTO {db}.devsql_schemas VALUES(?1, ?2)")
                .BindText(1, create.name)
                .BindText(2, create.login.empty() ? "dbo" : create.login)
                .Run();
        });
    }
    }
    session.results().Done(Command::None, std::nullopt);
}

void DropPrincipal(SessionCore& session, ast::ObjectKind kind, const std::string& name, bool if_exists) {
    if (kind == ast::ObjectKind::Login) {
        if (!FindLogin(session.connection(), name)) {
            if (if_exists) {
                return;
            }
            RaiseError(15151, {"drop", "login", name});
        }
        session.transactions().Write("main", [&] { RemoveLogin(session.connection(), name); });
        return;
    }
    Catalogue& catalogue = session.databases().Current();
    if (kind == ast::ObjectKind::Schema) {
        SqliteStatement used = catalogue.Prepare("SELECT name FROM {db}.devsql_objects WHERE schema = ?1");
        if (used.BindText(1, name).Step()) {
            RaiseError(3729, {"drop schema", name, used.Text(0)});
        }
        used.Reset();
        session.transactions().Write(catalogue.alias(), [&] {
            catalogue.Prepare("DELETE FROM {db}.devsql_schemas WHERE name = ?1 AND name <> 'dbo'")
                .BindText(1, name)
                .Run();
            RaiseIf(session.connection().Changes() == 0 && !if_exists, 15151, {"drop", "schema", name});
        });
        return;
    }
    const std::optional<Principal> principal = FindPrincipal(catalogue, name);
    const bool role = kind == ast::ObjectKind::Role;
    if (!principal || principal->role != role) {
        if (if_exists) {
            return;
        }
        RaiseError(15151, {"drop", role ? "role" : "user", name});
    }
    RaiseIf(principal->id <= 4 || (principal->id >= 16384 && principal->id < 16400), 15150,
            {role ? "role" : "user", name});
    session.transactions().Write(catalogue.alias(), [&] {
        SqliteStatement members = catalogue.Prepare("SELECT 1 FROM {db}.devsql_members WHERE role = ?1");
        RaiseIf(members.BindInt(1, principal->id).Step(), 15144);
        members.Reset();
        for (const std::string_view text : {"DELETE FROM {db}.devsql_members WHERE member = ?1",
                                            "DELETE FROM {db}.devsql_permissions WHERE grantee = ?1",
                                            "DELETE FROM {db}.devsql_users WHERE id = ?1"}) {
            catalogue.Prepare(text).BindInt(1, principal->id).Run();
        }
    });
}

void RunAlterRole(SessionCore& session, const ast::AlterRoleStatement& alter) {
    SetRoleMember(session, alter.role, alter.member, alter.add);
    session.results().Done(Command::None, std::nullopt);
}

void RunGrant(SessionCore& session, const ast::GrantStatement& grant) {
    Catalogue& catalogue = session.databases().Current();
    std::int64_t object = 0;
    if (!grant.object.empty()) {
        const ObjectPlace place = PlaceOf(session, grant.object);
        object = Required(catalogue.FindObject(place.schema, place.name), 15151,
                          {"find", "object", grant.object.text()})
                     .id;
    }
    for (const std::string& permission : grant.permissions) {
        RaiseIf(!ListHas(kPermissions, permission), 102, {permission});
    }
    session.transactions().Write(catalogue.alias(), [&] {
        for (const std::string& grantee : grant.grantees) {
            const Principal principal =
                Required(FindPrincipal(catalogue, grantee), 15151, {"find", "user", grantee});
            for (const std::string& permission : grant.permissions) {
                if (grant.action == ast::GrantAction::Revoke) {
                    catalogue
                        .Prepare("DELETE FROM {db}.devsql_permissions WHERE object = ?1 AND grantee = ?2 AND "
                                 "permission = ?3")
                        .BindInt(1, object)
                        .BindInt(2, principal.id)
                        .BindText(3, permission)
                        .Run();
                    continue;
                }
                catalogue.Prepare("INSERT OR REPLACE INTO {db}.devsql_permissions VALUES(?1, ?2, ?3, ?4)")
                    .BindInt(1, object)
                    .BindInt(2, principal.id)
                    .BindText(3, permission == "EXEC" ? "EXECUTE" : permission)
                    .BindText(4, grant.action == ast::GrantAction::Deny ? "DENY" : "GRANT")
                    .Run();
            }
        }
    });
    session.results().Done(Command::None, std::nullopt);
}

} // namespace devsql

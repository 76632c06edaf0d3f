// CREATE and ALTER DATABASE, users, roles, logins, rights and types.
#include <array>

#include "devserver/tsql/parse/parser_impl.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {

using namespace ast;

StatementPtr Parser::ParseCreateDatabase() {
    CreateDatabaseStatement create;
    create.name = TakeName();
    if (TakeWord("CONTAINMENT")) {
        ExpectSymbol("=");
        if (!TakeWord("NONE")) {
            Unsupported("CONTAINMENT = " + AsciiUpper(Peek().text));
        }
    }
    if (TakeWord("ON")) {
        TakeWord("PRIMARY");
        create.files = ParseFileSpecs();
    }
    if (TakeWords({"LOG", "ON"})) {
        create.logs = ParseFileSpecs();
    }
    if (TakeWord("COLLATE")) {
        TakeName();
    }
    if (TakeWord("FOR")) {
        if (TakeOneOf({"ATTACH", "ATTACH_REBUILD_LOG"}) < 0) {
            SyntaxError();
        }
        create.attach = true;
    }
    if (TakeWords({"WITH", "CATALOG_COLLATION"})) {
        ExpectSymbol("=");
        Take();
    }
    if (IsWord("WITH") || (IsWord("AS") && IsWord("SNAPSHOT", 1))) {
        Unsupported(Peek().text);
    }
    return Wrap(std::move(create));
}

std::vector<FileSpec> Parser::ParseFileSpecs() {
    std::vector<FileSpec> files;
    std::string group;
    do {
        if (TakeWord("FILEGROUP")) {
            group = TakeName();
            TakeWord("DEFAULT");
        }
        FileSpec file = ParseFileSpec();
        file.file_group = group;
        files.push_back(std::move(file));
    } while (TakeSymbol(","));
    return files;
}

FileSpec Parser::ParseFileSpec() {
    FileSpec file;
    ExpectSymbol("(");
    do {
        const int which = TakeOneOf({"NAME", "FILENAME", "SIZE", "MAXSIZE", "FILEGROWTH"});
        if (which < 0) {
            SyntaxError();
        }
        ExpectSymbol("=");
        switch (which) {
        case 0:
            file.name = TakeNameOrString();
            break;
        case 1:
            file.path = TakeString();
            break;
        case 2:
            file.size = ParseSize();
            break;
        case 3:
            file.max_size = ParseSize();
            break;
        default:
            file.growth = ParseSize();
            break;
        }
    } while (TakeSymbol(","));
    ExpectSymbol(")");
    return file;
}

/// "10", "10MB", "10 KB", "10%", "UNLIMITED"
std::string Parser::ParseSize() {
    if (TakeWord("UNLIMITED")) {
        return "UNLIMITED";
    }
    if (Peek().kind != TokenKind::Integer) {
        SyntaxError();
    }
    std::string size = Take().text;
    if (IsSymbol("%")) {
        Take();
        return size + "%";
    }
    for (const std::string_view unit : {"KB", "MB", "GB", "TB"}) {
        if (TakeWord(unit)) {
            return size + std::string(unit);
        }
    }
    return size + "MB";
}

StatementPtr Parser::ParseAlterDatabase() {
    AlterDatabaseStatement alter;
    alter.database = TakeWord("CURRENT") ? std::string() : TakeName();
    if (TakeWord("MODIFY")) {
        if (TakeWord("NAME")) {
            ExpectSymbol("=");
            alter.action = AlterDatabaseAction::ModifyName;
            alter.new_name = TakeNameOrString();
            return Wrap(std::move(alter));
        }
        if (!TakeWord("FILE")) {
            Unsupported("MODIFY " + Peek().text);
        }
        return ParseModifyFile(std::move(alter));
    }
    if (TakeWord("ADD")) {
        if (TakeWord("FILEGROUP")) {
            alter.action = AlterDatabaseAction::AddFileGroup;
            alter.name = TakeName();
            return Wrap(std::move(alter));
        }
        alter.log_file = TakeWord("LOG");
        ExpectWord("FILE");
        alter.action = AlterDatabaseAction::AddFile;
        alter.files = ParseFileSpecs();
        if (TakeWords({"TO", "FILEGROUP"})) {
            alter.name = TakeWord("DEFAULT") ? "PRIMARY" : TakeNameOrString();
        }
        return Wrap(std::move(alter));
    }
    if (TakeWord("COLLATE")) {
        alter.options.emplace_back("COLLATE", TakeName());
        return Wrap(std::move(alter));
    }
    if (!TakeWord("SET")) {
        Unsupported("ALTER DATABASE " + Peek().text);
    }
    ParseDatabaseOptions(alter);
    return Wrap(std::move(alter));
}

/// ALTER AUTHORIZATION ON DATABASE::name TO login
StatementPtr Parser::ParseAuthorization() {
    AlterDatabaseStatement alter;
    ExpectWord("ON");
    if (!IsWord("DATABASE") || !IsSymbol("::", 1)) {
        Unsupported("ALTER AUTHORIZATION ON " + AsciiUpper(Peek().text));
    }
    Take();
    Take();
    alter.action = AlterDatabaseAction::Owner;
    alter.database = TakeName();
    ExpectWord("TO");
    alter.new_name = TakeName();
    return Wrap(std::move(alter));
}

StatementPtr Parser::ParseModifyFile(AlterDatabaseStatement alter) {
    alter.action = AlterDatabaseAction::ModifyFile;
    FileSpec file;
    ExpectSymbol("(");
    do {
        const int which = TakeOneOf({"NAME", "NEWNAME", "SIZE", "MAXSIZE", "FILEGROWTH", "FILENAME"});
        if (which < 0) {
            SyntaxError();
        }
        if (which == 5) {
            Unsupported("MODIFY FILE FILENAME");
        }
        ExpectSymbol("=");
        switch (which) {
        case 0:
            alter.name = TakeNameOrString();
            break;
        case 1:
            alter.new_name = TakeNameOrString();
            break;
        case 2:
            file.size = ParseSize();
            break;
        case 3:
            file.max_size = ParseSize();
            break;
        default:
            file.growth = ParseSize();
            break;
        }
    } while (TakeSymbol(","));
    ExpectSymbol(")");
    alter.files.push_back(std::move(file));
    return Wrap(std::move(alter));
}

void Parser::ParseDatabaseOptions(AlterDatabaseStatement& alter) {
    alter.action = AlterDatabaseAction::Set;
    do {
        std::string option = AsciiUpper(Take().text);
        std::string value;
        if (option == "FILESTREAM" && TakeSymbol("(")) { // FILESTREAM (NON_TRANSACTED_ACCESS = OFF)
            ExpectWord("NON_TRANSACTED_ACCESS");
            ExpectSymbol("=");
            value = AsciiUpper(Take().text);
            ExpectSymbol(")");
            alter.options.emplace_back(std::move(option), std::move(value));
            continue;
        }
        TakeSymbol("=");
        if (IsWord("ON") || IsWord("OFF")) {
            value = AsciiUpper(Take().text);
            if (value == "ON" && IsSymbol("(")) {
                Unsupported(option);
            }
        } else if (Peek().kind == TokenKind::Integer) {
            value = Take().text;
            TakeOneOf({"SECONDS", "MINUTES"});
        } else if (option == "RECOVERY" || option == "CURSOR_DEFAULT" || option == "PAGE_VERIFY" ||
                   option == "PARAMETERIZATION" || option == "DELAYED_DURABILITY") {
            value = AsciiUpper(Take().text);
        }
        alter.options.emplace_back(std::move(option), std::move(value));
    } while (TakeSymbol(","));
    if (TakeWord("WITH")) {
        if (TakeWord("ROLLBACK")) {
            if (TakeWord("AFTER")) {
                TakeInteger();
                TakeWord("SECONDS");
            } else {
                ExpectWord("IMMEDIATE");
            }
            alter.rollback_immediate = true;
        } else {
            ExpectWord("NO_WAIT");
        }
    }
}

// ------------------------------------------------------------------ rights and principals

StatementPtr Parser::ParseGrant(GrantAction action) {
    GrantStatement grant{action, {}, {}, {}, false};
    TakeWords({"GRANT", "OPTION", "FOR"});
    do {
        std::string permission;
        while (Peek().kind == TokenKind::Word && !IsWord("ON") && !IsWord("TO") && !IsWord("FROM")) {
            permission += (permission.empty() ? "" : " ") + AsciiUpper(Take().text);
        }
        if (permission.empty()) {
            SyntaxError();
        }
        if (IsSymbol("(")) {
            Unsupported("column permission");
        }
        grant.permissions.push_back(std::move(permission));
    } while (TakeSymbol(","));
    if (TakeWord("ON")) {
        for (const std::string_view securable : {"OBJECT", "SCHEMA", "TYPE", "DATABASE"}) {
            if (IsWord(securable) && IsSymbol("::", 1)) {
                if (securable != "OBJECT") {
                    Unsupported(std::string(securable) + "::");
                }
                Take();
                Take();
            }
        }
        grant.object = TakeObjectName();
        if (IsSymbol("(")) {
            Unsupported("column permission");
        }
    }
    if (TakeOneOf({"TO", "FROM"}) < 0) {
        SyntaxError();
    }
    do {
        grant.grantees.push_back(TakeWord("PUBLIC") ? "public" : TakeName());
    } while (TakeSymbol(","));
    grant.grant_option = TakeWords({"WITH", "GRANT", "OPTION"});
    if (TakeWord("AS")) { // The grantor is skipped: rights are kept, not enforced.
        TakeName();
    }
    TakeWord("CASCADE");
    return Wrap(std::move(grant));
}

StatementPtr Parser::ParseCreatePrincipal(ObjectKind kind) {
    CreatePrincipalStatement create{kind, {}, {}, {}};
    if (kind == ObjectKind::Schema) {
        module_allowed_ = false;
        if (TakeWord("AUTHORIZATION")) {
            create.name = create.login = TakeName();
            return Wrap(std::move(create));
        }
    }
    create.name = TakeName();
    if (kind == ObjectKind::Login) {
        if (!TakeWord("WITH")) {
            Unsupported("CREATE LOGIN " + Peek().text);
        }
        do {
            const std::string option = AsciiUpper(Take().text);
            ExpectSymbol("=");
            const std::string value = Take().text;
            if (option == "PASSWORD") {
                create.password = value;
            }
        } while (TakeSymbol(","));
    } else if (kind == ObjectKind::User) {
        if (TakeOneOf({"FOR", "FROM"}) >= 0) {
            ExpectWord("LOGIN");
            create.login = TakeName();
        } else if (TakeWords({"WITHOUT", "LOGIN"})) {
            create.login.clear();
        } else {
            create.login = create.name;
        }
        if (TakeWords({"WITH", "DEFAULT_SCHEMA"})) {
            ExpectSymbol("=");
            TakeName();
        }
    } else if (TakeWord("AUTHORIZATION")) {
        create.login = TakeName();
    }
    return Wrap(std::move(create));
}

StatementPtr Parser::ParseCreateType() {
    CreateTypeStatement create;
    create.name = TakeObjectName();
    if (!TakeWord("FROM")) {
        Unsupported("CREATE TYPE " + Peek().text);
    }
    create.base = ParseType();
    if (TakeWords({"NOT", "NULL"})) {
        create.nullable = false;
    } else if (TakeWord("NULL")) {
        create.nullable = true;
    }
    return Wrap(std::move(create));
}

StatementPtr Parser::ParseAlterRole() {
    AlterRoleStatement alter;
    alter.role = TakeName();
    const int action = TakeOneOf({"ADD", "DROP"});
    if (action < 0) {
        SyntaxError();
    }
    alter.add = action == 0;
    ExpectWord("MEMBER");
    alter.member = TakeName();
    return Wrap(std::move(alter));
}

} // namespace devsql

// CREATE and ALTER DATABASE, users, roles, logins, rights and types.

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
        ExpectOneOf({"ATTACH", "ATTACH_REBUILD_LOG"});
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
    CommaSeparated([&] {
        if (TakeWord("FILEGROUP")) {
            group = TakeName();
            TakeWord("DEFAULT");
        }
        FileSpec file = ParseFileSpec();
        UnsupportedIf(!file.new_name.empty(), "NEWNAME");
        file.file_group = group;
        files.push_back(std::move(file));
    });
    return files;
}

FileSpec Parser::ParseFileSpec() {
    constexpr std::string FileSpec::*kParts[] = {&FileSpec::name, &FileSpec::new_name, &FileSpec::path,
                                                 &FileSpec::size, &FileSpec::max_size, &FileSpec::growth};
    FileSpec file;
    ListInParentheses([&] {
        const int which = ExpectOneOf({"NAME", "NEWNAME", "FILENAME", "SIZE", "MAXSIZE", "FILEGROWTH"});
        ExpectSymbol("=");
        file.*kParts[which] = which < 2 ? TakeNameOrString() : which == 2 ? TakeString() : ParseSize();
    });
    return file;
}

/// "10", "10MB", "10 KB", "10%", "UNLIMITED"
std::string Parser::ParseSize() {
    if (TakeWord("UNLIMITED")) {
        return "UNLIMITED";
    }
    SyntaxErrorIf(Peek().kind != TokenKind::Integer);
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
    if (TakeWords({"MODIFY", "NAME"})) {
        ExpectSymbol("=");
        alter.action = AlterDatabaseAction::ModifyName;
        alter.new_name = TakeNameOrString();
        return Wrap(std::move(alter));
    }
    if (TakeWords({"MODIFY", "FILE"})) {
        alter.action = AlterDatabaseAction::ModifyFile;
        alter.file = ParseFileSpec();
        UnsupportedIf(!alter.file.path.empty(), "MODIFY FILE FILENAME");
        return Wrap(std::move(alter));
    }
    if (IsOneOf({"MODIFY", "ADD"})) {
        Unsupported(AsciiUpper(Peek().text) + " " + AsciiUpper(Peek(1).text));
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

void Parser::ParseDatabaseOptions(AlterDatabaseStatement& alter) {
    alter.action = AlterDatabaseAction::Set;
    CommaSeparated([&] {
        std::string option = AsciiUpper(Take().text);
        std::string value;
        if (option == "FILESTREAM" && TakeSymbol("(")) { // FILESTREAM (NON_TRANSACTED_ACCESS = OFF)
            ExpectWord("NON_TRANSACTED_ACCESS");
            ExpectSymbol("=");
            value = AsciiUpper(Take().text);
            ExpectSymbol(")");
            alter.options.emplace_back(std::move(option), std::move(value));
            return;
        }
        TakeSymbol("=");
        if (IsOneOf({"ON", "OFF"})) {
            value = AsciiUpper(Take().text);
            if (value == "ON" && IsSymbol("(")) {
                Unsupported(option);
            }
        } else if (Peek().kind == TokenKind::Integer) {
            value = Take().text;
            TakeOneOf({"SECONDS", "MINUTES"});
        } else if (ListHas("RECOVERY,CURSOR_DEFAULT,PAGE_VERIFY,PARAMETERIZATION,DELAYED_DURABILITY",
                           option)) {
            value = AsciiUpper(Take().text);
        }
        alter.options.emplace_back(std::move(option), std::move(value));
    });
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
    GrantStatement grant{action, {}, {}, {}};
    TakeWords({"GRANT", "OPTION", "FOR"});
    CommaSeparated([&] {
        std::string permission;
        while (Peek().kind == TokenKind::Word && !IsWord("ON") && !IsWord("TO") && !IsWord("FROM")) {
            permission += (permission.empty() ? "" : " ") + AsciiUpper(Take().text);
        }
        SyntaxErrorIf(permission.empty());
        UnsupportedIf(IsSymbol("("), "column permission");
        grant.permissions.push_back(std::move(permission));
    });
    if (TakeWord("ON")) {
        if (IsOneOf({"OBJECT", "SCHEMA", "TYPE", "DATABASE"}) && IsSymbol("::", 1)) {
            if (!IsWord("OBJECT")) {
                Unsupported(AsciiUpper(Peek().text) + "::");
            }
            next_ += 2;
        }
        grant.object = TakeObjectName();
        UnsupportedIf(IsSymbol("("), "column permission");
    }
    ExpectOneOf({"TO", "FROM"});
    CommaSeparated([&] { grant.grantees.push_back(TakeWord("PUBLIC") ? "public" : TakeName()); });
    TakeWords({"WITH", "GRANT", "OPTION"});
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
        CommaSeparated([&] {
            const std::string option = AsciiUpper(Take().text);
            ExpectSymbol("=");
            const std::string value = Take().text;
            if (option == "PASSWORD") {
                create.password = value;
            }
        });
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
    alter.add = ExpectOneOf({"ADD", "DROP"}) == 0;
    ExpectWord("MEMBER");
    alter.member = TakeName();
    return Wrap(std::move(alter));
}

} // namespace devsql

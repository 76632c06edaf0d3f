// CREATE, ALTER and DROP of the objects in a database.

#include "devserver/tsql/parse/parser_impl.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {

using namespace ast;

namespace {
struct KindWord {
    std::string_view word;
    ObjectKind kind;
};
constexpr KindWord kKinds[] = {{"TABLE", ObjectKind::Table},         {"VIEW", ObjectKind::View},
                               {"PROCEDURE", ObjectKind::Procedure}, {"PROC", ObjectKind::Procedure},
                               {"FUNCTION", ObjectKind::Function},   {"TRIGGER", ObjectKind::Trigger},
                               {"DATABASE", ObjectKind::Database},   {"USER", ObjectKind::User},
                               {"ROLE", ObjectKind::Role},           {"LOGIN", ObjectKind::Login},
                               {"SCHEMA", ObjectKind::Schema},       {"TYPE", ObjectKind::Type},
                               {"DEFAULT", ObjectKind::Default},     {"RULE", ObjectKind::Rule}};
} // namespace

/// The word for a kind of object; raises 343 for an unknown one.
ObjectKind Parser::TakeKind() {
    for (const KindWord& entry : kKinds) {
        if (TakeWord(entry.word)) {
            return entry.kind;
        }
    }
    if (Peek().kind == TokenKind::Word) {
        Fail(343, {Peek().text});
    }
    SyntaxError();
}

StatementPtr Parser::ParseCreate() {
    const bool or_alter = TakeWords({"OR", "ALTER"});
    if (IsOneOf({"UNIQUE", "CLUSTERED", "NONCLUSTERED", "INDEX"})) {
        return ParseCreateIndex();
    }
    if (TakeWord("STATISTICS")) {
        return ParseCreateStatistics();
    }
    const std::string word = AsciiUpper(Peek().text);
    switch (const ObjectKind kind = TakeKind()) {
    case ObjectKind::Table:
        return ParseCreateTable();
    case ObjectKind::View:
    case ObjectKind::Procedure:
    case ObjectKind::Function:
    case ObjectKind::Trigger:
        return ParseModule(kind, false, or_alter);
    case ObjectKind::Database:
        return ParseCreateDatabase();
    case ObjectKind::Type:
        return ParseCreateType();
    case ObjectKind::Default:
    case ObjectKind::Rule:
        UnsupportedStatement("CREATE " + word);
    default:
        return ParseCreatePrincipal(kind);
    }
}

StatementPtr Parser::ParseAlter() {
    static constexpr StatementEntry kEntries[] = {
        {"TABLE", [](Parser& p) { return p.ParseAlterTable(); }},
        {"DATABASE", [](Parser& p) { return p.ParseAlterDatabase(); }},
        {"AUTHORIZATION", [](Parser& p) { return p.ParseAuthorization(); }},
        {"PROCEDURE", [](Parser& p) { return p.ParseModule(ObjectKind::Procedure, true, false); }},
        {"PROC", [](Parser& p) { return p.ParseModule(ObjectKind::Procedure, true, false); }},
        {"VIEW", [](Parser& p) { return p.ParseModule(ObjectKind::View, true, false); }},
        {"FUNCTION", [](Parser& p) { return p.ParseModule(ObjectKind::Function, true, false); }},
        {"TRIGGER", [](Parser& p) { return p.ParseModule(ObjectKind::Trigger, true, false); }},
        {"INDEX", [](Parser& p) { return p.ParseAlterIndex(); }},
        {"ROLE", [](Parser& p) { return p.ParseAlterRole(); }},
    };
    for (const StatementEntry& entry : kEntries) {
        if (TakeWord(entry.word)) {
            return entry.parse(*this);
        }
    }
    if (Peek().kind == TokenKind::Word) {
        UnsupportedStatement("ALTER " + AsciiUpper(Peek().text));
    }
    SyntaxError();
}

StatementPtr Parser::ParseDrop() {
    if (TakeWord("INDEX")) {
        return ParseDropIndex();
    }
    if (TakeWord("STATISTICS")) {
        CommaSeparated([&] { TakeObjectName(); });
        return Wrap(MaintenanceStatement{"DROP STATISTICS"});
    }
    DropStatement drop{TakeKind(), {}, TakeWords({"IF", "EXISTS"})};
    CommaSeparated([&] { drop.names.push_back(TakeObjectName()); });
    return Wrap(std::move(drop));
}

// ------------------------------------------------------------------ tables

StatementPtr Parser::ParseCreateTable() {
    CreateTableStatement create;
    create.table = TakeObjectName();
    create.definition = ParseTableDefinition();
    while (IsOneOf({"ON", "TEXTIMAGE_ON"})) {
        Take();
        SkipFileGroup();
    }
    if (TakeWord("WITH")) {
        --next_;
        SkipIndexOptions();
    }
    return Wrap(std::move(create));
}

void Parser::SkipFileGroup() {
    if (!TakeWord("DEFAULT")) {
        TakeNameOrString();
    }
    UnsupportedIf(IsSymbol("("), "partition scheme");
}

TableDefinition Parser::ParseTableDefinition() {
    TableDefinition definition;
    ListInParentheses([&] {
        if (IsSymbol(")")) {
            return; // SQL Server accepts a comma after the last column too.
        }
        if (IsOneOf({"CONSTRAINT", "PRIMARY", "UNIQUE", "FOREIGN", "CHECK"})) {
            definition.constraints.push_back(ParseConstraint(false));
        } else {
            definition.columns.push_back(ParseColumn());
        }
    });
    return definition;
}

std::string Parser::ParseExpressionText() {
    const std::size_t begin = Peek().begin;
    ParseExpr();
    std::string text = Text(begin, PreviousEnd());
    return text.starts_with("(") ? text : "(" + text + ")";
}

ColumnDefinition Parser::ParseColumn() {
    ColumnDefinition column;
    column.name = TakeName();
    if (TakeWord("AS")) {
        column.computed = ParseExpressionText();
        TakeWord("PERSISTED");
        return column;
    }
    if (AsciiEqual(column.name, "timestamp") &&
        (IsSymbol(",") || IsSymbol(")") || IsOneOf({"NOT", "NULL"}))) {
        column.type.name.parts = {"timestamp"}; // timestamp may be written without a column's name.
    } else {
        column.type = ParseType();
    }
    while (ParseColumnOption(column)) {
    }
    return column;
}

bool Parser::ParseColumnOption(ColumnDefinition& column) {
    if (TakeWords({"NOT", "NULL"})) {
        column.nullable = false;
    } else if (TakeWord("NULL")) {
        column.nullable = true;
    } else if (TakeWord("IDENTITY")) {
        column.identity = Identity{};
        if (TakeSymbol("(")) {
            column.identity->seed = TakeInteger();
            ExpectSymbol(",");
            column.identity->increment = TakeInteger();
            ExpectSymbol(")");
        }
    } else if (TakeWords({"NOT", "FOR", "REPLICATION"})) {
        // No replication agent writes to this server, so the clause has no effect.
    } else if (TakeWord("ROWGUIDCOL")) {
        column.row_guid = true;
    } else if (TakeWord("COLLATE")) {
        column.collation = TakeName();
    } else if (IsOneOf({"CONSTRAINT", "PRIMARY", "UNIQUE", "REFERENCES", "FOREIGN", "CHECK", "DEFAULT"})) {
        column.constraints.push_back(ParseConstraint(true));
    } else {
        return false;
    }
    return true;
}

Constraint Parser::ParseConstraint(bool of_column) {
    Constraint constraint;
    if (TakeWord("CONSTRAINT")) {
        constraint.name = TakeName();
    }
    if (IsOneOf({"PRIMARY", "UNIQUE"})) {
        ParseKeyConstraint(constraint, of_column);
    } else if (IsOneOf({"FOREIGN", "REFERENCES"})) {
        constraint.kind = ConstraintKind::ForeignKey;
        if (TakeWords({"FOREIGN", "KEY"}) && IsSymbol("(")) {
            constraint.columns = ParseIndexColumns();
        }
        ParseReferences(constraint);
    } else if (TakeWord("CHECK")) {
        constraint.kind = ConstraintKind::Check;
        TakeWords({"NOT", "FOR", "REPLICATION"});
        ExpectSymbol("(");
        --next_;
        constraint.text = ParseExpressionText();
    } else if (TakeWord("DEFAULT")) {
        constraint.kind = ConstraintKind::Default;
        const std::size_t begin = Peek().begin;
        ParseUnary();
        const std::string text = Text(begin, PreviousEnd());
        constraint.text = text.starts_with("(") ? text : "(" + text + ")";
        if (TakeWord("FOR")) {
            constraint.columns = {{TakeName(), false}};
        }
        constraint.with_values = TakeWords({"WITH", "VALUES"});
    } else {
        SyntaxError();
    }
    return constraint;
}

void Parser::ParseKeyConstraint(Constraint& constraint, bool of_column) {
    if (TakeWord("PRIMARY")) {
        ExpectWord("KEY");
        constraint.kind = ConstraintKind::PrimaryKey;
        constraint.clustered = true;
    } else {
        ExpectWord("UNIQUE");
        constraint.kind = ConstraintKind::Unique;
    }
    const int clustering = TakeOneOf({"CLUSTERED", "NONCLUSTERED"});
    if (clustering >= 0) {
        constraint.clustered = clustering == 0;
        constraint.clustering_given = true;
    }
    if (IsSymbol("(")) {
        constraint.columns = ParseIndexColumns();
    } else if (!of_column) {
        SyntaxError();
    }
    SkipIndexOptions();
    if (TakeWord("ON")) {
        SkipFileGroup();
    }
}

void Parser::ParseReferences(Constraint& constraint) {
    ExpectWord("REFERENCES");
    constraint.references = TakeObjectName();
    if (IsSymbol("(")) {
        constraint.referenced_columns = ParseNameList();
    }
    while (true) {
        if (TakeWords({"NOT", "FOR", "REPLICATION"})) {
            continue;
        }
        if (!IsWord("ON") || !(IsWord("DELETE", 1) || IsWord("UPDATE", 1))) {
            return;
        }
        Take();
        const bool on_delete = AsciiEqual(Take().text, "DELETE");
        ReferentialAction action = ReferentialAction::NoAction;
        if (TakeWord("CASCADE")) {
            action = ReferentialAction::Cascade;
        } else if (TakeWords({"SET", "NULL"})) {
            action = ReferentialAction::SetNull;
        } else if (TakeWords({"SET", "DEFAULT"})) {
            action = ReferentialAction::SetDefault;
        } else if (!TakeWords({"NO", "ACTION"})) {
            SyntaxError();
        }
        (on_delete ? constraint.on_delete : constraint.on_update) = action;
    }
}

std::vector<IndexColumn> Parser::ParseIndexColumns() {
    std::vector<IndexColumn> columns;
    ListInParentheses([&] {
        IndexColumn column{TakeName(), false};
        column.descending = TakeOneOf({"ASC", "DESC"}) == 1;
        columns.push_back(std::move(column));
    });
    return columns;
}

std::vector<std::string> Parser::ParseNameList() {
    std::vector<std::string> names;
    ListInParentheses([&] { names.push_back(TakeName()); });
    return names;
}

/// WITH FILLFACTOR = 90 and WITH (PAD_INDEX = OFF, …): SQLite itself decides how pages are filled.
void Parser::SkipIndexOptions() {
    if (!IsWord("WITH") || IsWord("VALUES", 1)) {
        return;
    }
    Take();
    const bool parenthesis = TakeSymbol("(");
    constexpr std::string_view kOptions =
        "FILLFACTOR,PAD_INDEX,STATISTICS_NORECOMPUTE,IGNORE_DUP_KEY,ALLOW_ROW_LOCKS,ALLOW_PAGE_LOCKS,"
        "SORT_IN_TEMPDB,ONLINE,MAXDOP,DATA_COMPRESSION,DROP_EXISTING,OPTIMIZE_FOR_SEQUENTIAL_KEY,"
        "XML_COMPRESSION";
    CommaSeparated([&] {
        SyntaxErrorIf(Peek().kind != TokenKind::Word || !ListHas(kOptions, Peek().text));
        const bool ignore_duplicates = AsciiEqual(Take().text, "IGNORE_DUP_KEY");
        bool on = true;
        if (TakeSymbol("=")) {
            on = !AsciiEqual(Take().text, "OFF");
        }
        UnsupportedIf(ignore_duplicates && on, "IGNORE_DUP_KEY");
    });
    if (parenthesis) {
        ExpectSymbol(")");
    }
}

StatementPtr Parser::ParseAlterTable() {
    AlterTableStatement alter;
    alter.table = TakeObjectName();
    bool with_check = true;
    if (TakeWord("WITH")) {
        with_check = TakeOneOf({"NOCHECK", "CHECK"}) == 1;
    }
    if (TakeWord("ADD")) {
        ParseAlterTableAdd(alter, with_check);
    } else if (TakeWord("DROP")) {
        ParseAlterTableDrop(alter);
    } else if (TakeWords({"ALTER", "COLUMN"})) {
        alter.action = AlterTableAction::AlterColumn;
        alter.definition.columns.push_back(ParseColumn());
    } else if (IsOneOf({"CHECK", "NOCHECK"})) {
        alter.action = AsciiEqual(Take().text, "CHECK") ? AlterTableAction::EnableConstraint
                                                        : AlterTableAction::DisableConstraint;
        ExpectWord("CONSTRAINT");
        CommaSeparated([&] { alter.names.push_back(TakeWord("ALL") ? "ALL" : TakeName()); });
    } else if (IsOneOf({"ENABLE", "DISABLE"}) && IsWord("TRIGGER", 1)) {
        SwitchTriggersStatement triggers{std::move(alter.table), {}, AsciiEqual(Take().text, "ENABLE")};
        Take();
        triggers.names = ParseTriggerNames();
        return Wrap(std::move(triggers));
    } else {
        SyntaxError();
    }
    return Wrap(std::move(alter));
}

void Parser::ParseAlterTableAdd(AlterTableStatement& alter, bool with_check) {
    alter.action = AlterTableAction::Add;
    TakeWord("COLUMN");
    CommaSeparated([&] {
        if (IsOneOf({"CONSTRAINT", "PRIMARY", "UNIQUE", "FOREIGN", "CHECK", "DEFAULT"})) {
            Constraint constraint = ParseConstraint(false);
            constraint.with_check = with_check;
            alter.definition.constraints.push_back(std::move(constraint));
        } else {
            alter.definition.columns.push_back(ParseColumn());
        }
    });
}

void Parser::ParseAlterTableDrop(AlterTableStatement& alter) {
    if (TakeWord("COLUMN")) {
        alter.action = AlterTableAction::DropColumn;
    } else {
        TakeWord("CONSTRAINT");
        alter.action = AlterTableAction::DropConstraint;
    }
    CommaSeparated([&] { alter.names.push_back(TakeName()); });
}

// ------------------------------------------------------------------ indexes

StatementPtr Parser::ParseCreateIndex() {
    CreateIndexStatement create;
    create.unique = TakeWord("UNIQUE");
    create.clustered = TakeOneOf({"CLUSTERED", "NONCLUSTERED"}) == 0;
    ExpectWord("INDEX");
    create.name = TakeName();
    ExpectWord("ON");
    create.table = TakeObjectName();
    create.columns = ParseIndexColumns();
    if (TakeWord("INCLUDE")) {
        create.included = ParseNameList();
    }
    UnsupportedIf(IsWord("WHERE"), "filtered index");
    for (std::size_t ahead = 0; IsWord("WITH") && ahead < 60; ++ahead) {
        create.drop_existing = create.drop_existing || IsWord("DROP_EXISTING", ahead);
    }
    SkipIndexOptions();
    if (TakeWord("ON")) {
        SkipFileGroup();
    }
    return Wrap(std::move(create));
}

StatementPtr Parser::ParseDropIndex() {
    DropIndexStatement drop;
    drop.if_exists = TakeWords({"IF", "EXISTS"});
    CommaSeparated([&] {
        Name name = TakeObjectName();
        if (TakeWord("ON")) {
            drop.indexes.emplace_back(TakeObjectName(), name.last());
        } else { // "table.index"
            const std::string index = name.last();
            name.parts.pop_back();
            SyntaxErrorIf(name.empty());
            drop.indexes.emplace_back(std::move(name), index);
        }
    });
    return Wrap(std::move(drop));
}

} // namespace devsql

// The tables of publications, articles and subscriptions in master's file. See publications.h.
#include "devserver/storage/publications.h"

namespace devsql {
namespace {

constexpr const char* kTables = R"(
CREATE TABLE IF NOT EXISTS devsql_publications(id INTEGER PRIMARY KEY, database INTEGER, name TEXT COLLATE TSQL,
    description TEXT, snapshot INTEGER, active INTEGER, snapshot_job TEXT, UNIQUE(database, name));
CREATE TABLE IF NOT EXISTS devsql_articles(id INTEGER PRIMARY KEY, publication INTEGER, name TEXT COLLATE TSQL,
    object INTEGER, destination TEXT, UNIQUE(publication, name));
CREATE TABLE IF NOT EXISTS devsql_subscriptions(article INTEGER, server TEXT COLLATE TSQL,
    database TEXT COLLATE TSQL, push INTEGER, job TEXT, PRIMARY KEY(article, server, database));
)";

constexpr const char* kPublicationColumns =
    "SELECT id, database, name, description, snapshot, active, snapshot_job FROM devsql_publications ";

Publication ReadPublication(const SqliteStatement& row) {
    return {
        row.Int(0), static_cast<int>(row.Int(1)), row.Text(2), row.Text(3), row.Int(4) != 0, row.Int(5) != 0,
        row.Text(6)};
}

} // namespace

void CreatePublicationList(SqliteConnection& connection) {
    connection.Execute(kTables);
}

std::optional<Publication> FindPublication(SqliteConnection& connection, int database,
                                           std::string_view name) {
    SqliteStatement row =
        connection.Prepare(std::string(kPublicationColumns) + "WHERE database = ?1 AND name = ?2");
    row.BindInt(1, database).BindText(2, name);
    return row.Step() ? std::optional(ReadPublication(row)) : std::nullopt;
}

std::vector<Publication> ListPublications(SqliteConnection& connection, int database) {
    SqliteStatement row =
        connection.Prepare(std::string(kPublicationColumns) + "WHERE database = ?1 ORDER BY id");
    row.BindInt(1, database);
    std::vector<Publication> list;
    while (row.Step()) {
        list.push_back(ReadPublication(row));
    }
    return list;
}

void AddPublication(SqliteConnection& connection, const Publication& publication) {
    connection
        .Prepare("INSERT INTO devsql_publications(database, name, description, snapshot, active) "
                 "VALUES(?1, ?2, ?3, ?4, ?5)")
        .BindInt(1, publication.database)
        .BindText(2, publication.name)
        .BindText(3, publication.description)
        .BindInt(4, publication.snapshot ? 1 : 0)
        .BindInt(5, publication.active ? 1 : 0)
        .Run();
}

void SetSnapshotJob(SqliteConnection& connection, std::int64_t publication, std::string_view job) {
    connection.Prepare("UPDATE devsql_publications SET snapshot_job = ?2 WHERE id = ?1")
        .BindInt(1, publication)
        .BindText(2, job)
        .Run();
}

void RemovePublication(SqliteConnection& connection, std::int64_t id) {
    for (const Article& article : ListArticles(connection, id)) {
        RemoveArticle(connection, article.id);
    }
    connection.Prepare("DELETE FROM devsql_publications WHERE id = ?1").BindInt(1, id).Run();
}

std::vector<Article> ListArticles(SqliteConnection& connection, std::int64_t publication) {
    SqliteStatement row =
        connection.Prepare("SELECT id, publication, name, object, destination FROM devsql_articles "
                           "WHERE publication = ?1 ORDER BY id");
    row.BindInt(1, publication);
    std::vector<Article> list;
    while (row.Step()) {
        list.push_back({row.Int(0), row.Int(1), row.Text(2), row.Int(3), row.Text(4)});
    }
    return list;
}

std::int64_t AddArticle(SqliteConnection& connection, const Article& article) {
    connection
        .Prepare("INSERT INTO devsql_articles(publication, name, object, destination) VALUES(?1, ?2, ?3, ?4)")
        .BindInt(1, article.publication)
        .BindText(2, article.name)
        .BindInt(3, article.object)
        .BindText(4, article.destination)
        .Run();
    return connection.LastRowId();
}

void RemoveArticle(SqliteConnection& connection, std::int64_t id) {
    connection.Prepare("DELETE FROM devsql_subscriptions WHERE article = ?1").BindInt(1, id).Run();
    connection.Prepare("DELETE FROM devsql_articles WHERE id = ?1").BindInt(1, id).Run();
}

std::vector<Subscription> ListSubscriptions(SqliteConnection& connection, std::int64_t article) {
    SqliteStatement row =
        connection.Prepare("SELECT article, server, database, push, job FROM devsql_subscriptions "
                           "WHERE article = ?1 ORDER BY server, database");
    row.BindInt(1, article);
    std::vector<Subscription> list;
    while (row.Step()) {
        list.push_back({row.Int(0), row.Text(1), row.Text(2), row.Int(3) != 0, row.Text(4)});
    }
    return list;
}

void AddSubscription(SqliteConnection& connection, const Subscription& subscription) {
    connection.Prepare("INSERT OR REPLACE INTO devsql_subscriptions VALUES(?1, ?2, ?3, ?4, ?5)")
        .BindInt(1, subscription.article)
        .BindText(2, subscription.server)
        .BindText(3, subscription.database)
        .BindInt(4, subscription.push ? 1 : 0)
        .BindText(5, subscription.job)
        .Run();
}

void RemoveSubscription(SqliteConnection& connection, const Subscription& subscription) {
    connection
        .Prepare("DELETE FROM devsql_subscriptions WHERE article = ?1 AND server = ?2 AND database = ?3")
        .BindInt(1, subscription.article)
        .BindText(2, subscription.server)
        .BindText(3, subscription.database)
        .Run();
}

bool UsesJob(SqliteConnection& connection, std::string_view job) {
    SqliteStatement row = connection.Prepare("SELECT 1 FROM devsql_subscriptions WHERE job = ?1");
    row.BindText(1, job);
    return row.Step();
}

} // namespace devsql

// The publications of each database and their subscribers: tables of master's file. The procedures and views
// of replication read them; no row is replicated.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "devserver/storage/sqlite.h"

namespace devsql {

struct Publication {
    std::int64_t id = 0;
    int database = 0;
    std::string name;
    std::string description;
    bool snapshot = false; ///< of the frequency "snapshot", else "continuous"
    bool active = false;
    std::string snapshot_job; ///< of msdb; empty for none
};

struct Article {
    std::int64_t id = 0;
    std::int64_t publication = 0;
    std::string name;
    std::int64_t object = 0; ///< of the table in its database
    std::string destination; ///< the table's name at the subscriber
};

struct Subscription {
    std::int64_t article = 0;
    std::string server;
    std::string database; ///< at the subscriber
    bool push = true;
    std::string job; ///< of msdb; empty for a pulled one
};

/// Makes the tables in master's file if they do not exist.
void CreatePublicationList(SqliteConnection& connection);

std::optional<Publication> FindPublication(SqliteConnection& connection, int database, std::string_view name);
std::vector<Publication> ListPublications(SqliteConnection& connection, int database);
void AddPublication(SqliteConnection& connection, const Publication& publication);
void SetSnapshotJob(SqliteConnection& connection, std::int64_t publication, std::string_view job);
/// With its articles and their subscriptions.
void RemovePublication(SqliteConnection& connection, std::int64_t id);

std::vector<Article> ListArticles(SqliteConnection& connection, std::int64_t publication);
/// Returns the id.
std::int64_t AddArticle(SqliteConnection& connection, const Article& article);
/// With its subscriptions.
void RemoveArticle(SqliteConnection& connection, std::int64_t id);

std::vector<Subscription> ListSubscriptions(SqliteConnection& connection, std::int64_t article);
void AddSubscription(SqliteConnection& connection, const Subscription& subscription);
void RemoveSubscription(SqliteConnection& connection, const Subscription& subscription);
/// True if any database has a subscription of that server.
bool HasSubscriptions(SqliteConnection& connection, std::string_view server);
/// True if a subscription has that job.
bool UsesJob(SqliteConnection& connection, std::string_view job);

} // namespace devsql

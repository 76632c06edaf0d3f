// The publications of each database and their subscriptions, in tables of master's file. Only the procedures
// and views of replication use them; no data is replicated.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "devserver/storage/sqlite.h"

namespace devsql {

struct Publication {
    std::int64_t id = 0;
    int database = 0; ///< the id of the published database
    std::string name;
    std::string description;
    bool snapshot = false;    ///< the frequency is "snapshot", otherwise "continuous"
    bool active = false;      ///< its status is "active"
    std::string snapshot_job; ///< the name of the job in msdb; empty if there is no job
};

/// A published table or procedure.
struct Article {
    std::int64_t id = 0;
    std::int64_t publication = 0; ///< the publication's id
    std::string name;
    std::int64_t object = 0; ///< the id of the published table or procedure in its database
    std::string destination; ///< the object's name at the subscriber
};

/// The subscription of one subscriber's database to one article.
struct Subscription {
    std::int64_t article = 0; ///< the article's id
    std::string server;       ///< the subscriber
    std::string database;     ///< the database at the subscriber
    bool push = true;         ///< otherwise a pull subscription
    std::string job;          ///< the name of the job in msdb; empty for a pull subscription
};

/// Makes the tables in master's file if they do not exist.
void CreatePublicationList(SqliteConnection& connection);

std::optional<Publication> FindPublication(SqliteConnection& connection, int database, std::string_view name);
std::vector<Publication> ListPublications(SqliteConnection& connection, int database);
void AddPublication(SqliteConnection& connection, const Publication& publication);
void SetSnapshotJob(SqliteConnection& connection, std::int64_t publication, std::string_view job);
/// Removes the publication, its articles and their subscriptions.
void RemovePublication(SqliteConnection& connection, std::int64_t id);

std::vector<Article> ListArticles(SqliteConnection& connection, std::int64_t publication);
/// Returns the id that the article gets.
std::int64_t AddArticle(SqliteConnection& connection, const Article& article);
/// Removes the article and its subscriptions.
void RemoveArticle(SqliteConnection& connection, std::int64_t id);

std::vector<Subscription> ListSubscriptions(SqliteConnection& connection, std::int64_t article);
void AddSubscription(SqliteConnection& connection, const Subscription& subscription);
void RemoveSubscription(SqliteConnection& connection, const Subscription& subscription);
/// True if any subscription has the job of that name.
bool UsesJob(SqliteConnection& connection, std::string_view job);

} // namespace devsql

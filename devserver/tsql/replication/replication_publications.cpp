// Publications, articles and subscriptions of the current database.
#include <algorithm>
#include <set>

#include "devserver/storage/databases.h"
#include "devserver/storage/linked_servers.h"
#include "devserver/storage/publications.h"
#include "devserver/tsql/replication/replication_procedures.h"
#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/required.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/server.h"

namespace devsql {
namespace {

constexpr std::string_view kAll = "all";

SqliteConnection& Connection(SystemCall& call) {
    return call.session().connection();
}

bool IsAll(const std::string& text) {
    return AsciiEqual(TrimTrailingBlanks(text), kAll);
}

/// The current database. Raises 14013 where it is not published.
DatabaseInfo RequirePublished(SystemCall& call) {
    DatabaseInfo info =
        Required(FindDatabase(Connection(call), call.session().databases().CurrentName()), 14013);
    RaiseIf(!info.Option("PUBLISHED"), 14013);
    return info;
}

/// The publication that @publication names. Raises 14013 if the current database is not published, 20026 for
/// an unknown name.
Publication RequirePublication(SystemCall& call) {
    const std::string name = call.Text("@publication");
    return Required(FindPublication(Connection(call), RequirePublished(call).id, name), 20026, {name});
}

/// The article of that name, or all articles for "all". Raises 20027.
std::vector<Article> RequireArticles(SystemCall& call, const Publication& publication) {
    const std::string name = call.Text("@article");
    std::vector<Article> articles = ListArticles(Connection(call), publication.id);
    if (!IsAll(name)) {
        std::erase_if(articles, [&](const Article& article) { return Folded(article.name) != Folded(name); });
        RaiseIf(articles.empty(), 20027, {name});
    }
    return articles;
}

/// "SERVER-Batch-batch_a": the beginning of an agent's name.
std::string AgentName(SystemCall& call, const std::string& database, const std::string& rest = "") {
    return call.session().server().name() + "-" + database + (rest.empty() ? "" : "-" + rest);
}

void DropUnusedJob(SystemCall& call, const std::string& job) {
    if (!job.empty() && !UsesJob(Connection(call), job)) {
        DropAgentJob(call, job);
    }
}

// ------------------------------------------------------------------ publications

std::int32_t AddPublicationProcedure(SystemCall& call) {
    Publication publication;
    publication.name = call.Text("@publication");
    RaiseIf(IsAll(publication.name), 14034);
    const DatabaseInfo info = RequirePublished(call);
    RaiseIf(FindPublication(Connection(call), info.id, publication.name).has_value(), 14016,
            {publication.name});
    const std::string frequency = call.Text("@repl_freq");
    const std::string status = call.Text("@status");
    RaiseIf(!AsciiEqual(frequency, "continuous") && !AsciiEqual(frequency, "snapshot"), 20587,
            {"@repl_freq", "sp_addpublication"});
    RaiseIf(!AsciiEqual(status, "active") && !AsciiEqual(status, "inactive"), 20587,
            {"@status", "sp_addpublication"});
    publication.database = info.id;
    publication.description = call.Text("@description");
    publication.snapshot = AsciiEqual(frequency, "snapshot");
    publication.active = AsciiEqual(status, "active");
    call.session().transactions().Write("main", [&] { AddPublication(Connection(call), publication); });
    if (!publication.snapshot) {
        AddAgentJob(call, LogReaderJob(call, info.name), "REPL-LogReader");
    }
    return 0;
}

std::int32_t AddSnapshot(SystemCall& call) {
    const Publication publication = RequirePublication(call);
    const std::string given = call.Text("@snapshot_job_name");
    const std::string job =
        given.empty() ? AgentName(call, call.session().databases().CurrentName(), publication.name) : given;
    AddAgentJob(call, job, "REPL-Snapshot");
    call.session().transactions().Write("main",
                                        [&] { SetSnapshotJob(Connection(call), publication.id, job); });
    return 0;
}

/// Removes a publication with its snapshot job, and after the last publication the log reader's job.
void RemovePublicationAndJobs(SystemCall& call, const Publication& publication, const std::string& database) {
    std::set<std::string> jobs;
    for (const Article& article : ListArticles(Connection(call), publication.id)) {
        for (const Subscription& subscription : ListSubscriptions(Connection(call), article.id)) {
            jobs.insert(subscription.job);
        }
    }
    call.session().transactions().Write("main", [&] { RemovePublication(Connection(call), publication.id); });
    for (const std::string& job : jobs) {
        DropUnusedJob(call, job);
    }
    if (!publication.snapshot_job.empty()) {
        DropAgentJob(call, publication.snapshot_job);
    }
    if (ListPublications(Connection(call), publication.database).empty()) {
        DropAgentJob(call, LogReaderJob(call, database));
    }
}

std::int32_t DropPublication(SystemCall& call) {
    const DatabaseInfo info = RequirePublished(call);
    const bool all = IsAll(call.Text("@publication"));
    const std::vector<Publication> publications =
        all ? ListPublications(Connection(call), info.id) : std::vector{RequirePublication(call)};
    for (const Publication& publication : publications) {
        for (const Article& article : ListArticles(Connection(call), publication.id)) {
            RaiseIf(!ListSubscriptions(Connection(call), article.id).empty(), 14005);
        }
        RemovePublicationAndJobs(call, publication, info.name);
    }
    return 0;
}

// ------------------------------------------------------------------ articles

/// The table that the article publishes. Raises 14027, 14088.
ObjectDef RequireTable(SystemCall& call, const Publication& publication) {
    Catalogue& catalogue = call.session().databases().Current();
    const std::string owner = call.Text("@source_owner");
    const std::string name =
        call.IsNull("@source_object") ? call.Text("@source_table") : call.Text("@source_object");
    const ObjectDef object =
        Required(catalogue.FindObject(owner.empty() ? "dbo" : owner, name), 14027, {name});
    RaiseIf(object.type != "U" && object.type != "P", 14027, {name});
    if (object.type == "U" && !publication.snapshot) {
        const TablePtr table = call.session().databases().Table(catalogue, object.id);
        const bool key =
            std::ranges::any_of(table->indexes, [](const IndexDef& index) { return index.primary_key; });
        RaiseIf(!key, 14088, {name});
    }
    return object;
}

std::int32_t AddArticleProcedure(SystemCall& call) {
    const Publication publication = RequirePublication(call);
    Article article;
    article.publication = publication.id;
    article.name = call.Text("@article");
    for (const Article& other : ListArticles(Connection(call), publication.id)) {
        RaiseIf(Folded(other.name) == Folded(article.name), 14030, {article.name, publication.name});
    }
    const ObjectDef table = RequireTable(call, publication);
    article.object = table.id;
    article.destination = call.IsNull("@destination_table") ? table.name : call.Text("@destination_table");
    std::int64_t id = 0;
    call.session().transactions().Write("main", [&] { id = AddArticle(Connection(call), article); });
    call.Set("@artid", id);
    return 0;
}

// ------------------------------------------------------------------ subscriptions

std::int32_t AddSubscriptionProcedure(SystemCall& call) {
    const Publication publication = RequirePublication(call);
    const std::string subscriber = call.Text("@subscriber");
    const LinkedServer server = Required(FindServer(Connection(call), subscriber), 14010, {subscriber});
    RaiseIf(!server.subscriber, 14010, {subscriber});
    const std::string type = call.Text("@subscription_type");
    RaiseIf(!AsciiEqual(type, "push") && !AsciiEqual(type, "pull"), 20587,
            {"@subscription_type", "sp_addsubscription"});
    const std::string database = call.session().databases().CurrentName();
    Subscription subscription;
    subscription.server = server.name;
    subscription.database = call.IsNull("@destination_db") ? database : call.Text("@destination_db");
    subscription.push = AsciiEqual(type, "push");
    if (subscription.push) {
        const std::string given = call.Text("@distribution_job_name");
        subscription.job =
            given.empty() ? AgentName(call, database, publication.name + "-" + server.name) : given;
    }
    const std::vector<Article> articles = RequireArticles(call, publication);
    RaiseIf(articles.empty(), 20027, {kAll});
    for (const Article& article : articles) {
        for (const Subscription& other : ListSubscriptions(Connection(call), article.id)) {
            RaiseIf(Folded(other.server) == Folded(subscription.server) &&
                        Folded(other.database) == Folded(subscription.database),
                    14058);
        }
    }
    call.session().transactions().Write("main", [&] {
        for (const Article& article : articles) {
            subscription.article = article.id;
            AddSubscription(Connection(call), subscription);
        }
    });
    if (subscription.push) {
        AddAgentJob(call, subscription.job, "REPL-Distribution");
    }
    return 0;
}

/// The subscriptions of a server to the articles; of all servers for "all".
std::vector<Subscription> Matching(SystemCall& call, const std::vector<Article>& articles,
                                   const std::string& subscriber, const std::string& database) {
    std::vector<Subscription> found;
    for (const Article& article : articles) {
        for (Subscription& subscription : ListSubscriptions(Connection(call), article.id)) {
            const bool server = IsAll(subscriber) || Folded(subscription.server) == Folded(subscriber);
            const bool destination =
                database.empty() || IsAll(database) || Folded(subscription.database) == Folded(database);
            if (server && destination) {
                found.push_back(std::move(subscription));
            }
        }
    }
    return found;
}

std::int32_t DropSubscription(SystemCall& call) {
    const DatabaseInfo info = RequirePublished(call);
    const bool every = IsAll(call.Text("@publication"));
    const std::string subscriber = call.Text("@subscriber");
    const std::vector<Publication> publications =
        every ? ListPublications(Connection(call), info.id) : std::vector{RequirePublication(call)};
    std::vector<Subscription> dropped;
    for (const Publication& publication : publications) {
        const std::vector<Article> articles = call.IsNull("@article")
                                                  ? ListArticles(Connection(call), publication.id)
                                                  : RequireArticles(call, publication);
        for (Subscription& subscription :
             Matching(call, articles, subscriber, call.Text("@destination_db"))) {
            dropped.push_back(std::move(subscription));
        }
    }
    RaiseIf(dropped.empty() && !every && !IsAll(subscriber), 14055);
    call.session().transactions().Write("main", [&] {
        for (const Subscription& subscription : dropped) {
            RemoveSubscription(Connection(call), subscription);
        }
    });
    std::set<std::string> jobs;
    for (const Subscription& subscription : dropped) {
        jobs.insert(subscription.job);
    }
    for (const std::string& job : jobs) {
        DropUnusedJob(call, job);
    }
    return 0;
}

constexpr SystemProcedure kProcedures[] = {
    {"sp_addpublication", AddPublicationProcedure},   {"sp_addpublication_snapshot", AddSnapshot},
    {"sp_droppublication", DropPublication},          {"sp_addarticle", AddArticleProcedure},
    {"sp_addsubscription", AddSubscriptionProcedure}, {"sp_dropsubscription", DropSubscription},
};

} // namespace

std::string LogReaderJob(SystemCall& call, const std::string& database) {
    return AgentName(call, database);
}

void UnpublishDatabase(SystemCall& call, const std::string& database) {
    const std::optional<DatabaseInfo> info = FindDatabase(Connection(call), database);
    for (const Publication& publication : ListPublications(Connection(call), info->id)) {
        RemovePublicationAndJobs(call, publication, info->name);
    }
}

std::span<const SystemProcedure> PublicationProcedures() {
    return kProcedures;
}

} // namespace devsql

// Publications, articles and subscriptions of the current database.
#include <algorithm>
#include <set>

#include "devserver/storage/databases.h"
#include "devserver/storage/linked_servers.h"
#include "devserver/storage/publications.h"
#include "devserver/tsql/replication/replication_procedures.h"
#include "devserver/tsql/scalar/compare.h"
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
    const std::optional<DatabaseInfo> info =
        FindDatabase(Connection(call), call.session().databases().CurrentName());
    if (!info || !info->Option("PUBLISHED")) {
        RaiseError(14013);
    }
    return *info;
}

/// Raises 14013, 20026.
Publication RequirePublication(SystemCall& call) {
    const std::string name = call.Text("@publication");
    const DatabaseInfo info = RequirePublished(call);
    std::optional<Publication> publication = FindPublication(Connection(call), info.id, name);
    if (!publication) {
        RaiseError(20026, {name});
    }
    return *std::move(publication);
}

/// The article of that name, or every one for "all". Raises 20027.
std::vector<Article> RequireArticles(SystemCall& call, const Publication& publication) {
    const std::string name = call.Text("@article");
    std::vector<Article> articles = ListArticles(Connection(call), publication.id);
    if (!IsAll(name)) {
        std::erase_if(articles, [&](const Article& article) { return Folded(article.name) != Folded(name); });
        if (articles.empty()) {
            RaiseError(20027, {name});
        }
    }
    return articles;
}

/// "SERVER-Batch-batch_a": the beginning that an agent's name has.
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
    if (IsAll(publication.name)) {
        RaiseError(14034);
    }
    const DatabaseInfo info = RequirePublished(call);
    if (FindPublication(Connection(call), info.id, publication.name)) {
        RaiseError(14016, {publication.name});
    }
    const std::string frequency = call.Text("@repl_freq");
    const std::string status = call.Text("@status");
    if (!AsciiEqual(frequency, "continuous") && !AsciiEqual(frequency, "snapshot")) {
        RaiseError(20587, {"@repl_freq", "sp_addpublication"});
    }
    if (!AsciiEqual(status, "active") && !AsciiEqual(status, "inactive")) {
        RaiseError(20587, {"@status", "sp_addpublication"});
    }
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

std::int32_t AddLogReader(SystemCall& call) {
    const DatabaseInfo info = RequirePublished(call);
    AddAgentJob(call, LogReaderJob(call, info.name), "REPL-LogReader");
    return 0;
}

/// With what belongs to it: the snapshot's job, and the log reader's behind the last publication.
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
            if (!ListSubscriptions(Connection(call), article.id).empty()) {
                RaiseError(14005);
            }
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
    const std::optional<ObjectDef> object = catalogue.FindObject(owner.empty() ? "dbo" : owner, name);
    if (!object || !(object->type == "U" || object->type == "P")) {
        RaiseError(14027, {name});
    }
    if (object->type == "U" && !publication.snapshot) {
        const TablePtr table = call.session().databases().Table(catalogue, object->id);
        const bool key =
            std::ranges::any_of(table->indexes, [](const IndexDef& index) { return index.primary_key; });
        if (!key) {
            RaiseError(14088, {name});
        }
    }
    return *object;
}

std::int32_t AddArticleProcedure(SystemCall& call) {
    const Publication publication = RequirePublication(call);
    Article article;
    article.publication = publication.id;
    article.name = call.Text("@article");
    for (const Article& other : ListArticles(Connection(call), publication.id)) {
        if (Folded(other.name) == Folded(article.name)) {
            RaiseError(14030, {article.name, publication.name});
        }
    }
    const ObjectDef table = RequireTable(call, publication);
    article.object = table.id;
    article.destination = call.IsNull("@destination_table") ? table.name : call.Text("@destination_table");
    std::int64_t id = 0;
    call.session().transactions().Write("main", [&] { id = AddArticle(Connection(call), article); });
    call.Set("@artid", id);
    return 0;
}

std::int32_t DropArticle(SystemCall& call) {
    const Publication publication = RequirePublication(call);
    for (const Article& article : RequireArticles(call, publication)) {
        if (!ListSubscriptions(Connection(call), article.id).empty()) {
            RaiseError(14046);
        }
        call.session().transactions().Write("main", [&] { RemoveArticle(Connection(call), article.id); });
    }
    return 0;
}

// ------------------------------------------------------------------ subscriptions

std::int32_t AddSubscriptionProcedure(SystemCall& call) {
    const Publication publication = RequirePublication(call);
    const std::string subscriber = call.Text("@subscriber");
    const std::optional<LinkedServer> server = FindServer(Connection(call), subscriber);
    if (!server || !server->subscriber) {
        RaiseError(14010, {subscriber});
    }
    const std::string type = call.Text("@subscription_type");
    if (!AsciiEqual(type, "push") && !AsciiEqual(type, "pull")) {
        RaiseError(20587, {"@subscription_type", "sp_addsubscription"});
    }
    const std::string database = call.session().databases().CurrentName();
    Subscription subscription;
    subscription.server = server->name;
    subscription.database = call.IsNull("@destination_db") ? database : call.Text("@destination_db");
    subscription.push = AsciiEqual(type, "push");
    if (subscription.push) {
        const std::string given = call.Text("@distribution_job_name");
        subscription.job =
            given.empty() ? AgentName(call, database, publication.name + "-" + server->name) : given;
    }
    const std::vector<Article> articles = RequireArticles(call, publication);
    if (articles.empty()) {
        RaiseError(20027, {std::string(kAll)});
    }
    for (const Article& article : articles) {
        for (const Subscription& other : ListSubscriptions(Connection(call), article.id)) {
            if (Folded(other.server) == Folded(subscription.server) &&
                Folded(other.database) == Folded(subscription.database)) {
                RaiseError(14058);
            }
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

/// The subscriptions of the publication's articles that a server has, or any server for "all".
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

/// The agent's job is there since the subscription; only one that nobody has asked for is an error.
std::int32_t AddPushAgent(SystemCall& call) {
    const Publication publication = RequirePublication(call);
    const std::vector<Subscription> subscriptions =
        Matching(call, ListArticles(Connection(call), publication.id), call.Text("@subscriber"),
                 call.Text("@subscriber_db"));
    if (subscriptions.empty() || !subscriptions[0].push) {
        RaiseError(14055);
    }
    AddAgentJob(call, subscriptions[0].job, "REPL-Distribution");
    return 0;
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
    if (dropped.empty() && !every && !IsAll(subscriber)) {
        RaiseError(14055);
    }
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

// ------------------------------------------------------------------ what there is

std::int32_t HelpPublication(SystemCall& call) {
    RequirePublished(call);
    call.Run("SELECT pubid, name, CONVERT(int, 0) AS restricted, status, CONVERT(int, 1) AS task, repl_freq "
             "AS [replication frequency], sync_method AS [synchronization method], description, "
             "immediate_sync, enabled_for_internet, allow_push, allow_pull, allow_anonymous, "
             "independent_agent FROM dbo.syspublications WHERE @p1 = N'%' OR name = @p1 ORDER BY name",
             {call.Text("@publication")});
    return 0;
}

std::int32_t HelpArticle(SystemCall& call) {
    RequirePublication(call);
    call.Run("SELECT a.artid AS [article id], a.name AS [article name], OBJECT_NAME(a.objid) AS [base "
             "object], a.dest_table AS [destination object], a.status, a.type FROM dbo.sysarticles a INNER "
             "JOIN dbo.syspublications p ON p.pubid = a.pubid WHERE p.name = @p1 AND (@p2 = N'%' OR a.name = "
             "@p2) ORDER BY a.name",
             {call.Text("@publication"), call.Text("@article")});
    return 0;
}

std::int32_t HelpSubscription(SystemCall& call) {
    RequirePublished(call);
    call.Run("SELECT v.srvname AS subscriber, p.name AS publication, a.name AS article, s.dest_db AS "
             "[destination database], s.status AS [subscription status], s.sync_type AS [synchronization "
             "type], s.subscription_type AS [subscription type], CONVERT(bit, 1) AS [full subscription] FROM "
             "dbo.syssubscriptions s INNER JOIN dbo.sysarticles a ON a.artid = s.artid INNER JOIN "
             "dbo.syspublications p ON p.pubid = a.pubid INNER JOIN master.dbo.sysservers v ON v.srvid = "
             "s.srvid WHERE (@p1 = N'%' OR p.name = @p1) AND (@p2 = N'%' OR a.name = @p2) AND (@p3 = N'%' OR "
             "v.srvname = @p3) AND (@p4 = N'%' OR s.dest_db = @p4) ORDER BY subscriber, publication, article",
             {call.Text("@publication"), call.Text("@article"), call.Text("@subscriber"),
              call.Text("@destination_db")});
    return 0;
}

#define SCHEDULE                                                                                             \
    "@frequency_type int = NULL, @frequency_interval int = NULL, @frequency_relative_interval int = NULL, "  \
    "@frequency_recurrence_factor int = NULL, @frequency_subday int = NULL, @frequency_subday_interval int " \
    "= NULL, @active_start_time_of_day int = NULL, @active_end_time_of_day int = NULL, @active_start_date "  \
    "int = NULL, @active_end_date int = NULL"
#define DTS_PACKAGE                                                                                          \
    "@dts_package_name sysname = NULL, @dts_package_password sysname = NULL, @dts_package_location "         \
    "nvarchar(12) = NULL"

constexpr SystemProcedure kProcedures[] = {
    {"sp_addpublication",
     "@publication sysname, @taskid int = 0, @restricted nvarchar(10) = 'false', @sync_method nvarchar(40) = "
     "'native', @repl_freq nvarchar(10) = 'continuous', @description nvarchar(255) = NULL, @status "
     "nvarchar(8) = 'inactive', @independent_agent nvarchar(5) = 'false', @immediate_sync nvarchar(5) = "
     "'false', @enabled_for_internet nvarchar(5) = 'false', @allow_push nvarchar(5) = 'true', @allow_pull "
     "nvarchar(5) = 'false', @allow_anonymous nvarchar(5) = 'false', @allow_sync_tran nvarchar(5) = 'false', "
     "@autogen_sync_procs nvarchar(5) = 'true', @retention int = 336, @allow_queued_tran nvarchar(5) = "
     "'false', @snapshot_in_defaultfolder nvarchar(5) = 'true', @alt_snapshot_folder nvarchar(255) = NULL, "
     "@pre_snapshot_script nvarchar(255) = NULL, @post_snapshot_script nvarchar(255) = NULL, "
     "@compress_snapshot nvarchar(5) = 'false', @ftp_address sysname = NULL, @ftp_port int = 21, "
     "@ftp_subdirectory nvarchar(255) = NULL, @ftp_login sysname = 'anonymous', @ftp_password sysname = "
     "NULL, @allow_dts nvarchar(5) = 'false', @allow_subscription_copy nvarchar(5) = 'false', "
     "@conflict_policy nvarchar(100) = NULL, @centralized_conflicts nvarchar(5) = NULL, @conflict_retention "
     "int = 14, @queue_type nvarchar(10) = NULL, @add_to_active_directory nvarchar(10) = 'false', "
     "@logreader_job_name sysname = NULL, @qreader_job_name sysname = NULL, @publisher sysname = NULL, "
     "@allow_initialize_from_backup nvarchar(5) = NULL, @replicate_ddl int = 1, @enabled_for_p2p nvarchar(5) "
     "= 'false', @publish_local_changes_only nvarchar(5) = 'false', @enabled_for_het_sub nvarchar(5) = "
     "'false'",
     AddPublicationProcedure},
    {"sp_addpublication_snapshot",
     "@publication sysname, " SCHEDULE
     ", @snapshot_job_name nvarchar(100) = NULL, @publisher_security_mode int = NULL, @publisher_login "
     "sysname = NULL, @publisher_password sysname = NULL, @job_login nvarchar(257) = NULL, @job_password "
     "sysname = NULL, @publisher sysname = NULL",
     AddSnapshot},
    {"sp_addlogreader_agent",
     "@job_login nvarchar(257) = NULL, @job_password sysname = NULL, @job_name sysname = NULL, "
     "@publisher_security_mode smallint = 1, @publisher_login sysname = NULL, @publisher_password sysname = "
     "NULL, @publisher sysname = NULL",
     AddLogReader},
    {"sp_droppublication",
     "@publication sysname, @ignore_distributor bit = 0, @publisher sysname = NULL, @from_backup bit = 0",
     DropPublication},
    {"sp_addarticle",
     "@publication sysname, @article sysname, @source_table nvarchar(386) = NULL, @destination_table sysname "
     "= NULL, @vertical_partition nchar(5) = 'false', @type sysname = NULL, @filter nvarchar(386) = NULL, "
     "@sync_object nvarchar(386) = NULL, @ins_cmd nvarchar(255) = NULL, @del_cmd nvarchar(255) = NULL, "
     "@upd_cmd nvarchar(255) = NULL, @creation_script nvarchar(255) = NULL, @description nvarchar(255) = "
     "NULL, @pre_creation_cmd nvarchar(10) = 'drop', @filter_clause ntext = NULL, @schema_option "
     "varbinary(8) = NULL, @destination_owner sysname = NULL, @status tinyint = 16, @source_owner sysname = "
     "NULL, @sync_object_owner sysname = NULL, @filter_owner sysname = NULL, @source_object sysname = NULL, "
     "@artid int = NULL OUTPUT, @auto_identity_range nvarchar(5) = NULL, @pub_identity_range bigint = NULL, "
     "@identity_range bigint = NULL, @threshold int = NULL, @force_invalidate_snapshot bit = 0, "
     "@use_default_datatypes bit = 1, @identityrangemanagementoption nvarchar(10) = NULL, @publisher sysname "
     "= NULL, @fire_triggers_on_snapshot nvarchar(5) = 'false'",
     AddArticleProcedure},
    {"sp_droparticle",
     "@publication sysname, @article sysname, @ignore_distributor bit = 0, @force_invalidate_snapshot bit = "
     "0, @publisher sysname = NULL, @from_drop_publication bit = 0",
     DropArticle},
    {"sp_addsubscription",
     "@publication sysname, @article sysname = 'all', @subscriber sysname = NULL, @destination_db sysname = "
     "NULL, @sync_type nvarchar(255) = 'automatic', @status sysname = NULL, @subscription_type nvarchar(4) = "
     "'push', @update_mode nvarchar(30) = 'read only', @loopback_detection nvarchar(5) = NULL, " SCHEDULE
     ", @optional_command_line nvarchar(4000) = NULL, @reserved nvarchar(10) = NULL, @enabled_for_syncmgr "
     "nvarchar(5) = 'false', @offloadagent bit = 0, @offloadserver sysname = NULL, " DTS_PACKAGE
     ", @distribution_job_name sysname = NULL, @publisher sysname = NULL, @backupdevicetype nvarchar(20) = "
     "NULL, @backupdevicename nvarchar(1000) = NULL, @mediapassword sysname = NULL, @password sysname = "
     "NULL, @fileidhint int = NULL, @unload bit = 1, @subscriptionlsn binary(10) = NULL, "
     "@subscriptionstreams tinyint = NULL, @subscriber_type tinyint = 0",
     AddSubscriptionProcedure},
    {"sp_addpushsubscription_agent",
     "@publication sysname, @subscriber sysname, @subscriber_db sysname = NULL, @subscriber_security_mode "
     "smallint = 1, @subscriber_login sysname = NULL, @subscriber_password sysname = NULL, @job_login "
     "nvarchar(257) = NULL, @job_password sysname = NULL, @job_name sysname = NULL, " SCHEDULE
     ", " DTS_PACKAGE
     ", @enabled_for_syncmgr nvarchar(5) = 'false', @distribution_job_name sysname = NULL, @publisher "
     "sysname = NULL, @subscriber_provider sysname = NULL, @subscriber_datasrc nvarchar(4000) = NULL, "
     "@subscriber_location nvarchar(4000) = NULL, @subscriber_provider_string nvarchar(4000) = NULL, "
     "@subscriber_catalog sysname = NULL, @subscriber_type tinyint = 0",
     AddPushAgent},
    {"sp_dropsubscription",
     "@publication sysname, @article sysname = NULL, @subscriber sysname, @destination_db sysname = NULL, "
     "@ignore_distributor bit = 0, @reserved nvarchar(10) = NULL",
     DropSubscription},
    {"sp_helppublication", "@publication sysname = '%', @found int = NULL OUTPUT, @publisher sysname = NULL",
     HelpPublication},
    {"sp_helparticle",
     "@publication sysname, @article sysname = '%', @returnfilter bit = 1, @publisher sysname = NULL",
     HelpArticle},
    {"sp_helpsubscription",
     "@publication sysname = '%', @article sysname = '%', @subscriber sysname = '%', @destination_db sysname "
     "= '%', @found int = NULL OUTPUT, @publisher sysname = NULL",
     HelpSubscription},
};

#undef SCHEDULE
#undef DTS_PACKAGE

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

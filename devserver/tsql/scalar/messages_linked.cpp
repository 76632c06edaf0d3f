#include "devserver/tsql/scalar/messages_linked.h"

#include <array>

namespace devsql {
namespace {

constexpr std::array kMessages = {
    // ---- linked servers
    MessageTemplate{405, 16,
                    "A remote table cannot be used as a DML target in a statement which includes an OUTPUT "
                    "clause or a nested DML statement."},
    MessageTemplate{627, 16, "Cannot use SAVE TRANSACTION within a distributed transaction."},
    MessageTemplate{3724, 16, "Cannot %1 the %2 '%3' because it is being used for replication."},
    MessageTemplate{3910, 16, "Transaction context in use by another session."},
    MessageTemplate{3933, 16,
                    "Cannot promote the transaction to a distributed transaction because there is an active "
                    "save point in this transaction."},
    MessageTemplate{7403, 16, "The OLE DB provider \"%1\" has not been registered."},
    MessageTemplate{7416, 16, "Access to the remote server is denied because no login-mapping exists."},
    MessageTemplate{15185, 16,
                    "There is no remote user '%1' mapped to local user '%2' from the remote server '%3'."},
    MessageTemplate{15426, 16, "You must specify a provider name with this set of properties."},
    MessageTemplate{15427, 16, "You must specify a provider name for unknown product '%1'."},
    MessageTemplate{15428, 16, "You cannot specify a provider or any properties for product '%1'."},
    MessageTemplate{15600, 15, "An invalid parameter or option was specified for procedure '%1'."},
    // ---- replication
    MessageTemplate{14005, 16,
                    "Cannot drop the publication because at least one subscription exists for this "
                    "publication. Drop all subscriptions to the publication before attempting to drop the "
                    "publication."},
    MessageTemplate{14010, 16, "The remote server '%1' is not defined as a subscription server."},
    MessageTemplate{14013, 16, "This database is not enabled for publication."},
    MessageTemplate{14016, 16, "The publication '%1' already exists."},
    MessageTemplate{14027, 11, "%1 does not exist in the current database."},
    MessageTemplate{14030, 16, "The article '%1' exists in publication '%2'."},
    MessageTemplate{14034, 16, "The publication name (@publication) cannot be the keyword 'all'."},
    MessageTemplate{14040, 16, "The server '%1' is already a Subscriber."},
    MessageTemplate{14046, 16, "Could not drop article. A subscription exists on it."},
    MessageTemplate{14048, 16, "The server '%1' is not a Subscriber."},
    MessageTemplate{14055, 11, "The subscription does not exist."},
    MessageTemplate{14058, 16,
                    "Cannot create the subscription because the subscription already exists in the "
                    "subscription database."},
    MessageTemplate{14071, 16,
                    "Could not find the Distributor or the distribution database for the local server. The "
                    "Distributor may not be installed, or the local server may not be configured as a "
                    "Publisher at the Distributor."},
    MessageTemplate{14080, 11,
                    "The remote server \"%1\" does not exist, or has not been designated as a valid "
                    "Publisher, or you may not have permission to see available Publishers."},
    MessageTemplate{14088, 16,
                    "The table '%1' must have a primary key to be published using the transaction-based "
                    "method."},
    MessageTemplate{14099, 16,
                    "The server '%1' is already defined as a Distributor. To reconfigure the server as a "
                    "Distributor, you must first uninstall the exisiting Distributor. Use the stored "
                    "procedure sp_dropdistributor, or use the Disable Publishing and Distribution Wizard."},
    MessageTemplate{14100, 16,
                    "Specify all articles when subscribing to a publication using concurrent "
                    "snapshot processing."},
    MessageTemplate{14114, 16, "The server '%1' is not configured as a Distributor."},
    MessageTemplate{14117, 16, "'%1' is not configured as a distribution database."},
    MessageTemplate{14119, 16,
                    "Could not add the distribution database '%1'. This distribution database already "
                    "exists."},
    MessageTemplate{14120, 16,
                    "Could not drop the distribution database '%1'. This distributor database is associated "
                    "with a Publisher."},
    MessageTemplate{14121, 16,
                    "Could not drop the Distributor '%1'. This Distributor has associated distribution "
                    "databases."},
    MessageTemplate{14137, 16, "Invalid option name '%1'."},
    MessageTemplate{14144, 16,
                    "Cannot drop Subscriber '%1'. There are active subscriptions for it in the publication "
                    "database '%2'."},
    MessageTemplate{14148, 16, "Invalid '%1' value. Valid values are 'true' or 'false'."},
    MessageTemplate{20026, 11, "The publication '%1' does not exist."},
    MessageTemplate{20027, 11, "The article '%1' does not exist."},
    MessageTemplate{20028, 16,
                    "The Distributor has not been installed correctly. Could not enable database for "
                    "publishing."},
    MessageTemplate{20584, 16, "Cannot drop server '%1' because it is used as a %2 in replication."},
    MessageTemplate{20587, 16, "Invalid '%1' value for stored procedure '%2'."},
    MessageTemplate{20594, 16,
                    "A push subscription to the publication exists. Use sp_subscription_cleanup to drop "
                    "defunct push subscriptions."},
};

} // namespace

std::span<const MessageTemplate> LinkedMessages() {
    return kMessages;
}

} // namespace devsql

// The names of every key and value in the registry that the program reads or writes, and the defaults that
// its callers pass. The comment above each key names its hive and says what its values hold; all values are
// text.
#pragma once

#include "registry/registry.h"

namespace kv::registry_locations {

using registry::kHkeyCurrentUser;
using registry::kHkeyLocalMachine;

/// In HKEY_LOCAL_MACHINE. The key's default value is the folder of the error log.
inline constexpr const char* kLogKey = R"(SOFTWARE\ORVIK\QUORLEN\Log)";
inline constexpr const char* kLogValue = "";
inline constexpr const char* kLogDefault = R"(..\Log)";

/// In HKEY_LOCAL_MACHINE of this computer and of the backup node. The values are the database server's name
/// and the login's user and password; the password is used as it is stored.
inline constexpr const char* kLoginKey = R"(SOFTWARE\Orvik\Quorlen\Lotkeeper\Login)";
inline constexpr const char* kServerNameValue = "ServerName";
inline constexpr const char* kUserIdValue = "UserID";
inline constexpr const char* kPasswordValue = "PWD";

/// In HKEY_CURRENT_USER, unlike all the others. BackupNode is the name of the other computer of the redundant
/// pair.
inline constexpr const char* kRedundancyKey = R"(SOFTWARE\Orvik\Quorlen\Redundancy\Lotkeeper)";
inline constexpr const char* kBackupNodeValue = "BackupNode";

/// In HKEY_LOCAL_MACHINE. Each value is a switch that is on if its text is "TRUE" in any letter case.
/// UseTransactionalReplication is the only value that the program writes; SqlServerInstalled opens the
/// console's tab for replication.
inline constexpr const char* kCustomFunctionsKey = R"(SOFTWARE\Orvik\Quorlen\Lotkeeper\CustomFunctions)";
inline constexpr const char* kUseTransactionalReplicationValue = "UseTransactionalReplication";
inline constexpr const char* kSqlServerInstalledValue = "SqlServerInstalled";

/// In HKEY_LOCAL_MACHINE. The main window opens this key itself to see whether it exists, and only then reads
/// the value.
inline constexpr const char* kInstallationKey = R"(SOFTWARE\Orvik\Quorlen\Lotkeeper\Installation)";
inline constexpr const char* kSqlDomainValue = "SqlDomain";

/// In HKEY_LOCAL_MACHINE. The value is the version of the database server. The separators are doubled on
/// purpose: the key's text is part of the product, and the registry takes a run of them as one.
inline constexpr const char* kCurrentVersionKey =
    R"(SOFTWARE\\Microsoft\\Microsoft SQL Server\\KV_BATCH\\MSSQLServer\\CurrentVersion)";
inline constexpr const char* kCurrentVersionValue = "CurrentVersion";

/// In HKEY_LOCAL_MACHINE, one key for each version of the server's client tools. SQLPath is their folder.
inline constexpr const char* kClientSetup80Key =
    R"(SOFTWARE\Microsoft\Microsoft SQL Server\80\Tools\ClientSetup)";
inline constexpr const char* kClientSetup90Key =
    R"(SOFTWARE\Microsoft\Microsoft SQL Server\90\Tools\ClientSetup)";
inline constexpr const char* kClientSetup120Key =
    R"(SOFTWARE\Microsoft\Microsoft SQL Server\120\Tools\ClientSetup)";
inline constexpr const char* kClientSetup140Key =
    R"(SOFTWARE\Microsoft\Microsoft SQL Server\140\Tools\ClientSetup)";
inline constexpr const char* kSqlPathValue = "SQLPath";

/// The default of every value but the log folder.
inline constexpr const char* kNoDefault = "";

} // namespace kv::registry_locations

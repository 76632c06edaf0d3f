// The .sql files of this folder, which the build embeds (devserver/embed_texts.cmake).
#pragma once

#include <string_view>
#include <vector>

namespace devsql::embedded {

// Read by FindSystemProcedure.
extern const std::string_view kProcedureParameters;

// Read by system_views.cpp.
extern const std::string_view kFragments;
extern const std::string_view kSystemTables;
extern const std::string_view kSysViews;
extern const std::string_view kInformationSchema;
extern const std::string_view kServerViews;

// T-SQL that the server runs in msdb and master at the first start of this version.
extern const std::string_view kMsdbProcedures;
extern const std::string_view kMasterProcedures;
extern const std::string_view kDriverProcedures;
/// To be raised when one of these three files changes: a server whose databases were made with another
/// version runs them again.
inline constexpr int kBootstrapVersion = 8;

/// The batches of a file. A line "GO" ends each.
std::vector<std::string_view> Batches(std::string_view text);
/// The text of a batch after `word`, with which it begins, and after the comments before that. Empty if the
/// batch begins with something else.
std::string_view After(std::string_view word, std::string_view batch);

} // namespace devsql::embedded

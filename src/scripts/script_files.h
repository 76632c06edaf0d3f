// The file routines of templates and modified scripts.
#pragma once

#include <string>

namespace kv {

/// The folder beside the executable that holds modified scripts and the query tool's output, no "\" at its
/// end.
std::string DataFolder();

/// The whole text of a file, every line ended by CR LF, the last one too. CR LF, CR alone and LF alone each
/// end a line of the file. All other bytes stay as they are. Raises the run time's file failures.
std::string ReadFileContent(const std::string& path);

/// Writes the text and one further CR LF under the bare name into the folder Data, which it makes if it is
/// not there. An older file of that name is deleted first. Raises the run time's file failures.
void WriteDataFile(const std::string& strFileContent, const std::string& strFile);

} // namespace kv

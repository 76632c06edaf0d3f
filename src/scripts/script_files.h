// Reads templates and writes modified scripts.
#pragma once

#include <string>

namespace kv {

/// The folder beside the executable for modified scripts and the query tool's output, without "\" at its end.
std::string DataFolder();

/// Returns the text of a file with CR LF after every line, the last one included. CR LF, CR alone and LF
/// alone each end a line of the file. All other bytes are unchanged. Raises the run time's file failures.
std::string ReadFileContent(const std::string& path);

/// Writes the text and one more CR LF to a file of that name in the folder Data, which is created if it does
/// not exist. An older file of the same name is deleted first. Raises the run time's file failures.
void WriteDataFile(const std::string& strFileContent, const std::string& strFile);

} // namespace kv

// Reads the file in which a DTS package is delivered: a head of five lines, an empty line, and a body that is
// stored without being read. Knows nothing of servers.
#pragma once

#include <string>

namespace packages {

/// The content of a package file, such as this one:
///
///     LKDTS 1
///     Name: StdSynchronize
///     Description: Brings the partner server up to date
///     PackageId: {8F14E45F-CEEA-467F-A8B6-2C1F1B7A9D01}
///     VersionId: {3C59DC04-8E88-4024-9BBE-079A5D4B1A02}
///
///     any bytes
///
/// The lines end in CR LF or LF. Name and description are code page 1252; the description may be empty.
struct PackageFile {
    std::string name;        ///< 1 to 128 characters
    std::string description; ///< at most 255 characters
    std::string package_id;  ///< "{8-4-4-4-12 hexadecimal digits}"
    std::string version_id;  ///< the same form
    std::string content;     ///< the whole file, byte for byte
};

/// Parses the content of the file at `path`, which is used in error texts only. Throws PackageError, which
/// names the wrong line and the reason.
PackageFile ParsePackageFile(const std::string& path, std::string content);

/// Reads and parses the file at `path`. Throws PackageError, which names the file.
PackageFile ReadPackageFile(const std::string& path);

} // namespace packages

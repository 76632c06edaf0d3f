// The package store of a server's msdb, reached through the server's own procedures over ODBC: add, drop,
// list. Text is code page 1252.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "packages/package_file.h"
#include "packages/packages.h"

namespace packages {

/// How to reach a server. The texts are put into the connection string unchanged.
struct PackageServer {
    std::string server;
    std::string user;
    std::string password;
};

/// One stored version of a package.
struct StoredPackage {
    PackageInfo info;
    std::string package_id; ///< "{…}"
    std::string version_id; ///< "{…}"
};

/// The packages of one server. Each call makes its own connection and throws PackageError.
class PackageStore {
  public:
    explicit PackageStore(PackageServer server) : server_(std::move(server)) {}

    /// Stores the file's whole content under its package id as a new version. Each call makes a new version
    /// id, so a package that is saved twice is in the store twice.
    void Add(const PackageFile& file);
    /// Removes the newest version of the package with this name, letter case ignored. Throws PackageError if
    /// there is no such package.
    void RemoveNewest(const std::string& package_name);
    /// Calls `take` for every stored version of every package, in the server's order.
    void List(const std::function<void(const StoredPackage&)>& take);

  private:
    PackageServer server_;
};

} // namespace packages

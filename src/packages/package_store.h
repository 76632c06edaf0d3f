// The package store of a server's msdb, reached through the server's own procedures over ODBC: add, drop,
// list. Text is code page 1252. Knows no COM and no program above it.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "packages/package_file.h"
#include "packages/packages.h"

namespace platform {

/// How to reach a server. The texts go into the connection string as they are.
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

    /// Stores the file's whole content under its package id, as a new version: the version id is made here,
    /// since a package that is saved twice stands twice in the store.
    void Add(const PackageFile& file);
    /// Removes the newest version of the package of that name; names compare without case. That there is none
    /// is a PackageError.
    void RemoveNewest(const std::string& package_name);
    /// Calls `take` for every stored version of every package, in the server's order.
    void List(const std::function<void(const StoredPackage&)>& take);

  private:
    PackageServer server_;
};

} // namespace platform

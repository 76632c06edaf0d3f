// The DTS packages that a server keeps in its database msdb. They are added, removed and listed by the
// server's own procedures, over ODBC. Text is in code page 1252.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "packages/package_file.h"
#include "packages/packages.h"

namespace packages {

/// The server and the login. The texts are put into the connection string unchanged.
struct PackageServer {
    std::string server;
    std::string user;
    std::string password;
};

/// One stored version of a package.
struct StoredPackage {
    PackageInfo info;
    std::string package_id; ///< the form of PackageFile::package_id
    std::string version_id; ///< the same form
};

/// The packages of one server. Each call makes its own connection. Every failure is a PackageError.
class PackageStore {
  public:
    explicit PackageStore(PackageServer server) : server_(std::move(server)) {}

    /// Stores the file's whole content under its package id as a new version. Each call makes a new version
    /// id, so a package that is saved twice is in the store twice.
    void Add(const PackageFile& file);
    /// Removes the version that was created last of all packages with this name, letter case ignored. Throws
    /// PackageError if there is no such package.
    void RemoveNewest(const std::string& package_name);
    /// Calls `take` for every stored version of every package, in the server's order.
    void List(const std::function<void(const StoredPackage&)>& take);

  private:
    PackageServer server_;
};

} // namespace packages

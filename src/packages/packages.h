// The two objects that store DTS packages on a server and list them. On Windows they are the COM classes
// "DTS.Package" and "DTS.Application", called by the names of their members. On Linux package_store.h does
// their work. Text is 8-bit.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "base/reported_error.h"
#include "platform/clock.h"

namespace packages {

/// A call on one of the two objects failed. The number is the HRESULT on Windows. On Linux it is the number
/// that ADO over ODBC gives for the SQLSTATE; for a package file it is the HRESULT that Windows gives for the
/// same fault.
class PackageError : public kv::ReportedError {
  public:
    using ReportedError::ReportedError;
};

/// One stored version of a package, as a server lists it.
struct PackageInfo {
    std::string name;
    std::string description;
    platform::LocalTime creation_date; ///< as the server gives it
};

/// One package, which is loaded from a file and saved to a server. Every failure is a PackageError. `user`
/// and `password` are a login of the server; passwords are in clear text.
class DtsPackage {
  public:
    virtual ~DtsPackage() = default;
    /// Removes the newest stored version of the package of that name.
    virtual void RemoveFromSQLServer(const std::string& server, const std::string& user,
                                     const std::string& password, const std::string& package_name) = 0;
    /// Loads the package from its file. `password` is that of the file; empty if it has no password.
    virtual void LoadFromStorageFile(const std::string& path, const std::string& password) = 0;
    /// Stores the loaded package on the server as a new version.
    virtual void SaveToSQLServer(const std::string& server, const std::string& user,
                                 const std::string& password) = 0;
};

/// Lists the packages of servers.
class DtsApplication {
  public:
    virtual ~DtsApplication() = default;
    /// Calls `take` for every stored version of every package, in the server's order. Throws PackageError,
    /// perhaps after some calls of `take`.
    virtual void EnumPackageInfos(const std::string& server, const std::string& user,
                                  const std::string& password,
                                  const std::function<void(const PackageInfo&)>& take) = 0;
};

/// These make a new object. They return null if the system has no such class, which never happens on Linux.
std::unique_ptr<DtsPackage> CreateDtsPackage();
std::unique_ptr<DtsApplication> CreateDtsApplication();

} // namespace packages

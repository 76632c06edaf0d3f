// The two objects through which packages are stored on a server and listed: on Windows the COM classes
// "DTS.Package" and "DTS.Application", called late bound; on Linux the package store of the server's msdb.
// Text is 8-bit.
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

struct PackageInfo {
    std::string name;
    std::string description;
    platform::LocalTime creation_date;
};

/// One package. Every member throws PackageError.
class DtsPackage {
  public:
    virtual ~DtsPackage() = default;
    /// Removes the newest stored version of the package of that name.
    virtual void RemoveFromSQLServer(const std::string& server, const std::string& user,
                                     const std::string& password, const std::string& package_name) = 0;
    virtual void LoadFromStorageFile(const std::string& path, const std::string& password) = 0;
    virtual void SaveToSQLServer(const std::string& server, const std::string& user,
                                 const std::string& password) = 0;
};

class DtsApplication {
  public:
    virtual ~DtsApplication() = default;
    /// Calls `take` for every stored version of every package, in the server's order. Throws PackageError,
    /// perhaps after some calls of `take`.
    virtual void EnumPackageInfos(const std::string& server, const std::string& user,
                                  const std::string& password,
                                  const std::function<void(const PackageInfo&)>& take) = 0;
};

/// Null if the system has no such class.
std::unique_ptr<DtsPackage> CreateDtsPackage();
std::unique_ptr<DtsApplication> CreateDtsApplication();

} // namespace packages

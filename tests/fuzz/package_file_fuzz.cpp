// Fuzzes the reading of a package file. Only PackageError may be thrown, and a package that is accepted must
// keep to the limits.
#include "fuzz/input.h"
#include "packages/package_file.h"
#include "packages/packages.h"

namespace {

constexpr std::size_t kLongestName = 128;
constexpr std::size_t kLongestDescription = 255;
constexpr std::size_t kIdLength = 38;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(bytes), size);
    try {
        const packages::PackageFile package = packages::ParsePackageFile("a.dts", text);
        fuzz::Require(!package.name.empty() && package.name.size() <= kLongestName, "a name fits");
        fuzz::Require(package.description.size() <= kLongestDescription, "a description fits");
        fuzz::Require(package.package_id.size() == kIdLength && package.version_id.size() == kIdLength,
                      "both identifiers are whole");
        fuzz::Require(package.content == text, "the content is the whole file");
    } catch (const packages::PackageError& error) {
        fuzz::Require(error.what()[0] != '\0', "an error has its text");
    }
    return 0;
}

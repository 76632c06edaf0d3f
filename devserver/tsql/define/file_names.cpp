#include "devserver/tsql/define/file_names.h"

#include <algorithm>
#include <vector>

#include "devserver/tsql/scalar/compare.h"

namespace devsql {
namespace {

struct KeptFile {
    std::string name;
    std::string file; ///< its name on disk, without the folder
    std::string group;
    bool log = false;
};

std::string NameOnDisk(const DatabaseFile& file) {
    return file.path.filename().string();
}

std::vector<KeptFile> ReadKept(const DatabaseFile& data_file) {
    SqliteConnection connection(data_file.path);
    SqliteStatement row = connection.Prepare(
        "SELECT json_extract(value, '$[0]'), json_extract(value, '$[1]'), json_extract(value, '$[2]'), "
        "json_extract(value, '$[3]') FROM devsql_settings WHERE name LIKE 'file:%' ORDER BY name");
    std::vector<KeptFile> kept;
    while (row.Step()) {
        kept.push_back({row.Text(0), row.Text(1), row.Text(2), row.Int(3) != 0});
    }
    return kept;
}

} // namespace

void KeepFileNames(const DatabaseInfo& database) {
    SqliteConnection connection(database.DataFile().path);
    connection.Execute("DELETE FROM devsql_settings WHERE name LIKE 'file:%'");
    for (const DatabaseFile& file : database.files) {
        connection.Prepare("INSERT INTO devsql_settings(name, value) VALUES(?1, json_array(?2, ?3, ?4, ?5))")
            .BindText(1, "file:" + std::to_string(1000 + file.id)) // so that they sort by number
            .BindText(2, file.name)
            .BindText(3, NameOnDisk(file))
            .BindText(4, file.file_group)
            .BindInt(5, file.log ? 1 : 0)
            .Run();
    }
}

void RestoreFileNames(DatabaseInfo& database) {
    const std::vector<KeptFile> kept = ReadKept(database.files[0]);
    for (std::size_t i = 0; i < database.files.size(); ++i) {
        DatabaseFile& file = database.files[i];
        auto found = std::find_if(kept.begin(), kept.end(), [&](const KeptFile& candidate) {
            return SameText(candidate.file, NameOnDisk(file));
        });
        if (found == kept.end() && i < kept.size() && kept.size() == database.files.size()) {
            found = kept.begin() + static_cast<std::ptrdiff_t>(i); // A copied file may have another name.
        }
        if (found != kept.end()) {
            file.name = found->name;
            file.log = found->log;
            file.file_group = found->group;
        }
    }
}

} // namespace devsql

// Lists a server's databases COUNT times as the program does, each time over a new connection. Prints the
// number of databases and the mean seconds of a listing.
//
//   catalogue_bench SERVER USER PASSWORD COUNT
#include <charconv>
#include <chrono>
#include <cstdio>
#include <string_view>

#include "admin/upgrade_db_mgr.h"

int main(int argc, char** argv) {
    int count = 0;
    if (argc != 5) {
        return 2;
    }
    const std::string_view digits = argv[4];
    std::from_chars(digits.data(), digits.data() + digits.size(), count);
    kv::CUpgradeDbMgr manager;
    manager.UseServerA(true);
    manager.ServerA(argv[1]);
    manager.UserA(argv[2]);
    manager.PasswordA(argv[3]);
    std::vector<std::string> names;
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i) {
        if (!manager.GetDatabases(names)) {
            return 1;
        }
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    std::printf("%zu %.6f\n", names.size() - 1, taken.count() / count);
    return 0;
}

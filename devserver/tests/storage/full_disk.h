// A simulated full disk: a file system for SQLite whose writes to write-ahead logs fail on demand. It is
// SQLite's default file system as long as the object exists.
#pragma once

#include <sqlite3.h>

#include <atomic>
#include <cstring>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string_view>

namespace devsql::test {

class FullDisk {
  public:
    FullDisk() : real_(sqlite3_vfs_find(nullptr)), own_(*real_) {
        own_.zName = "full_disk";
        own_.pNext = nullptr;
        own_.pAppData = real_;
        own_.xOpen = Open;
        if (sqlite3_vfs_register(&own_, 1) != SQLITE_OK) {
            throw std::runtime_error("SQLite does not accept the file system");
        }
    }
    ~FullDisk() {
        Free();
        sqlite3_vfs_register(real_, 1);
        sqlite3_vfs_unregister(&own_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

    /// After Fill all writes to write-ahead logs fail, until Free.
    void Fill() { full = true; }
    void Free() { full = false; }

  private:
    /// Opens the file as SQLite does. For a write-ahead log, replaces the write method by Write.
    static int Open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* out) {
        auto* real = static_cast<sqlite3_vfs*>(vfs->pAppData);
        const int code = real->xOpen(real, name, file, flags, out);
        if (code == SQLITE_OK && (flags & SQLITE_OPEN_WAL) != 0) {
            const std::lock_guard lock(mutex);
            // One changed copy of each of SQLite's method tables; it must stay, because SQLite keeps a
            // pointer to it.
            auto [entry, added] = methods.try_emplace(file->pMethods, *file->pMethods);
            if (added) {
                real_write = file->pMethods->xWrite;
                entry->second.xWrite = Write;
            }
            file->pMethods = &entry->second;
        }
        return code;
    }

    static int Write(sqlite3_file* file, const void* data, int size, sqlite3_int64 offset) {
        return full ? SQLITE_FULL : real_write(file, data, size, offset);
    }

    static inline std::atomic<bool> full = false;
    static inline std::mutex mutex;
    static inline std::map<const sqlite3_io_methods*, sqlite3_io_methods> methods;
    static inline int (*real_write)(sqlite3_file*, const void*, int, sqlite3_int64) = nullptr;

    sqlite3_vfs* real_;
    sqlite3_vfs own_;
};

} // namespace devsql::test

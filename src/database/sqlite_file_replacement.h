#pragma once

// Replacing an SQLite configuration file safely: the old file's write lock is
// taken first (a file that another program is writing is left alone), the
// new file is written beside it and renamed into place.

#include "database/database_engine.h"

#include <functional>
#include <memory>
#include <string>

namespace dbn::detail {

// True when path names a regular file (or a link to one), false when there
// is nothing; raises the "not a regular file" error for anything else.
bool IsExistingRegularFile(const std::string& path);

class SqliteFileReplacement {
public:
    // Checks path: absent, or a regular file whose write lock is free at once
    // (then held until this object goes). Raises the "not a regular file" and
    // "in use" errors.
    explicit SqliteFileReplacement(std::string path);

    bool Exists() const noexcept { return old_ != nullptr || oldUnreadable_; }
    // The old file, locked; nullptr when there is none or it is no database.
    DatabaseEngine* Old() noexcept { return old_.get(); }

    // Keeps the old file as PATH.bak (replacing an older one) and answers
    // that path.
    std::string KeepBackup();

    // Makes the folders, writes a new file beside the path with fill, and
    // renames it into place.
    void WriteNew(const std::function<void(DatabaseEngine&)>& fill);

private:
    std::string path_;
    std::unique_ptr<DatabaseEngine> old_;
    bool oldUnreadable_ = false;
};

}  // namespace dbn::detail

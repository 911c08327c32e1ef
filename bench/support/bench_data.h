#pragma once

// Data roots for the measurements: a throw-away folder holding a configuration
// database with the demo content, optionally with the large partition added.

#include <cstdint>
#include <string>

namespace dbn::bench {

// The generated partition: 999 dial-by-name nodes, each with nine prompt rows
// and a pool row, 999 message nodes, a directory and a transfer node, and node
// 0 of every type, all in configuration 1.
inline constexpr std::int16_t kLargeConfig = 1;
inline constexpr std::int16_t kLargePartition = 3;
inline constexpr int kLargeNodeCount = 999;

// Adds the large partition to the configuration database at databasePath
// (which must hold the demo content, whose catalogue and templates it copies).
// Throws std::runtime_error on an SQL failure.
void AddLargePartition(const std::string& databasePath);

// Runs SQL on a database file through a connection of its own.
void ExecSql(const std::string& databasePath, const std::string& sql);
// The first column of the first row as a whole number; 0 without a row.
long long QueryNumber(const std::string& databasePath, const std::string& sql);

// A temporary folder made into a data root with the demo database (and the
// large partition when asked); removed again on destruction. In a server run
// (DBN_BENCH_ENGINE=postgresql beside scripts/with-postgres) the file is then
// copied to a fresh database on the server, which Use() makes the process's
// database.
class BenchDataRoot {
public:
    enum class Content { Demo, DemoAndLarge };

    explicit BenchDataRoot(Content content);
    ~BenchDataRoot();
    BenchDataRoot(const BenchDataRoot&) = delete;
    BenchDataRoot& operator=(const BenchDataRoot&) = delete;

    // Makes this folder the data root of the process.
    void Use() const;
    const std::string& Root() const noexcept { return root_; }
    const std::string& DatabasePath() const noexcept { return path_; }
    // SQL on the database the editor uses (the file, or the server's).
    void Exec(const std::string& sql) const;
    long long QueryNumber(const std::string& sql) const;
    // The server database's URI in a server run, else empty.
    const std::string& ServerUri() const noexcept { return serverUri_; }

private:
    std::string root_;
    std::string path_;
    std::string serverDatabase_;
    std::string serverUri_;
};

// True in a server run.
bool BenchOnServer();
// Runs sql on the test server's maintenance database.
void ServerAdminSql(const std::string& sql);

// The data roots of one benchmark run, made on first use and kept until the
// process ends: the demo database, and the demo with the large partition.
BenchDataRoot& DemoRoot();
BenchDataRoot& LargeRoot();

}  // namespace dbn::bench

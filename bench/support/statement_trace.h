#pragma once

// Recording what a session asks of its DataBase, and replaying exactly that
// (the same commands with the same arguments, the same row-set reads) on a
// bare DataBase: the floor that a measured operation is compared with.

#include "database/database.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace dbn::bench {

struct TraceStep {
    DataBaseStep step;
    std::string command;
    std::vector<std::string> args;
    std::string column;
};

// Records every step of the DataBases it is attached to, in order.
class StatementTrace {
public:
    // Starts recording db's steps (replacing any observer db had).
    void Attach(DataBase& db);
    static void Detach(DataBase& db);

    const std::vector<TraceStep>& Steps() const noexcept { return steps_; }
    std::size_t Size() const noexcept { return steps_.size(); }
    // The number of commands executed in steps [first, last).
    long Statements(std::size_t first, std::size_t last) const;
    long Statements() const { return Statements(0, steps_.size()); }
    void Clear() { steps_.clear(); }

private:
    std::vector<TraceStep> steps_;
};

// How a replay treats the recorded transaction steps.
enum class Transactions { AsRecorded, OneForAll };

class BareServerConnection;

// Recorded steps made ready to run on one DataBase: the row sets are looked
// up once beforehand, so a run does nothing but the database's own work. The
// steps must outlive the replay. When db's target is a server the steps run
// on a bare libpq connection to it instead (the same statement texts,
// prepared once per connection, and the same transaction statements), opened
// on the first run.
class Replay {
public:
    Replay(DataBase& db, const std::vector<TraceStep>& steps,
           Transactions transactions = Transactions::AsRecorded);
    ~Replay();

    // Runs steps [first, last) of the recording (indexes into it), or all of
    // them. With OneForAll the recorded transaction and savepoint steps are
    // left out and the run is one transaction. Answers a checksum of the values read.
    std::size_t Run(std::size_t first, std::size_t last);
    std::size_t Run() { return Run(0, steps_.size()); }

    // The exchanges with the database of the last run: statements executed,
    // transaction steps, and on a server the statements prepared.
    long RoundTrips() const noexcept { return roundTrips_; }

private:
    std::size_t RunOnServer(std::size_t first, std::size_t last);

    struct Prepared {
        const TraceStep* step;
        RowSet* rows;
    };

    DataBase& db_;
    std::vector<Prepared> steps_;
    Transactions transactions_;
    std::unique_ptr<BareServerConnection> server_;
    long roundTrips_ = 0;
};

}  // namespace dbn::bench

#pragma once

#include <string>
#include <utility>
#include <vector>

namespace dbn {

// One step of a batch: a catalogue command with its arguments (bound as text
// in order), the start or the commit of a writing transaction, or a
// statement of the database layer's own (a savepoint, a row lock), run as it
// stands.
struct BatchStep {
    enum class Kind { Command, BeginTrans, CommitTrans, Statement };
    std::string command;  // a Command's name in the catalogue
    std::vector<std::string> args;
    Kind kind = Kind::Command;
    std::string sql{};    // a Statement's text
    std::string doing{};  // a Statement's name in errors
    int savepoint = 0;    // the number of the savepoint a Statement opens, else 0

    static BatchStep BeginTrans() { return Of(Kind::BeginTrans); }
    static BatchStep CommitTrans() { return Of(Kind::CommitTrans); }
    static BatchStep Statement(std::string doing, std::string sql, int savepoint = 0) {
        BatchStep step = Of(Kind::Statement);
        step.sql = std::move(sql);
        step.doing = std::move(doing);
        step.savepoint = savepoint;
        return step;
    }

private:
    static BatchStep Of(Kind kind) {
        BatchStep step;
        step.kind = kind;
        return step;
    }
};

}  // namespace dbn

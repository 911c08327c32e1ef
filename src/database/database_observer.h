#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace dbn {

// One step of the work done through a DataBase, as its observer sees it.
enum class DataBaseStep {
    Execute,  // a catalogue command ran (command, args)
    Eof,      // row-set reads of the command's row set (column for Field)
    Field,
    MoveNext,
    MoveLast,
    Close,
    BeginTrans,
    CommitTrans,
    RollbackTrans,
    BeginSavepoint,
    ReleaseSavepoint,
    RollbackToSavepoint,
};

struct DataBaseEvent {
    DataBaseStep step;
    std::string_view command;                        // empty for transaction steps
    const std::vector<std::string>* args = nullptr;  // Execute only
    std::string_view column;                         // Field only
};

// Told of every step while set; used to record what a session executes so
// that measurements can replay it.
using DataBaseObserver = std::function<void(const DataBaseEvent&)>;

}  // namespace dbn

#pragma once

#include "database/database_observer.h"
#include "database/field_value.h"

#include <string>
#include <string_view>
#include <vector>

namespace dbn {

// A static row set held in memory: the rows a command returned, read front
// to back. It belongs to its DataBase and is named "rs" + the command name.
class RowSet {
public:
    explicit RowSet(std::string name);

    const std::string& Name() const noexcept { return name_; }
    bool IsOpen() const noexcept { return open_; }

    // True when there is no current row (no rows, or moved past the last).
    bool Eof() const;
    // The current row's value of a column. A closed row set, no current row
    // or an unknown column raise a ComponentError.
    FieldValue Field(std::string_view column) const;
    // The current row's values in column order (Columns()), for readers of
    // whole rows; raises as Field does.
    const std::vector<FieldValue>& CurrentRow() const;
    void MoveNext();
    void MoveLast();
    void Close();
    std::size_t RowCount() const noexcept { return rows_.size(); }
    // The column names, in the order the command returned them.
    const std::vector<std::string>& Columns() const noexcept { return columns_; }

    // Moves the rows out, leaving the row set closed (used by DataBase).
    std::vector<std::vector<FieldValue>> TakeRows();

    // Used by DataBase when a command has run.
    void Open(std::vector<std::string> columns, std::vector<std::vector<FieldValue>> rows);
    // Used by DataBase: reads are reported to observer while it is set.
    void SetObserver(const DataBaseObserver* observer) noexcept { observer_ = observer; }

private:
    bool AtEnd() const;
    void Notify(DataBaseStep step, std::string_view column = {}) const;

    std::string name_;
    const DataBaseObserver* observer_ = nullptr;
    bool open_ = false;
    std::vector<std::string> columns_;
    std::vector<std::vector<FieldValue>> rows_;
    std::size_t position_ = 0;
};

}  // namespace dbn

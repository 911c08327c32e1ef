#include "database/row_set.h"

#include "core/component_error.h"
#include "database/database_errors.h"

#include <algorithm>
#include <cctype>

namespace dbn {
namespace {

bool SameColumnName(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return std::tolower(static_cast<unsigned char>(x)) ==
               std::tolower(static_cast<unsigned char>(y));
    });
}

}  // namespace

RowSet::RowSet(std::string name) : name_(std::move(name)) {}

void RowSet::Notify(DataBaseStep step, std::string_view column) const {
    if (observer_ != nullptr && *observer_) {
        // The row set's name is "rs" + the command's name.
        (*observer_)({step, std::string_view(name_).substr(2), nullptr, column});
    }
}

bool RowSet::AtEnd() const {
    if (!open_) {
        RaiseDatabaseError(kErrObjectClosed, kMsgObjectClosed);
    }
    return position_ >= rows_.size();
}

bool RowSet::Eof() const {
    Notify(DataBaseStep::Eof);
    return AtEnd();
}

FieldValue RowSet::Field(std::string_view column) const {
    Notify(DataBaseStep::Field, column);
    if (!open_) {
        RaiseDatabaseError(kErrObjectClosed, kMsgObjectClosed);
    }
    // Column names are looked up without regard to case, first match wins.
    // The name as spelt bounds the search, as it is almost always spelt so.
    const auto spelt = std::find(columns_.begin(), columns_.end(), column);
    const auto found = std::find_if(columns_.begin(), spelt, [column](const std::string& c) {
        return SameColumnName(c, column);
    });
    if (found == columns_.end()) {
        RaiseDatabaseError(kErrItemNotFound, kMsgItemNotFound);
    }
    if (position_ >= rows_.size()) {
        RaiseDatabaseError(kErrNoCurrentRow, kMsgNoCurrentRow);
    }
    return rows_[position_][static_cast<std::size_t>(found - columns_.begin())];
}

const std::vector<FieldValue>& RowSet::CurrentRow() const {
    for (const std::string& column : columns_) {
        Notify(DataBaseStep::Field, column);
    }
    if (!open_) {
        RaiseDatabaseError(kErrObjectClosed, kMsgObjectClosed);
    }
    if (position_ >= rows_.size()) {
        RaiseDatabaseError(kErrNoCurrentRow, kMsgNoCurrentRow);
    }
    return rows_[position_];
}

void RowSet::MoveNext() {
    Notify(DataBaseStep::MoveNext);
    if (AtEnd()) {
        RaiseDatabaseError(kErrNoCurrentRow, kMsgNoCurrentRow);
    }
    ++position_;
}

void RowSet::MoveLast() {
    Notify(DataBaseStep::MoveLast);
    if (!open_) {
        RaiseDatabaseError(kErrObjectClosed, kMsgObjectClosed);
    }
    if (rows_.empty()) {
        RaiseDatabaseError(kErrNoCurrentRow, kMsgNoCurrentRow);
    }
    position_ = rows_.size() - 1;
}

// Closing a closed row set does nothing, so that clean-up paths may close
// unconditionally.
void RowSet::Close() {
    Notify(DataBaseStep::Close);
    open_ = false;
    columns_.clear();
    rows_.clear();
    position_ = 0;
}

void RowSet::Open(std::vector<std::string> columns, std::vector<std::vector<FieldValue>> rows) {
    columns_ = std::move(columns);
    rows_ = std::move(rows);
    position_ = 0;
    open_ = true;
}

std::vector<std::vector<FieldValue>> RowSet::TakeRows() {
    open_ = false;
    position_ = 0;
    return std::move(rows_);
}

}  // namespace dbn

#pragma once

// Error numbers raised by the database layer. Engine failures that have no
// number of their own below carry SQLite's primary result code (1 to 28).

#include <string>

namespace dbn {

// The source text of every error the database layer raises.
inline constexpr const char* kDatabaseSource = "SQLite";

// The database file checks made when the connection opens.
inline constexpr long kErrDatabaseMissing = 4001;
inline constexpr long kErrDatabaseIsAccessFile = 4002;
inline constexpr long kErrNotConfigurationDatabase = 4003;
inline constexpr long kErrDatabaseIsDirectory = 4004;
inline constexpr long kErrDatabaseLocked = 4005;
inline constexpr long kErrDatabaseReadOnly = 4006;
inline constexpr long kErrDatabaseExists = 4007;
inline constexpr long kErrDatabaseCreate = 4008;

// Misuse of the catalogue.
inline constexpr long kErrUnknownCommand = 4010;
inline constexpr long kErrArgumentCount = 4011;
inline constexpr long kErrCatalogueParameters = 4012;

// Row sets.
inline constexpr long kErrItemNotFound = 3265;
inline constexpr long kErrObjectOpen = 3705;
inline constexpr long kErrObjectClosed = 3704;
inline constexpr long kErrNoCurrentRow = 3021;

inline constexpr const char* kMsgItemNotFound =
    "Item cannot be found in the collection corresponding to the requested name or ordinal.";
inline constexpr const char* kMsgObjectOpen = "Operation is not allowed when the object is open.";
inline constexpr const char* kMsgObjectClosed =
    "Operation is not allowed when the object is closed.";
inline constexpr const char* kMsgNoCurrentRow =
    "There is no current row: the row set is empty or past its last row.";

// Raises a ComponentError with the database layer's source.
[[noreturn]] void RaiseDatabaseError(long number, std::string description);

}  // namespace dbn

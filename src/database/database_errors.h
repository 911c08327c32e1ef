#pragma once

// Error numbers raised by the database layer. Engine failures that have no
// number of their own below carry SQLite's primary result code (1 to 28).

#include <string>

namespace dbn {

// The source text of the errors the database layer raises: the embedded
// engine's, and the server engine's for what the server reports.
inline constexpr const char* kDatabaseSource = "SQLite";
inline constexpr const char* kServerSource = "PostgreSQL";

// The database file checks made when the connection opens.
inline constexpr long kErrDatabaseMissing = 4001;
inline constexpr long kErrDatabaseIsAccessFile = 4002;
inline constexpr long kErrNotConfigurationDatabase = 4003;
inline constexpr long kErrDatabaseIsDirectory = 4004;
inline constexpr long kErrDatabaseLocked = 4005;
inline constexpr long kErrDatabaseReadOnly = 4006;
inline constexpr long kErrDatabaseExists = 4007;
inline constexpr long kErrDatabaseCreate = 4008;
inline constexpr long kErrDatabaseInUse = 4009;
inline constexpr long kErrDatabaseNotRegularFile = 4013;
// Another file took the open file's place (init or copy --force).
inline constexpr long kErrDatabaseReplaced = 4014;

// A database server that cannot be used.
inline constexpr long kErrServerUnreachable = 4020;
inline constexpr long kErrServerLogin = 4021;
inline constexpr long kErrServerDatabaseMissing = 4022;
inline constexpr long kErrSchemaMissing = 4023;
inline constexpr long kErrServerStatement = 4024;
inline constexpr long kErrTargetHasConfiguration = 4025;
// The connection was lost while a commit was on its way: whether it was
// written is not known.
inline constexpr long kErrCommitUncertain = 4026;
// A server connection string that libpq cannot use.
inline constexpr long kErrConnectionString = 4027;
// A copied value outside its column's range.
inline constexpr long kErrValueOutOfRange = 4028;

// True for the failures of the database as a whole (the server or the file
// cannot be used at all), as against a failure of one statement.
inline bool IsDatabaseUnavailable(long number) {
    constexpr long kSqliteIoError = 10;
    constexpr long kSqliteCannotOpen = 14;
    return number == kErrServerUnreachable || number == kErrServerLogin ||
           number == kErrCommitUncertain || number == kErrDatabaseMissing ||
           number == kErrDatabaseLocked || number == kSqliteIoError || number == kSqliteCannotOpen;
}
// A schema newer than this program knows.
inline constexpr long kErrSchemaTooNew = 4030;

// Misuse of the catalogue.
inline constexpr long kErrUnknownCommand = 4010;
inline constexpr long kErrArgumentCount = 4011;
inline constexpr long kErrCatalogueParameters = 4012;
// A step that the batch operation it was given to does not take: a read
// given to QueueWrite, a write given to ReadAhead.
inline constexpr long kErrNotAnActionCommand = 4015;
inline constexpr long kErrNotARowReturningCommand = 4016;

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
// The same with the server engine's source.
[[noreturn]] void RaiseServerError(long number, std::string description);

// "The configuration database "NAME" is locked by another program. ..." for
// either engine.
[[noreturn]] void RaiseLockedError(const std::string& name, const char* source);

}  // namespace dbn

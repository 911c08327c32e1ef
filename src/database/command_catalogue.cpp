#include "database/command_catalogue.h"

#include <algorithm>

namespace dbn {
namespace {

// The statement texts are kept byte for byte as the configuration database's
// catalogue stores them (spacing, parentheses, grave accents, stray blanks);
// the SQLite form is derived from them at run time.
// clang-format off
constexpr CatalogueCommand kCommands[] = {
    // Row-returning commands.
    {"Get_Node_Names", CommandKind::RowReturning, 0,
     R"sql(SELECT * FROM SR_Node_Type_Names ORDER BY ID)sql"},
    {"Get_Max_NodeNumber", CommandKind::RowReturning, 3,
     R"sql(SELECT Node_Type_Max.* FROM Node_Type_Max WHERE Config_ID = `Given_ConfigID` AND PartitionID = `Given_PartID` AND NodeType_ID = `Given_NodeTypeID` ORDER BY NodeType_ID)sql"},
    {"Get_Node_Type_can_contain_nodes", CommandKind::RowReturning, 2,
     R"sql(SELECT * FROM SR_Node_Type_can_contain_Node_Type WHERE (Parent_Node_Type_ID = Given_NodeTypeID) AND (Set_ID = Given_SetID) ORDER BY Parent_Node_Type_ID, Child_Node_Type_ID)sql"},
    {"Get_All_DBN_Nodes", CommandKind::RowReturning, 3,
     R"sql(SELECT * FROM Node_DBN WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeTypeID = `Given_NodeTypeID` ORDER BY NodeNumber)sql"},
    {"Get_DBN_Node", CommandKind::RowReturning, 4,
     R"sql(SELECT Node_DBN.* FROM Node_DBN WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeNumber = `Given_NodeNumber` AND NodeTypeID = `Given_NodeTypeID`)sql"},
    {"Get_DBN_PromptsNode", CommandKind::RowReturning, 3,
     R"sql(SELECT Detail_DBN_Prompts.* FROM Detail_DBN_Prompts WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeMasterID = `Given_NodeMasterID` ORDER BY PromptNumber)sql"},
    {"Get_Description", CommandKind::RowReturning, 4,
     R"sql(SELECT * FROM Node_General_Pool WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeTypeID = `Given_NodeTypeID` AND NodeNumber = `Given_NodeNumber`)sql"},
    // The directory check: a directory node and its names.
    {"Get_DIR_Node", CommandKind::RowReturning, 4,
     R"sql(SELECT Node_DIR.* FROM Node_DIR WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeNumber = `Given_NodeNumber` AND NodeTypeID = `Given_NodeTypeID`)sql"},
    {"Get_DIR_Names", CommandKind::RowReturning, 3,
     R"sql(SELECT SequenceNo, LastName, FirstName, Extension FROM Detail_DIR WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeMasterID = `Given_NodeMasterID` ORDER BY SequenceNo)sql"},
    // The configurations and partitions that hold nodes of a type (the node list).
    {"Get_Partitions_With_Nodes", CommandKind::RowReturning, 1,
     R"sql(SELECT DISTINCT ConfigID, PartID FROM Node_DBN WHERE NodeTypeID = `Given_NodeTypeID` ORDER BY ConfigID, PartID)sql"},
    // The configurations and partitions that have node limits at all.
    {"Get_Configured_Partitions", CommandKind::RowReturning, 0,
     R"sql(SELECT DISTINCT Config_ID, PartitionID FROM Node_Type_Max ORDER BY Config_ID, PartitionID)sql"},
    // A whole partition at once (the node list): every pool row, and every
    // prompt row of its dial-by-name nodes.
    {"Get_Partition_Pool", CommandKind::RowReturning, 2,
     R"sql(SELECT * FROM Node_General_Pool WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` ORDER BY NodeTypeID, NodeNumber)sql"},
    {"Get_Partition_DBN_Prompts", CommandKind::RowReturning, 2,
     R"sql(SELECT Detail_DBN_Prompts.* FROM Detail_DBN_Prompts WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` ORDER BY NodeMasterID, PromptNumber)sql"},
    // Action commands of the save.
    {"Update_DBN_Node_Part1", CommandKind::Action, 39,
     R"sql(UPDATE Node_DBN SET NodeDescription = `GIVEN_NodeDescription`, Method = `Given_Method`, DirectoryNodeNumber = `GIVEN_DirectoryNodeNumber`, FirstLanguage = `GIVEN_FirstLanguage`, SecondLanguage = `GIVEN_SecondLanguage`, GreetingNodeType = `GIVEN_GreetingNodeType`, GreetingNodeNumber = `GIVEN_GreetingNodeNumber`, GreetingNodeTypeID = `GIVEN_GreetingNodeTypeID`, ValidMatchNodeType = `GIVEN_ValidMatchNodeType`, ValidMatchNodeNumber = `GIVEN_ValidMatchNodeNumber`, ValidMatchNodeTypeID = `GIVEN_ValidMatchNodeTypeID`, AbortNodeType = `GIVEN_AbortNodeType`, AbortNodeNumber = `GIVEN_AbortNodeNumber`, AbortNodeTypeID = `GIVEN_AbortNodeTypeID`, StarNodeType = `GIVEN_StarNodeType`, StarNodeNumber = `GIVEN_StarNodeNumber`, StarNodeTypeID = `GIVEN_StarNodeTypeID`, PoundNodeType = `GIVEN_PoundNodeType`, PoundNodeNumber = `GIVEN_PoundNodeNumber`, PoundNodeTypeID = `GIVEN_PoundNodeTypeID`, ZeroNodeType = `GIVEN_ZeroNodeType`, ZeroNodeNumber = `GIVEN_ZeroNodeNumber`, ZeroNodeTypeID = `GIVEN_ZeroNodeTypeID`, FirstMode = `GIVEN_FirstMode`, FirstMinDigits = `GIVEN_FirstMinDigits`, FirstMaxDigits = `GIVEN_FirstMaxDigits`, FirstPromptNodeType = `GIVEN_FirstPromptNodeType`, FirstPromptNodeNumber = `GIVEN_FirstPromptNodeNumber`, FirstPromptNodeTypeID = `GIVEN_FirstPromptNodeTypeID`, SecondMode = `GIVEN_SecondMode`, SecondMinDigits = `GIVEN_SecondMinDigits `, SecondMaxDigits = `GIVEN_SecondMaxDigits`, SecondPromptNodeType = `GIVEN_SecondPromptNodeType`, SecondPromptNodeNumber = `GIVEN_SecondPromptNodeNumber`, SecondPromptNodeTypeID = `GIVEN_SecondPromptNodeTypeID` WHERE (ConfigID = Given_ConfigID) AND (PartID = Given_PartID) AND (NodeTypeID = Given_NodeTypeID) AND (NodeNumber = Given_NodeNumber))sql"},
    {"Update_DBN_Node_Part2", CommandKind::Action, 36,
     R"sql(UPDATE Node_DBN SET TimeoutNodeType = `GIVEN_TimeoutNodeType`, TimeoutNodeNumber = `GIVEN_TimeoutNodeNumber`, TimeoutNodeTypeID = `GIVEN_TimeoutNodeTypeID`, InvalidNodeType = `GIVEN_InvalidNodeType`, InvalidNodeNumber = `GIVEN_InvalidNodeNumber`, InvalidNodeTypeID = `GIVEN_InvalidNodeTypeID`, DigitTimeout = `GIVEN_DigitTimeout`, SelectionTimeout = `GIVEN_SelectionTimeout`, RetryLimit = `GIVEN_RetryLimit`, Confirm = `GIVEN_Confirm`, MaxMatch = `GIVEN_MaxMatch`, PlayName = `GIVEN_PlayName`, BeforePromptNodeType = `GIVEN_BeforePromptNodeType`, BeforePromptNodeNumber = `GIVEN_BeforePromptNodeNumber`, BeforePromptNodeTypeID = `GIVEN_BeforePromptNodeTypeID`, AfterPromptNodeType = `GIVEN_AfterPromptNodeType`, AfterPromptNodeNumber = `GIVEN_AfterPromptNodeNumber`, AfterPromptNodeTypeID = `GIVEN_AfterPromptNodeTypeID`, ConfirmationExitNodeType = `GIVEN_ConfirmationExitNodeType`, ConfirmationExitNodeNumber = `GIVEN_ConfirmationExitNodeNumber`, ConfirmationExitNodeTypeID = `GIVEN_ConfirmationExitNodeTypeID`, Reserved1 = `GIVEN_Reserved1`, Reserved2 = `GIVEN_Reserved2`, Reserved3 = `GIVEN_Reserved3`, Reserved4 = `GIVEN_Reserved4`, Reserved5 = `GIVEN_Reserved5`, Reserved6 = `GIVEN_Reserved6`, Reserved7 = `GIVEN_Reserved7`, Reserved8 = `GIVEN_Reserved8`, Reserved9 = `GIVEN_Reserved9`, Reserved10 = `GIVEN_Reserved10`, NodeType = `GIVEN_NodeType` WHERE (ConfigID = Given_ConfigID) AND (PartID = Given_PartID) AND (NodeTypeID = Given_NodeTypeID) AND (NodeNumber = Given_NodeNumber))sql"},
    {"Add_Node_History", CommandKind::Action, 15,
     R"sql(INSERT INTO Node_History (EntryID, ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, ChangedAt, OsUser, Host, DbUser, Program, Kind, Changes, ChangeText, StateBefore, StateAfter) SELECT COALESCE(MAX(EntryID), 0) + 1, `Given_ConfigID`, `Given_PartID`, `Given_NodeTypeID`, `Given_NodeNumber`, `Given_NodeType`, `Given_ChangedAt`, `Given_OsUser`, `Given_Host`, `Given_DbUser`, `Given_Program`, `Given_Kind`, `Given_Changes`, `Given_ChangeText`, `Given_StateBefore`, `Given_StateAfter` FROM Node_History)sql"},
    {"Get_Node_History_Changes", CommandKind::RowReturning, 5,
     R"sql(SELECT EntryID, ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, ChangedAt, OsUser, Host, DbUser, Program, Kind, Changes, ChangeText FROM Node_History WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeTypeID = `Given_NodeTypeID` AND NodeNumber = `Given_NodeNumber` ORDER BY EntryID DESC LIMIT CAST(`Given_Limit` AS BIGINT))sql"},
    {"Get_Node_History", CommandKind::RowReturning, 5,
     R"sql(SELECT * FROM Node_History WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeTypeID = `Given_NodeTypeID` AND NodeNumber = `Given_NodeNumber` ORDER BY EntryID DESC LIMIT CAST(`Given_Limit` AS BIGINT))sql"},
    {"Get_History_Entry", CommandKind::RowReturning, 1,
     R"sql(SELECT * FROM Node_History WHERE EntryID = `Given_EntryID`)sql"},
    {"Get_History_After", CommandKind::RowReturning, 1,
     R"sql(SELECT * FROM Node_History WHERE EntryID > `Given_EntryID` ORDER BY EntryID)sql"},
    {"Get_Last_History_Entry", CommandKind::RowReturning, 0,
     R"sql(SELECT COALESCE(MAX(EntryID), 0) AS LastEntry FROM Node_History)sql"},
    {"Delete_DBN_PromptsNode", CommandKind::Action, 3,
     R"sql(DELETE FROM Detail_DBN_Prompts WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeMasterID = `Given_NodeMasterID`)sql"},
    {"Add_DBN_PromptsNode", CommandKind::Action, 7,
     R"sql(INSERT INTO Detail_DBN_Prompts (ConfigID, PartID, PromptNumber, PromptNodeTypeID, PromptNodeNumber, NodeMasterID, PromptNodeType) VALUES (`Given_ConfigID`, `Given_PartID`, `Given_PromptNumber`, `Given_PromptNodeTypeID`, `Given_PromptNodeNumber`, `Given_PromptNodeMasterID`, `Given_NodeType`))sql"},
    {"Update_Node_General_Pool", CommandKind::Action, 6,
     R"sql(UPDATE Node_General_Pool SET NodeDescription = `Given_Description`, DateModified = `Given_DateModified` WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeTypeID = `Given_NodeTypeID` AND NodeNumber =`Given_NodeNumber`)sql"},
    // Action commands that copy a template node under a new number.
    {"Duplicate_MSG_NODE", CommandKind::Action, 5,
     R"sql(INSERT INTO Node_MSG (ConfigID, PartID, NodeTypeID, NodeNumber, MaxLength, OnOff, DTMF, `Password`, Directory, OrvFilename, Comment, SkipCount, Permission, WarningTone, LineAssignment, NodeType, NodeDescription, MSGArchive) SELECT ConfigID, PartID, NodeTypeID, Given_DesNodeNumber, MaxLength, OnOff, DTMF, `Password`, Directory, Given_OrvFilename, Comment, SkipCount, Permission, WarningTone, LineAssignment, NodeType, NodeDescription, MSGArchive FROM Node_MSG WHERE (ConfigID = Given_ConfigID) AND (PartID = Given_PartID) AND (NodeNumber = Given_NodeNumber))sql"},
    {"Duplicate_CMD_NODE", CommandKind::Action, 4,
     R"sql(INSERT INTO `Node_CMD` (ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription) SELECT ConfigID, PartID, NodeTypeID, `Given_DesNodeNumber`, NodeType, NodeDescription FROM Node_CMD WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeNumber = `Given_NodeNumber`)sql"},
    {"Duplicate_Detail_CMD_NODE", CommandKind::Action, 4,
     R"sql(INSERT INTO `Detail_CMD` (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID, NodeType) SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, `Given_DesNodeMasterID`, NodeType FROM Detail_CMD WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeMasterID = `Given_NodeMasterID`)sql"},
    {"Duplicate_TIME_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO `Node_TIME` (ConfigID, PartID, NodeTypeID, NodeNumber, StartTime, StopTime, NodeType, NodeDescription) SELECT ConfigID, PartID, NodeTypeID, `Given_DesNodeNumber`, StartTime, StopTime, NodeType, NodeDescription FROM Node_TIME WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartitionID` AND NodeNumber = `Given_NodeNumber`)sql"},
    {"Duplicate_Detail_TIME_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO `Detail_TIME` (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID, NodeType) SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, `Given_DesNodeMasterID`, NodeType FROM Detail_TIME WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartitionID` AND NodeMasterID = `Given_NodeMasterID`)sql"},
    {"Duplicate_DATE_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO `Node_DATE` (ConfigID, PartID, NodeTypeID, NodeNumber, Mode, StartDay, StopDay, StartDate, StopDate, NodeType, NodeDescription) SELECT ConfigID, PartID, NodeTypeID, `Given_DesNodeNumber`, Mode, StartDay, StopDay, StartDate, StopDate, NodeType, NodeDescription FROM Node_DATE WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeNumber = `Given_NodeNumber`)sql"},
    {"Duplicate_Detail_DATE_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO `Detail_DATE` (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID, NodeType) SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, `Given_DesNodeMasterID`, NodeType FROM Detail_DATE WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeMasterID = `Given_NodeMasterID`)sql"},
    {"Duplicate_XFER_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO `Node_XFER` (ConfigID, PartID, NodeTypeID, NodeNumber, StyleNodeNumber, HoldNodeType, HoldNodeNumber, Dial, MOHNodeType, MOHNodeNumber, Busy1NodeType, Busy1NodeNumber, Busy2NodeType, Busy2NodeNumber, NoAnswerNodeType, NoAnswerNodeNumber, AnswerNodeType, AnswerNodeNumber, NodeType, NodeDescription) SELECT ConfigID, PartID, NodeTypeID, `Given_DesNodeNumber`, StyleNodeNumber, HoldNodeType, HoldNodeNumber, Dial, MOHNodeType, MOHNodeNumber, Busy1NodeType, Busy1NodeNumber, Busy2NodeType, Busy2NodeNumber, NoAnswerNodeType, NoAnswerNodeNumber, AnswerNodeType, AnswerNodeNumber, NodeType, NodeDescription FROM Node_XFER WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeNumber = `Given_NodeNumber`)sql"},
    {"Duplicate_DTMF_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO `Node_DTMF` (ConfigID, PartID, NodeTypeID, NodeNumber, DTMFClear, NumberOfDigits, TerminatingDigit, SelectionTimeout, DigitTimeout, RetryLimit, TimeoutNodeType, TimeoutNodeNumber, InvalidNodeType, InvalidNodeNumber, AbortNodeType, AbortNodeNumber, NodeType, NodeDescription, TimeoutNodeTypeID, InvalidNodeTypeID, AbortNodeTypeID) SELECT ConfigID, PartID, NodeTypeID, `Given_DesNodeNumber`, DTMFClear, NumberOfDigits, TerminatingDigit, SelectionTimeout, DigitTimeout, RetryLimit, TimeoutNodeType, TimeoutNodeNumber, InvalidNodeType, InvalidNodeNumber, AbortNodeType, AbortNodeNumber, NodeType, NodeDescription, TimeoutNodeTypeID, InvalidNodeTypeID, AbortNodeTypeID FROM Node_DTMF WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartitionID` AND NodeNumber = `Given_NodeNumber`)sql"},
    {"Duplicate_DetailPrompts_DTMF_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO `Detail_DTMF_Prompts` (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID, NodeType) SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber,`Given_DesNodeMasterID`, NodeType FROM Detail_DTMF_Prompts WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeMasterID = `Given_NodeMasterID`)sql"},
    {"Duplicate_DetailActions_DTMF_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO `Detail_DTMF_Action` (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID, DTMFDigitCollected, NodeType) SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, `Given_DesNodeMasterID`, DTMFDigitCollected, NodeType FROM Detail_DTMF_Action WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeMasterID = `Given_NodeMasterID`)sql"},
    {"Duplicate_VOX_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO `Node_VOX` (ConfigID, PartID, NodeTypeID, NodeNumber, Beep, Threshold, Wait, RetryLimit, TimeoutNodeType, TimeoutNodeNumber, AbortNodeType, AbortNodeNumber, DTMFNodeType, DTMFNodeNumber, NodeType, NodeDescription, TimeoutNodeTypeID, AbortNodeTypeID, DTMFNodeTypeID) SELECT ConfigID, PartID, NodeTypeID, `Given_DesNodeNumber`, Beep, Threshold, Wait, RetryLimit, TimeoutNodeType, TimeoutNodeNumber, AbortNodeType, AbortNodeNumber, DTMFNodeType, DTMFNodeNumber, NodeType, NodeDescription, TimeoutNodeTypeID, AbortNodeTypeID, DTMFNodeTypeID FROM Node_VOX WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeNumber = `Given_NodeNumber`)sql"},
    {"Duplicate_DetailPrompts_VOX_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO `Detail_VOX_Prompts` (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID, NodeType) SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, `Given_DesNodeMasterID`, NodeType FROM Detail_VOX_Prompts WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeMasterID = `Given_NodeMasterID` )sql"},
    {"Duplicate_DetailActions_VOX_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO `Detail_VOX_Action` (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID, PromptNodeType, PromptNodeNumber, NodeType, PromptNodeTypeID) SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, `Given_DesNodeMasterID`, PromptNodeType, PromptNodeNumber, NodeType, PromptNodeTypeID FROM Detail_VOX_Action WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeMasterID = `Given_NodeMasterID`)sql"},
    {"Duplicate_LIST_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO `Node_LIST` (ConfigID, PartID, NodeTypeID, NodeNumber, ListMode, NodeType, NodeDescription) SELECT ConfigID, PartID, NodeTypeID, `Given_DesNodeNumber`, ListMode, NodeType, NodeDescription FROM Node_LIST WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartitionID` AND NodeNumber = `Given_NodeNumber`)sql"},
    {"Duplicate_Detail_LIST_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO `Detail_LIST` (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID, NodeType) SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, `Given_DesNodeMasterID`, NodeType FROM Detail_LIST WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartitionID` AND NodeMasterID = `Given_NodeMasterID`)sql"},
    {"Duplicate_AUTO_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO Node_AUTO (ConfigID, PartID, NodeTypeID, NodeNumber, NumberOfDigits, TerminatingDigit, SelectionTimeout, DigitTimeout, RetryLimit, TimeoutNodeType, TimeoutNodeNumber, InvalidNodeType, InvalidNodeNumber, AbortNodeType, AbortNodeNumber, NodeType, NodeDescription, TimeoutNodeTypeID, InvalidNodeTypeID, AbortNodeTypeID, StarNodeTypeID, PoundNodeTypeID, StarNodeType, StarNodeNumber, PoundNodeType, PoundNodeNumber) SELECT ConfigID, PartID, NodeTypeID, `Given_DesNodeNumber`, NumberOfDigits, TerminatingDigit, SelectionTimeout, DigitTimeout, RetryLimit, TimeoutNodeType, TimeoutNodeNumber, InvalidNodeType, InvalidNodeNumber, AbortNodeType, AbortNodeNumber, NodeType, NodeDescription, TimeoutNodeTypeID, InvalidNodeTypeID, AbortNodeTypeID, StarNodeTypeID, PoundNodeTypeID, StarNodeType, StarNodeNumber, PoundNodeType, PoundNodeNumber FROM Node_AUTO WHERE (ConfigID = Given_ConfigID) AND (PartID = Given_PartID) AND NodeNumber = `Given_NodeNumber`)sql"},
    {"Duplicate_DetailPrompts_AUTO_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO `Detail_AUTO_Prompts` (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID, NodeType) SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, `Given_DesNodeMasterID`, NodeType FROM Detail_AUTO_Prompts WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeMasterID = `Given_NodeMasterID`)sql"},
    {"Duplicate_DetailActions_AUTO_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO `Detail_AUTO_Action` (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID, DTMFRangeLow, DTMFRangeHigh, NodeType) SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, `Given_DesNodeMasterID`, DTMFRangeLow, DTMFRangeHigh, NodeType FROM Detail_AUTO_Action WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeMasterID = `Given_NodeMasterID`)sql"},
    {"Duplicate_PAAS_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO `Node_PAAS` (ConfigID, PartID, NodeTypeID, NodeNumber, Card, Line, Priority, Interrupt, NodeType, NodeDescription) SELECT ConfigID, PartID, NodeTypeID, `Given_DesNodeNumber`, Card, Line, Priority, Interrupt, NodeType, NodeDescription FROM Node_PAAS WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeNumber = `Given_NodeNumber`)sql"},
    {"Duplicate_TABLE_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO Node_TABLE (ConfigID, PartID, NodeTypeID, NodeNumber, Mode, Reference, InvalidNodeType, InvalidNodeNumber, InvalidNodeTypeID, ContinueNodeType, ContinueNodeNumber, ContinueNodeTypeID, NodeType, NodeDescription) SELECT ConfigID, PartID, NodeTypeID,`Given_DesNodeNumber`, Mode, Reference, InvalidNodeType, InvalidNodeNumber, InvalidNodeTypeID, ContinueNodeType, ContinueNodeNumber, ContinueNodeTypeID, NodeType, NodeDescription FROM Node_TABLE WHERE (ConfigID = `Given_ConfigID`) AND (PartID = `Given_PartID`) AND NodeNumber = `Given_NodeNumber`)sql"},
    {"Duplicate_DetailActions_TABLE_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO Detail_TABLE_Action (ConfigID, PartID, SequenceNo, NodeType, NodeNumber, NodeTypeID, StartRange, EndRange, NodeMasterID) SELECT ConfigID, PartID, SequenceNo, NodeType, NodeNumber, NodeTypeID, StartRange, EndRange, `Given_DesNodeMasterID` FROM Detail_TABLE_Action WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartitionID` AND NodeMasterID = `Given_NodeMasterID`)sql"},
    {"Duplicate_Node_In_General_Pool", CommandKind::Action, 6,
     R"sql(INSERT INTO Node_General_Pool (ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription, DateModified) SELECT ConfigID, PartID, NodeTypeID, `Given_DesNodeNumber`, NodeType, NodeDescription, `Given_DateModified` FROM Node_General_Pool WHERE (ConfigID = Given_ConfigID) AND (PartID = Given_PartID) AND (NodeNumber = Given_NodeNumber) AND NodeTypeID = `Given_NodeTypeID`)sql"},
    {"Duplicate_DBN_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO Node_DBN(ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription, Method, DirectoryNodeNumber, FirstLanguage, SecondLanguage, GreetingNodeType, GreetingNodeNumber, GreetingNodeTypeID, ValidMatchNodeType, ValidMatchNodeNumber, ValidMatchNodeTypeID, AbortNodeType, AbortNodeNumber, AbortNodeTypeID, StarNodeType, StarNodeNumber, StarNodeTypeID, PoundNodeType, PoundNodeNumber, PoundNodeTypeID, ZeroNodeType, ZeroNodeNumber, ZeroNodeTypeID, FirstMode, FirstMinDigits, FirstMaxDigits, FirstPromptNodeType, FirstPromptNodeNumber, FirstPromptNodeTypeID, SecondMode, SecondMinDigits, SecondMaxDigits, SecondPromptNodeType, SecondPromptNodeNumber, SecondPromptNodeTypeID, TimeoutNodeType, TimeoutNodeNumber, TimeoutNodeTypeID, InvalidNodeType, InvalidNodeNumber, InvalidNodeTypeID, DigitTimeout, SelectionTimeout, RetryLimit, Confirm, MaxMatch, PlayName, BeforePromptNodeType, BeforePromptNodeNumber, BeforePromptNodeTypeID, AfterPromptNodeType, AfterPromptNodeNumber, AfterPromptNodeTypeID, ConfirmationExitNodeType, ConfirmationExitNodeNumber, ConfirmationExitNodeTypeID, Reserved1, Reserved2, Reserved3, Reserved4, Reserved5, Reserved6, Reserved7, Reserved8, Reserved9, Reserved10) SELECT ConfigID, PartID, NodeTypeID, Given_DesNodeNumber, NodeType, NodeDescription, Method, DirectoryNodeNumber, FirstLanguage, SecondLanguage, GreetingNodeType, GreetingNodeNumber, GreetingNodeTypeID, ValidMatchNodeType, ValidMatchNodeNumber, ValidMatchNodeTypeID, AbortNodeType, AbortNodeNumber, AbortNodeTypeID, StarNodeType, StarNodeNumber, StarNodeTypeID, PoundNodeType, PoundNodeNumber, PoundNodeTypeID, ZeroNodeType, ZeroNodeNumber, ZeroNodeTypeID, FirstMode, FirstMinDigits, FirstMaxDigits, FirstPromptNodeType, FirstPromptNodeNumber, FirstPromptNodeTypeID, SecondMode, SecondMinDigits, SecondMaxDigits, SecondPromptNodeType, SecondPromptNodeNumber, SecondPromptNodeTypeID, TimeoutNodeType, TimeoutNodeNumber, TimeoutNodeTypeID, InvalidNodeType, InvalidNodeNumber, InvalidNodeTypeID, DigitTimeout, SelectionTimeout, RetryLimit, Confirm, MaxMatch, PlayName, BeforePromptNodeType, BeforePromptNodeNumber, BeforePromptNodeTypeID, AfterPromptNodeType, AfterPromptNodeNumber, AfterPromptNodeTypeID, ConfirmationExitNodeType, ConfirmationExitNodeNumber, ConfirmationExitNodeTypeID, Reserved1, Reserved2, Reserved3, Reserved4, Reserved5, Reserved6, Reserved7, Reserved8, Reserved9, Reserved10 FROM Node_DBN WHERE (ConfigID = Given_ConfigID) AND (PartID = Given_PartID) AND (NodeNumber = Given_NodeNumber))sql"},
    {"Duplicate_DetailPrompts_DBN_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO `Detail_DBN_Prompts` (ConfigID, PartID, PromptNumber, PromptNodeTypeID, PromptNodeNumber, NodeMasterID, PromptNodeType) SELECT ConfigID, PartID, PromptNumber, PromptNodeTypeID, PromptNodeNumber, `Given_DesNodeMasterID`, PromptNodeType FROM Detail_DBN_Prompts WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartID` AND NodeMasterID = `Given_NodeMasterID`)sql"},
    {"Duplicate_Detail_PAAS_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO `Detail_PAAS` (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID, NodeType) SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, `Given_DesNodeMasterID`, NodeType FROM Detail_PAAS WHERE ConfigID = `Given_ConfigID` AND PartID = `Given_PartitionID` AND NodeMasterID = `Given_NodeMasterID`)sql"},
    {"Duplicate_DIR_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO Node_DIR(ConfigID, PartID, NodeTypeID, NodeNumber, AccessCode, UsePasswords, NodeType, NodeDescription, StartingPromptNumber) SELECT ConfigID, PartID, NodeTypeID, Given_DesNodeNumber, AccessCode, UsePasswords, NodeType, NodeDescription, StartingPromptNumber FROM Node_DIR WHERE (ConfigID = Given_ConfigID) AND (PartID = Given_PartitionID) AND (NodeNumber = Given_NodeNumber))sql"},
    {"Duplicate_Detail_DIR_Node", CommandKind::Action, 4,
     R"sql(INSERT INTO Detail_DIR (ConfigID, PartID, SequenceNo, LastName, FirstName, Extension, NamePrompt, `Password`, NodeMasterID) SELECT ConfigID, PartID, SequenceNo, LastName, FirstName, Extension, NamePrompt, `Password`, ` Given_DesNodeMasterID` FROM Detail_DIR WHERE (ConfigID = Given_ConfigID) AND (PartID = Given_PartID) AND (NodeMasterID = Given_NodeMasterID))sql"},
};
// clang-format on

}  // namespace

std::span<const CatalogueCommand> CommandCatalogue() {
    return kCommands;
}

const CatalogueCommand* FindCatalogueCommand(std::string_view name) {
    const auto* found = std::find_if(std::begin(kCommands), std::end(kCommands),
                                     [name](const CatalogueCommand& c) { return c.name == name; });
    return found == std::end(kCommands) ? nullptr : found;
}

}  // namespace dbn

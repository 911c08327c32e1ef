-- Configuration database: every table the editor reads, writes or copies rows within.
-- Whole numbers are INTEGER so that arguments bound as text convert on comparison
-- and storage; type codes, descriptions, names and times are TEXT. The tables are
-- STRICT: a value that does not convert to its column's type (an empty text for a
-- number) fails the statement instead of being stored as it came.
-- Value ranges, the same on both engines (the server's tables are made from
-- this schema): key columns that are configuration, partition, node-type or
-- node numbers are 16-bit, sequence numbers 32-bit, each stated by its CHECK;
-- every other whole number is 64-bit.

-- Node-type catalogue: the type code of every node type.
CREATE TABLE SR_Node_Type_Names (
    ID           INTEGER NOT NULL CHECK (ID BETWEEN -32768 AND 32767),
    English_Name TEXT,
    PRIMARY KEY (ID)
) STRICT;

-- Which node types a node type may refer to, per rule set.
CREATE TABLE SR_Node_Type_can_contain_Node_Type (
    Parent_Node_Type_ID INTEGER NOT NULL CHECK (Parent_Node_Type_ID BETWEEN -32768 AND 32767),
    Child_Node_Type_ID  INTEGER NOT NULL CHECK (Child_Node_Type_ID BETWEEN -32768 AND 32767),
    Set_ID              INTEGER NOT NULL CHECK (Set_ID BETWEEN -32768 AND 32767),
    PRIMARY KEY (Parent_Node_Type_ID, Child_Node_Type_ID, Set_ID)
) STRICT;

-- Highest node number allowed per node type and partition.
CREATE TABLE Node_Type_Max (
    Config_ID   INTEGER NOT NULL CHECK (Config_ID BETWEEN -32768 AND 32767),
    PartitionID INTEGER NOT NULL CHECK (PartitionID BETWEEN -32768 AND 32767),
    NodeType_ID INTEGER NOT NULL CHECK (NodeType_ID BETWEEN -32768 AND 32767),
    Max_Number  INTEGER,
    PRIMARY KEY (Config_ID, PartitionID, NodeType_ID)
) STRICT;

-- One row per node of every type.
CREATE TABLE Node_General_Pool (
    ConfigID        INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID          INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    NodeTypeID      INTEGER NOT NULL CHECK (NodeTypeID BETWEEN -32768 AND 32767),
    NodeNumber      INTEGER NOT NULL CHECK (NodeNumber BETWEEN -32768 AND 32767),
    NodeType        TEXT,
    NodeDescription TEXT,
    DateModified    TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeTypeID, NodeNumber)
) STRICT;

-- Dial-by-name nodes.
CREATE TABLE Node_DBN (
    ConfigID                   INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID                     INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    NodeTypeID                 INTEGER NOT NULL CHECK (NodeTypeID BETWEEN -32768 AND 32767),
    NodeNumber                 INTEGER NOT NULL CHECK (NodeNumber BETWEEN -32768 AND 32767),
    NodeType                   TEXT,
    NodeDescription            TEXT,
    Method                     INTEGER,
    DirectoryNodeNumber        INTEGER,
    FirstLanguage              INTEGER,
    SecondLanguage             INTEGER,
    GreetingNodeType           TEXT,
    GreetingNodeNumber         INTEGER,
    GreetingNodeTypeID         INTEGER,
    ValidMatchNodeType         TEXT,
    ValidMatchNodeNumber       INTEGER,
    ValidMatchNodeTypeID       INTEGER,
    AbortNodeType              TEXT,
    AbortNodeNumber            INTEGER,
    AbortNodeTypeID            INTEGER,
    StarNodeType               TEXT,
    StarNodeNumber             INTEGER,
    StarNodeTypeID             INTEGER,
    PoundNodeType              TEXT,
    PoundNodeNumber            INTEGER,
    PoundNodeTypeID            INTEGER,
    ZeroNodeType               TEXT,
    ZeroNodeNumber             INTEGER,
    ZeroNodeTypeID             INTEGER,
    FirstMode                  INTEGER,
    FirstMinDigits             INTEGER,
    FirstMaxDigits             INTEGER,
    FirstPromptNodeType        TEXT,
    FirstPromptNodeNumber      INTEGER,
    FirstPromptNodeTypeID      INTEGER,
    SecondMode                 INTEGER,
    SecondMinDigits            INTEGER,
    SecondMaxDigits            INTEGER,
    SecondPromptNodeType       TEXT,
    SecondPromptNodeNumber     INTEGER,
    SecondPromptNodeTypeID     INTEGER,
    TimeoutNodeType            TEXT,
    TimeoutNodeNumber          INTEGER,
    TimeoutNodeTypeID          INTEGER,
    InvalidNodeType            TEXT,
    InvalidNodeNumber          INTEGER,
    InvalidNodeTypeID          INTEGER,
    DigitTimeout               INTEGER,
    SelectionTimeout           INTEGER,
    RetryLimit                 INTEGER,
    Confirm                    INTEGER,
    MaxMatch                   INTEGER,
    PlayName                   INTEGER,
    BeforePromptNodeType       TEXT,
    BeforePromptNodeNumber     INTEGER,
    BeforePromptNodeTypeID     INTEGER,
    AfterPromptNodeType        TEXT,
    AfterPromptNodeNumber      INTEGER,
    AfterPromptNodeTypeID      INTEGER,
    ConfirmationExitNodeType   TEXT,
    ConfirmationExitNodeNumber INTEGER,
    ConfirmationExitNodeTypeID INTEGER,
    Reserved1                  INTEGER,
    Reserved2                  INTEGER,
    Reserved3                  INTEGER,
    Reserved4                  INTEGER,
    Reserved5                  INTEGER,
    Reserved6                  INTEGER,
    Reserved7                  INTEGER,
    Reserved8                  INTEGER,
    Reserved9                  INTEGER,
    Reserved10                 INTEGER,
    PRIMARY KEY (ConfigID, PartID, NodeTypeID, NodeNumber)
) STRICT;

-- Numbered prompt rows of a dial-by-name node (NodeMasterID = its number).
CREATE TABLE Detail_DBN_Prompts (
    ConfigID         INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID           INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    PromptNumber     INTEGER NOT NULL CHECK (PromptNumber BETWEEN -32768 AND 32767),
    PromptNodeTypeID INTEGER,
    PromptNodeNumber INTEGER,
    NodeMasterID     INTEGER NOT NULL CHECK (NodeMasterID BETWEEN -32768 AND 32767),
    PromptNodeType   TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, PromptNumber)
) STRICT;

-- Action rows of a dial-by-name node; the editor keeps actions in Node_DBN.
CREATE TABLE Detail_DBN_Action (
    ConfigID     INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID       INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    SequenceNo   INTEGER NOT NULL CHECK (SequenceNo BETWEEN -2147483648 AND 2147483647),
    NodeTypeID   INTEGER,
    NodeNumber   INTEGER,
    NodeMasterID INTEGER NOT NULL CHECK (NodeMasterID BETWEEN -32768 AND 32767),
    NodeType     TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT;

-- Tables whose rows the editor copies when it creates a node from its template.

CREATE TABLE Node_MSG (
    ConfigID        INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID          INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    NodeTypeID      INTEGER NOT NULL CHECK (NodeTypeID BETWEEN -32768 AND 32767),
    NodeNumber      INTEGER NOT NULL CHECK (NodeNumber BETWEEN -32768 AND 32767),
    MaxLength       INTEGER,
    OnOff           INTEGER,
    DTMF            INTEGER,
    "Password"      TEXT,
    Directory       TEXT,
    OrvFilename     TEXT,
    Comment         TEXT,
    SkipCount       INTEGER,
    Permission      INTEGER,
    WarningTone     INTEGER,
    LineAssignment  INTEGER,
    NodeType        TEXT,
    NodeDescription TEXT,
    MSGArchive      INTEGER,
    PRIMARY KEY (ConfigID, PartID, NodeTypeID, NodeNumber)
) STRICT;

CREATE TABLE Node_CMD (
    ConfigID        INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID          INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    NodeTypeID      INTEGER NOT NULL CHECK (NodeTypeID BETWEEN -32768 AND 32767),
    NodeNumber      INTEGER NOT NULL CHECK (NodeNumber BETWEEN -32768 AND 32767),
    NodeType        TEXT,
    NodeDescription TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeTypeID, NodeNumber)
) STRICT;

CREATE TABLE Detail_CMD (
    ConfigID     INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID       INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    SequenceNo   INTEGER NOT NULL CHECK (SequenceNo BETWEEN -2147483648 AND 2147483647),
    NodeTypeID   INTEGER,
    NodeNumber   INTEGER,
    NodeMasterID INTEGER NOT NULL CHECK (NodeMasterID BETWEEN -32768 AND 32767),
    NodeType     TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT;

CREATE TABLE Node_TIME (
    ConfigID        INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID          INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    NodeTypeID      INTEGER NOT NULL CHECK (NodeTypeID BETWEEN -32768 AND 32767),
    NodeNumber      INTEGER NOT NULL CHECK (NodeNumber BETWEEN -32768 AND 32767),
    StartTime       TEXT,
    StopTime        TEXT,
    NodeType        TEXT,
    NodeDescription TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeTypeID, NodeNumber)
) STRICT;

CREATE TABLE Detail_TIME (
    ConfigID     INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID       INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    SequenceNo   INTEGER NOT NULL CHECK (SequenceNo BETWEEN -2147483648 AND 2147483647),
    NodeTypeID   INTEGER,
    NodeNumber   INTEGER,
    NodeMasterID INTEGER NOT NULL CHECK (NodeMasterID BETWEEN -32768 AND 32767),
    NodeType     TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT;

CREATE TABLE Node_DATE (
    ConfigID        INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID          INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    NodeTypeID      INTEGER NOT NULL CHECK (NodeTypeID BETWEEN -32768 AND 32767),
    NodeNumber      INTEGER NOT NULL CHECK (NodeNumber BETWEEN -32768 AND 32767),
    Mode            INTEGER,
    StartDay        INTEGER,
    StopDay         INTEGER,
    StartDate       TEXT,
    StopDate        TEXT,
    NodeType        TEXT,
    NodeDescription TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeTypeID, NodeNumber)
) STRICT;

CREATE TABLE Detail_DATE (
    ConfigID     INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID       INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    SequenceNo   INTEGER NOT NULL CHECK (SequenceNo BETWEEN -2147483648 AND 2147483647),
    NodeTypeID   INTEGER,
    NodeNumber   INTEGER,
    NodeMasterID INTEGER NOT NULL CHECK (NodeMasterID BETWEEN -32768 AND 32767),
    NodeType     TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT;

CREATE TABLE Node_XFER (
    ConfigID           INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID             INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    NodeTypeID         INTEGER NOT NULL CHECK (NodeTypeID BETWEEN -32768 AND 32767),
    NodeNumber         INTEGER NOT NULL CHECK (NodeNumber BETWEEN -32768 AND 32767),
    StyleNodeNumber    INTEGER,
    HoldNodeType       TEXT,
    HoldNodeNumber     INTEGER,
    Dial               TEXT,
    MOHNodeType        TEXT,
    MOHNodeNumber      INTEGER,
    Busy1NodeType      TEXT,
    Busy1NodeNumber    INTEGER,
    Busy2NodeType      TEXT,
    Busy2NodeNumber    INTEGER,
    NoAnswerNodeType   TEXT,
    NoAnswerNodeNumber INTEGER,
    AnswerNodeType     TEXT,
    AnswerNodeNumber   INTEGER,
    NodeType           TEXT,
    NodeDescription    TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeTypeID, NodeNumber)
) STRICT;

CREATE TABLE Node_DTMF (
    ConfigID          INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID            INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    NodeTypeID        INTEGER NOT NULL CHECK (NodeTypeID BETWEEN -32768 AND 32767),
    NodeNumber        INTEGER NOT NULL CHECK (NodeNumber BETWEEN -32768 AND 32767),
    DTMFClear         INTEGER,
    NumberOfDigits    INTEGER,
    TerminatingDigit  TEXT,
    SelectionTimeout  INTEGER,
    DigitTimeout      INTEGER,
    RetryLimit        INTEGER,
    TimeoutNodeType   TEXT,
    TimeoutNodeNumber INTEGER,
    InvalidNodeType   TEXT,
    InvalidNodeNumber INTEGER,
    AbortNodeType     TEXT,
    AbortNodeNumber   INTEGER,
    NodeType          TEXT,
    NodeDescription   TEXT,
    TimeoutNodeTypeID INTEGER,
    InvalidNodeTypeID INTEGER,
    AbortNodeTypeID   INTEGER,
    PRIMARY KEY (ConfigID, PartID, NodeTypeID, NodeNumber)
) STRICT;

CREATE TABLE Detail_DTMF_Prompts (
    ConfigID     INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID       INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    SequenceNo   INTEGER NOT NULL CHECK (SequenceNo BETWEEN -2147483648 AND 2147483647),
    NodeTypeID   INTEGER,
    NodeNumber   INTEGER,
    NodeMasterID INTEGER NOT NULL CHECK (NodeMasterID BETWEEN -32768 AND 32767),
    NodeType     TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT;

CREATE TABLE Detail_DTMF_Action (
    ConfigID           INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID             INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    SequenceNo         INTEGER NOT NULL CHECK (SequenceNo BETWEEN -2147483648 AND 2147483647),
    NodeTypeID         INTEGER,
    NodeNumber         INTEGER,
    NodeMasterID       INTEGER NOT NULL CHECK (NodeMasterID BETWEEN -32768 AND 32767),
    DTMFDigitCollected TEXT,
    NodeType           TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT;

CREATE TABLE Node_VOX (
    ConfigID          INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID            INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    NodeTypeID        INTEGER NOT NULL CHECK (NodeTypeID BETWEEN -32768 AND 32767),
    NodeNumber        INTEGER NOT NULL CHECK (NodeNumber BETWEEN -32768 AND 32767),
    Beep              INTEGER,
    Threshold         INTEGER,
    Wait              INTEGER,
    RetryLimit        INTEGER,
    TimeoutNodeType   TEXT,
    TimeoutNodeNumber INTEGER,
    AbortNodeType     TEXT,
    AbortNodeNumber   INTEGER,
    DTMFNodeType      TEXT,
    DTMFNodeNumber    INTEGER,
    NodeType          TEXT,
    NodeDescription   TEXT,
    TimeoutNodeTypeID INTEGER,
    AbortNodeTypeID   INTEGER,
    DTMFNodeTypeID    INTEGER,
    PRIMARY KEY (ConfigID, PartID, NodeTypeID, NodeNumber)
) STRICT;

CREATE TABLE Detail_VOX_Prompts (
    ConfigID     INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID       INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    SequenceNo   INTEGER NOT NULL CHECK (SequenceNo BETWEEN -2147483648 AND 2147483647),
    NodeTypeID   INTEGER,
    NodeNumber   INTEGER,
    NodeMasterID INTEGER NOT NULL CHECK (NodeMasterID BETWEEN -32768 AND 32767),
    NodeType     TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT;

CREATE TABLE Detail_VOX_Action (
    ConfigID         INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID           INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    SequenceNo       INTEGER NOT NULL CHECK (SequenceNo BETWEEN -2147483648 AND 2147483647),
    NodeTypeID       INTEGER,
    NodeNumber       INTEGER,
    NodeMasterID     INTEGER NOT NULL CHECK (NodeMasterID BETWEEN -32768 AND 32767),
    PromptNodeType   TEXT,
    PromptNodeNumber INTEGER,
    NodeType         TEXT,
    PromptNodeTypeID INTEGER,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT;

CREATE TABLE Node_LIST (
    ConfigID        INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID          INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    NodeTypeID      INTEGER NOT NULL CHECK (NodeTypeID BETWEEN -32768 AND 32767),
    NodeNumber      INTEGER NOT NULL CHECK (NodeNumber BETWEEN -32768 AND 32767),
    ListMode        INTEGER,
    NodeType        TEXT,
    NodeDescription TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeTypeID, NodeNumber)
) STRICT;

CREATE TABLE Detail_LIST (
    ConfigID     INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID       INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    SequenceNo   INTEGER NOT NULL CHECK (SequenceNo BETWEEN -2147483648 AND 2147483647),
    NodeTypeID   INTEGER,
    NodeNumber   INTEGER,
    NodeMasterID INTEGER NOT NULL CHECK (NodeMasterID BETWEEN -32768 AND 32767),
    NodeType     TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT;

CREATE TABLE Node_AUTO (
    ConfigID          INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID            INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    NodeTypeID        INTEGER NOT NULL CHECK (NodeTypeID BETWEEN -32768 AND 32767),
    NodeNumber        INTEGER NOT NULL CHECK (NodeNumber BETWEEN -32768 AND 32767),
    NumberOfDigits    INTEGER,
    TerminatingDigit  TEXT,
    SelectionTimeout  INTEGER,
    DigitTimeout      INTEGER,
    RetryLimit        INTEGER,
    TimeoutNodeType   TEXT,
    TimeoutNodeNumber INTEGER,
    InvalidNodeType   TEXT,
    InvalidNodeNumber INTEGER,
    AbortNodeType     TEXT,
    AbortNodeNumber   INTEGER,
    NodeType          TEXT,
    NodeDescription   TEXT,
    TimeoutNodeTypeID INTEGER,
    InvalidNodeTypeID INTEGER,
    AbortNodeTypeID   INTEGER,
    StarNodeTypeID    INTEGER,
    PoundNodeTypeID   INTEGER,
    StarNodeType      TEXT,
    StarNodeNumber    INTEGER,
    PoundNodeType     TEXT,
    PoundNodeNumber   INTEGER,
    PRIMARY KEY (ConfigID, PartID, NodeTypeID, NodeNumber)
) STRICT;

CREATE TABLE Detail_AUTO_Prompts (
    ConfigID     INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID       INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    SequenceNo   INTEGER NOT NULL CHECK (SequenceNo BETWEEN -2147483648 AND 2147483647),
    NodeTypeID   INTEGER,
    NodeNumber   INTEGER,
    NodeMasterID INTEGER NOT NULL CHECK (NodeMasterID BETWEEN -32768 AND 32767),
    NodeType     TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT;

CREATE TABLE Detail_AUTO_Action (
    ConfigID      INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID        INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    SequenceNo    INTEGER NOT NULL CHECK (SequenceNo BETWEEN -2147483648 AND 2147483647),
    NodeTypeID    INTEGER,
    NodeNumber    INTEGER,
    NodeMasterID  INTEGER NOT NULL CHECK (NodeMasterID BETWEEN -32768 AND 32767),
    DTMFRangeLow  INTEGER,
    DTMFRangeHigh INTEGER,
    NodeType      TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT;

CREATE TABLE Node_PAAS (
    ConfigID        INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID          INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    NodeTypeID      INTEGER NOT NULL CHECK (NodeTypeID BETWEEN -32768 AND 32767),
    NodeNumber      INTEGER NOT NULL CHECK (NodeNumber BETWEEN -32768 AND 32767),
    Card            INTEGER,
    Line            INTEGER,
    Priority        INTEGER,
    Interrupt       INTEGER,
    NodeType        TEXT,
    NodeDescription TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeTypeID, NodeNumber)
) STRICT;

CREATE TABLE Detail_PAAS (
    ConfigID     INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID       INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    SequenceNo   INTEGER NOT NULL CHECK (SequenceNo BETWEEN -2147483648 AND 2147483647),
    NodeTypeID   INTEGER,
    NodeNumber   INTEGER,
    NodeMasterID INTEGER NOT NULL CHECK (NodeMasterID BETWEEN -32768 AND 32767),
    NodeType     TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT;

CREATE TABLE Node_TABLE (
    ConfigID           INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID             INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    NodeTypeID         INTEGER NOT NULL CHECK (NodeTypeID BETWEEN -32768 AND 32767),
    NodeNumber         INTEGER NOT NULL CHECK (NodeNumber BETWEEN -32768 AND 32767),
    Mode               INTEGER,
    Reference          TEXT,
    InvalidNodeType    TEXT,
    InvalidNodeNumber  INTEGER,
    InvalidNodeTypeID  INTEGER,
    ContinueNodeType   TEXT,
    ContinueNodeNumber INTEGER,
    ContinueNodeTypeID INTEGER,
    NodeType           TEXT,
    NodeDescription    TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeTypeID, NodeNumber)
) STRICT;

CREATE TABLE Detail_TABLE_Action (
    ConfigID     INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID       INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    SequenceNo   INTEGER NOT NULL CHECK (SequenceNo BETWEEN -2147483648 AND 2147483647),
    NodeType     TEXT,
    NodeNumber   INTEGER,
    NodeTypeID   INTEGER,
    StartRange   INTEGER,
    EndRange     INTEGER,
    NodeMasterID INTEGER NOT NULL CHECK (NodeMasterID BETWEEN -32768 AND 32767),
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT;

CREATE TABLE Node_DIR (
    ConfigID             INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID               INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    NodeTypeID           INTEGER NOT NULL CHECK (NodeTypeID BETWEEN -32768 AND 32767),
    NodeNumber           INTEGER NOT NULL CHECK (NodeNumber BETWEEN -32768 AND 32767),
    AccessCode           TEXT,
    UsePasswords         INTEGER,
    NodeType             TEXT,
    NodeDescription      TEXT,
    StartingPromptNumber INTEGER,
    PRIMARY KEY (ConfigID, PartID, NodeTypeID, NodeNumber)
) STRICT;

CREATE TABLE Detail_DIR (
    ConfigID     INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID       INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    SequenceNo   INTEGER NOT NULL CHECK (SequenceNo BETWEEN -2147483648 AND 2147483647),
    LastName     TEXT,
    FirstName    TEXT,
    Extension    TEXT,
    NamePrompt   TEXT,
    "Password"     TEXT,
    NodeMasterID INTEGER NOT NULL CHECK (NodeMasterID BETWEEN -32768 AND 32767),
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT;

-- One row per change of a node, written in the change's own transaction:
-- who, when, with which program, what changed (as JSON, and as lines for
-- people, so that a long history lists without reading the states), and the
-- node's whole stored state before and after as JSON (empty when there was
-- none). EntryID numbers the changes
-- in the order they were committed.
CREATE TABLE Node_History (
    EntryID     INTEGER NOT NULL,
    ConfigID    INTEGER NOT NULL CHECK (ConfigID BETWEEN -32768 AND 32767),
    PartID      INTEGER NOT NULL CHECK (PartID BETWEEN -32768 AND 32767),
    NodeTypeID  INTEGER NOT NULL CHECK (NodeTypeID BETWEEN -32768 AND 32767),
    NodeNumber  INTEGER NOT NULL CHECK (NodeNumber BETWEEN -32768 AND 32767),
    NodeType    TEXT,
    ChangedAt   TEXT NOT NULL,
    OsUser      TEXT,
    Host        TEXT,
    DbUser      TEXT,
    Program     TEXT,
    Kind        TEXT NOT NULL,
    Changes     TEXT NOT NULL,
    ChangeText  TEXT NOT NULL,
    StateBefore TEXT NOT NULL,
    StateAfter  TEXT NOT NULL,
    PRIMARY KEY (EntryID)
) STRICT;

-- The schema's version: one row. A database without this table is version 1.
CREATE TABLE Schema_Version (
    Version INTEGER NOT NULL,
    PRIMARY KEY (Version)
) STRICT;

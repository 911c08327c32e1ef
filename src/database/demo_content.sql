-- Demo content: configuration 1 of a small live system with two partitions.
-- Partition 1 is the main site, partition 2 a support line where some node
-- types are switched off (limit 0). Every node that a dial-by-name node refers
-- to exists, with its row in Node_General_Pool.

-- Node-type catalogue.
INSERT INTO SR_Node_Type_Names (ID, English_Name) VALUES
    (0, 'MSG'), (1, 'CMD'), (2, 'TIME'), (3, 'DATE'), (4, 'XFER'), (6, 'DTMF'), (7, 'VOX'),
    (8, 'LIST'), (9, 'AUTO'), (12, 'PAAS'), (13, 'TABLE'), (15, 'DBN'), (16, 'DIR'),
    (814, 'NOOP'), (816, 'GOTO'), (817, 'M_ON'), (818, 'M_OFF'), (999, 'HANGUP');

-- A dial-by-name node plays prompts of rule set 1 and continues at
-- instructions of rule set 2.
INSERT INTO SR_Node_Type_can_contain_Node_Type (Parent_Node_Type_ID, Child_Node_Type_ID, Set_ID)
SELECT 15, column1, 1 FROM (VALUES (0), (8), (814));
INSERT INTO SR_Node_Type_can_contain_Node_Type (Parent_Node_Type_ID, Child_Node_Type_ID, Set_ID)
SELECT 15, column1, 2
FROM (VALUES (0), (1), (2), (3), (4), (6), (7), (8), (9), (12), (13), (15), (814), (817), (818));

-- Node-number limits. NOOP, GOTO, M_ON and M_OFF have no row of their own.
INSERT INTO Node_Type_Max (Config_ID, PartitionID, NodeType_ID, Max_Number)
SELECT 1, 1, column1, column2
FROM (VALUES (0, 99), (1, 20), (2, 20), (3, 20), (4, 50), (6, 30), (7, 10), (8, 20), (9, 30),
             (12, 5), (13, 10), (15, 20), (16, 10));
INSERT INTO Node_Type_Max (Config_ID, PartitionID, NodeType_ID, Max_Number)
SELECT 1, 2, column1, column2
FROM (VALUES (0, 50), (1, 0), (2, 0), (3, 10), (4, 20), (6, 10), (7, 0), (8, 0), (9, 10),
             (12, 0), (13, 5), (15, 10), (16, 5));

-- Template nodes: node 0 of every type that can be copied, in both
-- partitions, each with its detail rows.
INSERT INTO Node_MSG (ConfigID, PartID, NodeTypeID, NodeNumber, MaxLength, OnOff, DTMF, "Password",
                      Directory, OrvFilename, Comment, SkipCount, Permission, WarningTone,
                      LineAssignment, NodeType, NodeDescription, MSGArchive)
SELECT 1, column1, 0, 0, 120, 1, 0, '', 'Prompts', printf('P%02dM000.wav', column1),
       'Copied for new message nodes', 0, 0, 0, 0, 'MSG', 'MSG template', 0
FROM (VALUES (1), (2));

INSERT INTO Node_CMD (ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription)
SELECT 1, column1, 1, 0, 'CMD', 'CMD template' FROM (VALUES (1), (2));
INSERT INTO Detail_CMD (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID, NodeType)
SELECT 1, column1, 1, 0, 1, 0, 'MSG' FROM (VALUES (1), (2));

INSERT INTO Node_TIME (ConfigID, PartID, NodeTypeID, NodeNumber, StartTime, StopTime, NodeType,
                       NodeDescription)
SELECT 1, column1, 2, 0, '08:00', '17:00', 'TIME', 'TIME template' FROM (VALUES (1), (2));
INSERT INTO Detail_TIME (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID, NodeType)
SELECT 1, column1, 1, 0, 1, 0, 'MSG' FROM (VALUES (1), (2));

INSERT INTO Node_DATE (ConfigID, PartID, NodeTypeID, NodeNumber, Mode, StartDay, StopDay, StartDate,
                       StopDate, NodeType, NodeDescription)
SELECT 1, column1, 3, 0, 0, 1, 5, '01/01', '12/31', 'DATE', 'DATE template' FROM (VALUES (1), (2));
INSERT INTO Detail_DATE (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID, NodeType)
SELECT 1, column1, 1, 0, 1, 0, 'MSG' FROM (VALUES (1), (2));

INSERT INTO Node_XFER (ConfigID, PartID, NodeTypeID, NodeNumber, StyleNodeNumber, HoldNodeType,
                       HoldNodeNumber, Dial, MOHNodeType, MOHNodeNumber, Busy1NodeType,
                       Busy1NodeNumber, Busy2NodeType, Busy2NodeNumber, NoAnswerNodeType,
                       NoAnswerNodeNumber, AnswerNodeType, AnswerNodeNumber, NodeType,
                       NodeDescription)
SELECT 1, column1, 4, 0, 1, 'MSG', 1, '', 'MSG', 1, 'MSG', 1, 'MSG', 1, 'MSG', 1, 'NOOP', 0, 'XFER',
       'XFER template'
FROM (VALUES (1), (2));

INSERT INTO Node_DTMF (ConfigID, PartID, NodeTypeID, NodeNumber, DTMFClear, NumberOfDigits,
                       TerminatingDigit, SelectionTimeout, DigitTimeout, RetryLimit,
                       TimeoutNodeType, TimeoutNodeNumber, InvalidNodeType, InvalidNodeNumber,
                       AbortNodeType, AbortNodeNumber, NodeType, NodeDescription,
                       TimeoutNodeTypeID, InvalidNodeTypeID, AbortNodeTypeID)
SELECT 1, column1, 6, 0, 1, 1, '#', 5, 10, 3, 'MSG', 1, 'MSG', 1, 'MSG', 1, 'DTMF', 'DTMF template',
       0, 0, 0
FROM (VALUES (1), (2));
INSERT INTO Detail_DTMF_Prompts (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID,
                                 NodeType)
SELECT 1, column1, 1, 0, 1, 0, 'MSG' FROM (VALUES (1), (2));
INSERT INTO Detail_DTMF_Action (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID,
                                DTMFDigitCollected, NodeType)
SELECT 1, column1, 1, 0, 1, 0, '1', 'MSG' FROM (VALUES (1), (2));

INSERT INTO Node_VOX (ConfigID, PartID, NodeTypeID, NodeNumber, Beep, Threshold, Wait, RetryLimit,
                      TimeoutNodeType, TimeoutNodeNumber, AbortNodeType, AbortNodeNumber,
                      DTMFNodeType, DTMFNodeNumber, NodeType, NodeDescription, TimeoutNodeTypeID,
                      AbortNodeTypeID, DTMFNodeTypeID)
SELECT 1, column1, 7, 0, 1, 10, 5, 3, 'MSG', 1, 'MSG', 1, 'NOOP', 0, 'VOX', 'VOX template', 0, 0,
       814
FROM (VALUES (1), (2));
INSERT INTO Detail_VOX_Prompts (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID,
                                NodeType)
SELECT 1, column1, 1, 0, 1, 0, 'MSG' FROM (VALUES (1), (2));
INSERT INTO Detail_VOX_Action (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID,
                               PromptNodeType, PromptNodeNumber, NodeType, PromptNodeTypeID)
SELECT 1, column1, 1, 0, 1, 0, 'MSG', 1, 'MSG', 0 FROM (VALUES (1), (2));

INSERT INTO Node_LIST (ConfigID, PartID, NodeTypeID, NodeNumber, ListMode, NodeType, NodeDescription)
SELECT 1, column1, 8, 0, 0, 'LIST', 'LIST template' FROM (VALUES (1), (2));
INSERT INTO Detail_LIST (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID, NodeType)
SELECT 1, column1, 1, 0, 1, 0, 'MSG' FROM (VALUES (1), (2));

INSERT INTO Node_AUTO (ConfigID, PartID, NodeTypeID, NodeNumber, NumberOfDigits, TerminatingDigit,
                       SelectionTimeout, DigitTimeout, RetryLimit, TimeoutNodeType,
                       TimeoutNodeNumber, InvalidNodeType, InvalidNodeNumber, AbortNodeType,
                       AbortNodeNumber, NodeType, NodeDescription, TimeoutNodeTypeID,
                       InvalidNodeTypeID, AbortNodeTypeID, StarNodeTypeID, PoundNodeTypeID,
                       StarNodeType, StarNodeNumber, PoundNodeType, PoundNodeNumber)
SELECT 1, column1, 9, 0, 4, '#', 5, 10, 3, 'MSG', 1, 'MSG', 1, 'MSG', 1, 'AUTO', 'AUTO template', 0,
       0, 0, 814, 814, 'NOOP', 0, 'NOOP', 0
FROM (VALUES (1), (2));
INSERT INTO Detail_AUTO_Prompts (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID,
                                 NodeType)
SELECT 1, column1, 1, 0, 1, 0, 'MSG' FROM (VALUES (1), (2));
INSERT INTO Detail_AUTO_Action (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID,
                                DTMFRangeLow, DTMFRangeHigh, NodeType)
SELECT 1, column1, 1, 0, 1, 0, 1000, 1999, 'MSG' FROM (VALUES (1), (2));

INSERT INTO Node_PAAS (ConfigID, PartID, NodeTypeID, NodeNumber, Card, Line, Priority, Interrupt,
                       NodeType, NodeDescription)
SELECT 1, column1, 12, 0, 1, 1, 1, 0, 'PAAS', 'PAAS template' FROM (VALUES (1), (2));
INSERT INTO Detail_PAAS (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID, NodeType)
SELECT 1, column1, 1, 0, 1, 0, 'MSG' FROM (VALUES (1), (2));

INSERT INTO Node_TABLE (ConfigID, PartID, NodeTypeID, NodeNumber, Mode, Reference, InvalidNodeType,
                        InvalidNodeNumber, InvalidNodeTypeID, ContinueNodeType,
                        ContinueNodeNumber, ContinueNodeTypeID, NodeType, NodeDescription)
SELECT 1, column1, 13, 0, 0, 'Caller ID', 'MSG', 1, 0, 'NOOP', 0, 814, 'TABLE', 'TABLE template'
FROM (VALUES (1), (2));
INSERT INTO Detail_TABLE_Action (ConfigID, PartID, SequenceNo, NodeType, NodeNumber, NodeTypeID,
                                 StartRange, EndRange, NodeMasterID)
SELECT 1, column1, 1, 'MSG', 1, 0, 0, 999, 0 FROM (VALUES (1), (2));

INSERT INTO Node_DIR (ConfigID, PartID, NodeTypeID, NodeNumber, AccessCode, UsePasswords, NodeType,
                      NodeDescription, StartingPromptNumber)
SELECT 1, column1, 16, 0, '', 0, 'DIR', 'DIR template', 1 FROM (VALUES (1), (2));
INSERT INTO Detail_DIR (ConfigID, PartID, SequenceNo, LastName, FirstName, Extension, NamePrompt,
                        "Password", NodeMasterID)
SELECT 1, column1, 1, 'Template', 'Entry', '100', 'name000.wav', '', 0 FROM (VALUES (1), (2));

-- Message nodes that the dial-by-name nodes play.
INSERT INTO Node_MSG (ConfigID, PartID, NodeTypeID, NodeNumber, MaxLength, OnOff, DTMF, "Password",
                      Directory, OrvFilename, Comment, SkipCount, Permission, WarningTone,
                      LineAssignment, NodeType, NodeDescription, MSGArchive)
SELECT 1, column1, 0, column2, 120, 1, 0, '', 'Prompts', printf('P%02dM%03d.wav', column1, column2),
       '', 0, 0, 0, 0, 'MSG', column3, 0
FROM (VALUES (1, 1, 'Main greeting'), (1, 2, 'Spell the name'), (1, 3, 'Please hold'),
             (1, 4, 'Goodbye'), (1, 5, 'Before names'), (1, 6, 'After names'),
             (1, 7, 'Name prompt one'), (1, 8, 'Name prompt two'), (1, 9, 'Name prompt three'),
             (2, 1, 'Support greeting'), (2, 2, 'Spell the engineer'), (2, 3, 'Connecting you'),
             (2, 4, 'Support goodbye'), (2, 5, 'Matching engineers'), (2, 6, 'End of matches'));

-- A transfer to the operator in each partition.
INSERT INTO Node_XFER (ConfigID, PartID, NodeTypeID, NodeNumber, StyleNodeNumber, HoldNodeType,
                       HoldNodeNumber, Dial, MOHNodeType, MOHNodeNumber, Busy1NodeType,
                       Busy1NodeNumber, Busy2NodeType, Busy2NodeNumber, NoAnswerNodeType,
                       NoAnswerNodeNumber, AnswerNodeType, AnswerNodeNumber, NodeType,
                       NodeDescription)
SELECT 1, column1, 4, 1, 1, 'MSG', 3, '0', 'MSG', 3, 'MSG', 4, 'MSG', 4, 'MSG', 4, 'NOOP', 0, 'XFER',
       column2
FROM (VALUES (1, 'Operator transfer'), (2, 'Support desk transfer'));

-- The company directory, one in each partition.
INSERT INTO Node_DIR (ConfigID, PartID, NodeTypeID, NodeNumber, AccessCode, UsePasswords, NodeType,
                      NodeDescription, StartingPromptNumber)
SELECT 1, column1, 16, 1, '', 0, 'DIR', column2, 1
FROM (VALUES (1, 'Company directory'), (2, 'Support engineers'));
INSERT INTO Detail_DIR (ConfigID, PartID, SequenceNo, LastName, FirstName, Extension, NamePrompt,
                        "Password", NodeMasterID)
SELECT 1, column1, column2, column3, column4, column5, printf('name%03d.wav', column5), '', 1
FROM (VALUES (1, 1, 'Adams', 'Grace', '2101'), (1, 2, 'Baker', 'Tom', '2102'),
             (1, 3, 'Chen', 'Lena', '2103'), (1, 4, 'Dubois', 'Marc', '2104'),
             (1, 5, 'Evans', 'Ruth', '2105'),
             (2, 1, 'Fischer', 'Jonas', '3101'), (2, 2, 'Garcia', 'Ana', '3102'),
             (2, 3, 'Hughes', 'Owen', '3103'), (2, 4, 'Ito', 'Kenji', '3104'),
             (2, 5, 'Jansen', 'Eva', '3105'));

-- Dial-by-name nodes: the template in each partition, two live nodes in
-- partition 1 and one in partition 2.
INSERT INTO Node_DBN VALUES
    -- Template, partition 1.
    (1, 1, 15, 0, 'DBN', 'DBN template', 0, 1, 1, 0,
     'MSG', 1, 0, 'NOOP', 0, 814, 'NOOP', 0, 814, 'NOOP', 0, 814, 'NOOP', 0, 814, 'NOOP', 0, 814,
     1, 3, 5, 'MSG', 1, 0,
     0, 1, 5, 'MSG', 1, 0,
     'NOOP', 0, 814, 'NOOP', 0, 814,
     10, 5, 1, 0, 5, 1,
     'MSG', 1, 0, 'MSG', 1, 0, 'MSG', 1, 0,
     0, 0, 0, 0, 0, 0, 0, 0, 0, 0),
    -- Staff directory: Custom method, confirmation on with three matches.
    (1, 1, 15, 1, 'DBN', 'Staff directory', 0, 1, 1, 0,
     'MSG', 1, 0, 'XFER', 1, 4, 'MSG', 4, 0, 'NOOP', 0, 814, 'NOOP', 0, 814, 'NOOP', 0, 814,
     1, 3, 5, 'MSG', 2, 0,
     2, 1, 5, 'MSG', 2, 0,
     'XFER', 1, 4, 'MSG', 4, 0,
     10, 5, 3, 1, 3, 1,
     'MSG', 5, 0, 'MSG', 6, 0, 'MSG', 4, 0,
     0, 0, 0, 0, 0, 0, 0, 0, 0, 0),
    -- Sales directory: Default Last Name, English and French, no confirmation.
    (1, 1, 15, 2, 'DBN', 'Sales directory', 1, 1, 1, 2,
     'MSG', 1, 0, 'XFER', 1, 4, 'MSG', 4, 0, 'NOOP', 0, 814, 'NOOP', 0, 814, 'NOOP', 0, 814,
     1, 3, 5, 'MSG', 2, 0,
     0, 1, 5, 'MSG', 1, 0,
     'MSG', 4, 0, 'MSG', 4, 0,
     10, 5, 1, 0, 5, 1,
     'MSG', 1, 0, 'MSG', 1, 0, 'MSG', 4, 0,
     0, 0, 0, 0, 0, 0, 0, 0, 0, 0),
    -- Template, partition 2.
    (1, 2, 15, 0, 'DBN', 'DBN template', 0, 1, 1, 0,
     'MSG', 1, 0, 'NOOP', 0, 814, 'NOOP', 0, 814, 'NOOP', 0, 814, 'NOOP', 0, 814, 'NOOP', 0, 814,
     1, 3, 5, 'MSG', 1, 0,
     0, 1, 5, 'MSG', 1, 0,
     'NOOP', 0, 814, 'NOOP', 0, 814,
     10, 5, 1, 0, 5, 1,
     'MSG', 1, 0, 'MSG', 1, 0, 'MSG', 1, 0,
     0, 0, 0, 0, 0, 0, 0, 0, 0, 0),
    -- Support directory: Custom method, confirmation on with two matches.
    (1, 2, 15, 5, 'DBN', 'Support directory', 0, 1, 1, 0,
     'MSG', 1, 0, 'XFER', 1, 4, 'MSG', 4, 0, 'NOOP', 0, 814, 'NOOP', 0, 814, 'NOOP', 0, 814,
     1, 3, 5, 'MSG', 2, 0,
     0, 1, 5, 'MSG', 1, 0,
     'MSG', 4, 0, 'MSG', 4, 0,
     8, 6, 2, 1, 2, 0,
     'MSG', 5, 0, 'MSG', 6, 0, 'MSG', 4, 0,
     0, 0, 0, 0, 0, 0, 0, 0, 0, 0);

-- Nine prompt rows per dial-by-name node; rows without a name prompt of
-- their own play MSG 1.
INSERT INTO Detail_DBN_Prompts (ConfigID, PartID, PromptNumber, PromptNodeTypeID, PromptNodeNumber,
                                NodeMasterID, PromptNodeType)
SELECT d.ConfigID, d.PartID, p.column1, 0,
       CASE
           WHEN d.PartID = 1 AND d.NodeNumber = 1 AND p.column1 <= 3 THEN 6 + p.column1
           WHEN d.PartID = 2 AND d.NodeNumber = 5 AND p.column1 <= 2 THEN 3
           ELSE 1
       END,
       d.NodeNumber, 'MSG'
FROM Node_DBN AS d,
     (VALUES (1), (2), (3), (4), (5), (6), (7), (8), (9)) AS p;

-- The general pool: one row for every node above.
INSERT INTO Node_General_Pool (ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription,
                               DateModified)
SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription, '2024-03-04 09:15:00'
FROM (SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription FROM Node_MSG
      UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription FROM Node_CMD
      UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription FROM Node_TIME
      UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription FROM Node_DATE
      UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription FROM Node_XFER
      UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription FROM Node_DTMF
      UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription FROM Node_VOX
      UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription FROM Node_LIST
      UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription FROM Node_AUTO
      UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription FROM Node_PAAS
      UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription FROM Node_TABLE
      UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription FROM Node_DBN
      UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription FROM Node_DIR);

-- Confirmation outside No (0) and Yes (1), with Max Matches outside 1 to 9,
-- and prompts of their own.
UPDATE Node_DBN SET Confirm = 3, MaxMatch = 12 WHERE ConfigID = 1 AND PartID = 1 AND NodeNumber = 1;
UPDATE Node_DBN SET Confirm = 3, MaxMatch = 0, BeforePromptNodeNumber = 11, AfterPromptNodeNumber = 12
WHERE ConfigID = 1 AND PartID = 1 AND NodeNumber = 2;
UPDATE Detail_DBN_Prompts SET PromptNodeNumber = 20 + PromptNumber
WHERE ConfigID = 1 AND PartID = 1 AND NodeMasterID = 2 AND PromptNumber <= 4;
UPDATE Node_DBN SET Confirm = 3, MaxMatch = -3 WHERE ConfigID = 1 AND PartID = 2 AND NodeNumber = 5;

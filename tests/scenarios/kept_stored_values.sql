-- Sales directory (DBN 2): settings outside their lists, and Max Matches 7
-- with confirmation off.
UPDATE Node_DBN SET Method = 0, DirectoryNodeNumber = 500, FirstLanguage = 9, FirstMinDigits = 0,
    DigitTimeout = 99, SelectionTimeout = 61, RetryLimit = 6, PlayName = 5, MaxMatch = 7
WHERE ConfigID = 1 AND PartID = 1 AND NodeNumber = 2;
-- Support directory (partition 2, DBN 5): a method outside its list, and a
-- greeting and a time-out target of types without numbers in the partition.
UPDATE Node_DBN SET Method = 7, GreetingNodeType = 'LIST', GreetingNodeNumber = 2,
    GreetingNodeTypeID = 8, TimeoutNodeType = 'CMD', TimeoutNodeNumber = 3, TimeoutNodeTypeID = 1
WHERE ConfigID = 1 AND PartID = 2 AND NodeNumber = 5;

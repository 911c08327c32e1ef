#pragma once
// The large partition's export, read back as the apply command reads it, with
// the label of every node changed.

#include "database/database.h"
#include "nodetext/text_form.h"

namespace dbn::bench {

// The labels alternate between two texts from one iteration to the next, so
// that each applied document changes them all.
nodetext::NodeDocument EveryLabelChanged(DataBase& db, long iteration);

}  // namespace dbn::bench

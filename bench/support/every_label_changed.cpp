#include "support/every_label_changed.h"

#include "support/bench_data.h"

#include "session/nodes/node_text_store.h"

#include <string>

namespace dbn::bench {

nodetext::NodeDocument EveryLabelChanged(DataBase& db, long iteration) {
    nodetext::NodeDocument document =
        *nodetext::ReadDocument(
             nodetext::DocumentText(session::ExportNodes(db, kLargeConfig, kLargePartition)))
             .document;
    for (nodetext::TextNode& node : document.nodes) {
        node.columns["NodeDescription"] =
            "Directory " + std::to_string(node.number) + (iteration % 2 ? " (day)" : " (night)");
    }
    return document;
}

}  // namespace dbn::bench

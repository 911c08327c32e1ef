// The node-type catalogue and the partition's highest node number per type.
#include "core/node_types.h"
#include "session/editor/business_rules.h"

#include "core/component_error.h"
#include "form/error_trap.h"
#include "form/gui.h"
#include "session/nodes/stored_values.h"

#include <charconv>
#include <limits>

namespace dbn {
namespace {

// A limit recorded in MaxNodeNumberCollection, read back as a 16-bit number.
std::int16_t RecordedLimit(const std::string& text) {
    std::int32_t value = 0;
    auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || stop != text.data() + text.size() || text.empty()) {
        RaiseTypeMismatch();
    }
    if (value < std::numeric_limits<std::int16_t>::min() ||
        value > std::numeric_limits<std::int16_t>::max()) {
        RaiseOverflow();
    }
    return static_cast<std::int16_t>(value);
}

// The limit of a type that has no Node_Type_Max row in the partition.
std::string FallbackLimit(std::int16_t typeID, const form::KeyedCollection& limits) {
    if (typeID == node_type::kOpenRange) {
        return session::CommandArg(node_type::kOpenRangeLimit);
    }
    if (node_type::FollowsMessage(typeID)) {
        // These follow the message type, which the catalogue lists first.
        return session::CommandArg(
            RecordedLimit(limits.Item(session::CommandArg(node_type::kMessage))));
    }
    return "0";
}

}  // namespace

void Business_Rules::LoadNodeName() {
    form::RunTrapped(services_, "LoadNodeName", [&] {
        form::GUI& form = Form();
        form::KeyedCollection& names = form.NodeNameCollection();
        form::KeyedCollection& limits = form.MaxNodeNumberCollection();
        const std::string config = session::CommandArg(form.ConfigID());
        const std::string partition = session::CommandArg(form.PartitionID());

        db_.Execute("Get_Node_Names");
        RowSet& types = db_.Recordset("Get_Node_Names");
        session::RowSetCloser closeTypes(types);
        for (; !types.Eof(); types.MoveNext()) {
            const std::int16_t typeID = types.Field("ID").ToInt16();
            const std::string key = session::CommandArg(typeID);
            names.Add(types.Field("English_Name").ToText(), key);

            db_.Execute("Get_Max_NodeNumber", {config, partition, key});
            RowSet& limit = db_.Recordset("Get_Max_NodeNumber");
            session::RowSetCloser closeLimit(limit);
            if (!limit.Eof()) {
                limits.Add(session::CommandArg(limit.Field("Max_Number").ToInt32()), key);
            } else {
                limits.Add(FallbackLimit(typeID, limits), key);
            }
        }
    });
}

}  // namespace dbn

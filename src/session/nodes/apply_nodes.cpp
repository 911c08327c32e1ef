#include "session/nodes/apply_nodes.h"

#include "core/node_types.h"
#include "core/text_validator.h"
#include "database/database.h"
#include "nodefields/save_rules.h"
#include "nodetext/node_merge.h"
#include "session/nodes/node_templates.h"
#include "session/nodes/node_text_store.h"
#include "session/nodes/partition_targets.h"
#include "session/nodes/stored_state.h"
#include "session/nodes/stored_values.h"
#include "session/nodes/transaction_scope.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <map>
#include <optional>
#include <set>

namespace dbn::session {

namespace {

using nodetext::FieldChange;
using nodetext::TextNode;
using nodetext::Value;

const std::string kDbnType = CommandArg(node_type::kDialByName);
constexpr std::int64_t kDirectoryType = node_type::kDirectory;

// One node of the document, ready to be written.
struct PlannedNode {
    std::size_t index = 0;  // in the document
    TextNode node;          // the node as it will be stored
    NodeOutcome outcome = NodeOutcome::Unchanged;
    std::vector<FieldChange> changes;
};

std::string Prefix(std::size_t index) {
    return "nodes[" + std::to_string(index) + "]";
}

bool SameTarget(const nodetext::StoredRef& a, const nodetext::StoredRef& b) {
    return a.type == b.type && a.number == b.number;
}

// The file's references take the stored type ID when they name the same
// target as before, else the catalogue's ID of their code.
nodetext::StoredRef Resolved(nodetext::StoredRef ref, const nodetext::StoredRef& before,
                             const PartitionTargets& targets) {
    if (SameTarget(ref, before)) {
        ref.typeID = before.typeID;
    } else if (auto id = targets.TypeID(nodetext::ValueText(ref.type))) {
        ref.typeID = std::int64_t{*id};
    }
    return ref;
}

using nodetext::Column;

class NodeChecker {
public:
    NodeChecker(std::vector<nodetext::Problem>& problems, const PartitionTargets& targets,
                std::string prefix)
        : problems_(problems), targets_(targets), prefix_(std::move(prefix)) {}

    void Fail(const std::string& path, const std::string& message) {
        problems_.push_back({prefix_ + "." + path, message});
    }

    // The changed fields: the values the editor offers and the targets the
    // partition allows.
    void CheckFields(const TextNode& node, const std::vector<FieldChange>& changes) {
        auto target = [&](const std::string& path, nodetext::TargetRole role,
                          const nodetext::StoredRef& ref) -> std::optional<nodetext::Problem> {
            if (auto refusal = targets_.Refusal(role, ref)) {
                return nodetext::Problem{path + refusal->first, refusal->second};
            }
            return std::nullopt;
        };
        for (const nodetext::Problem& problem :
             nodetext::ChangedFieldRefusals(node, changes, target)) {
            Fail(problem.path, problem.message);
        }
    }

    // The checks every save makes: the label's text and the search
    // settings, each when a field it reads changed (a stored value left as
    // it was is never refused, even one beyond what the editor offers).
    void CheckSave(const TextNode& node, const std::vector<FieldChange>& changes) {
        auto changed = [&](std::initializer_list<const char*> paths) {
            return std::any_of(paths.begin(), paths.end(),
                               [&](const char* path) { return nodetext::Changed(changes, path); });
        };
        auto label = node.columns.find("NodeDescription");
        if (changed({"label"}) && label != node.columns.end() &&
            !form::TextValidator().IsValidText(nodetext::ValueText(label->second))) {
            Fail("label", nodefields::kLabelRefused);
        }
        const nodefields::SearchSettings settings{
            Column(node, "Method"),         Column(node, "FirstLanguage"),
            Column(node, "SecondLanguage"), Column(node, "FirstMode"),
            Column(node, "SecondMode"),     Column(node, "FirstMinDigits"),
            Column(node, "FirstMaxDigits"), Column(node, "SecondMinDigits"),
            Column(node, "SecondMaxDigits")};
        for (const nodefields::RuleRefusal& refusal : nodefields::SearchRefusals(settings)) {
            if (std::any_of(
                    refusal.reads.begin(), refusal.reads.end(),
                    [&](const std::string& path) { return nodetext::Changed(changes, path); })) {
                Fail(refusal.path, refusal.message);
            }
        }
    }

private:
    std::vector<nodetext::Problem>& problems_;
    const PartitionTargets& targets_;
    std::string prefix_;
};

// ---- Referenced nodes ------------------------------------------------------

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

void Gather(std::vector<RequiredNode>& required, std::set<std::string>& keys,
            const nodetext::StoredRef& ref) {
    if (std::holds_alternative<std::monostate>(ref.type)) {
        return;
    }
    const std::string typeID = nodetext::ValueText(ref.typeID);
    const std::string number = nodetext::ValueText(ref.number);
    const std::string shown = typeID == CommandArg(node_type::kNoNumber)
                                  ? nodetext::ValueText(ref.type)
                                  : nodetext::ValueText(ref.type) + " " + number;
    if (auto gathered = GatheredReference(shown, typeID, number)) {
        if (keys.insert(Lower(gathered->key)).second) {
            required.push_back(*gathered);
        }
    }
}

// The references a save of the node gathers, in its order.
void GatherReferences(const TextNode& node, std::vector<RequiredNode>& required,
                      std::set<std::string>& keys) {
    Gather(required, keys, nodetext::RefColumns(node, "Greeting"));
    Gather(required, keys,
           {std::string(node_type::kDirectoryCode), Column(node, "DirectoryNodeNumber"),
            std::int64_t{kDirectoryType}});
    for (const char* role : {"ValidMatch", "Abort", "Star", "Pound", "Zero"}) {
        Gather(required, keys, nodetext::RefColumns(node, role));
    }
    if (Column(node, "Method") != 0) {
        return;
    }
    for (const char* role : {"FirstPrompt", "SecondPrompt", "Timeout", "Invalid"}) {
        Gather(required, keys, nodetext::RefColumns(node, role));
    }
    if (Column(node, "Confirm") == 1) {
        Gather(required, keys, nodetext::RefColumns(node, "BeforePrompt"));
        Gather(required, keys, nodetext::RefColumns(node, "AfterPrompt"));
        const auto shown =
            static_cast<std::size_t>(std::max<std::int64_t>(Column(node, "MaxMatch"), 0));
        for (std::size_t i = 0; i < node.prompts.size() && i < shown; ++i) {
            Gather(required, keys, node.prompts[i]);
        }
    }
    Gather(required, keys, nodetext::RefColumns(node, "ConfirmationExit"));
}

// The document's nodes against the stored ones: each node's outcome and the
// node as it will be stored, or the refusals. `absentBefore` names the
// numbers an earlier look found missing: one stored meanwhile is refused
// like a node changed since the export.
std::vector<PlannedNode> PlanNodes(const std::map<std::int64_t, TextNode>& stored,
                                   const nodetext::NodeDocument& document,
                                   const ApplyOptions& options, const PartitionTargets& targets,
                                   const std::set<std::int64_t>& absentBefore,
                                   std::vector<nodetext::Problem>& problems) {
    const auto templateNode = stored.find(0);
    std::vector<PlannedNode> planned;
    for (std::size_t i = 0; i < document.nodes.size(); ++i) {
        const TextNode& file = document.nodes[i];
        const std::string prefix = Prefix(i);
        NodeChecker checker(problems, targets, prefix);
        PlannedNode plan;
        plan.index = i;
        const auto found = stored.find(file.number);
        const TextNode* base = nullptr;
        if (found != stored.end()) {
            base = &found->second;
            // A node changed since the export matters only when the file
            // would write it: one that already matches the file is unchanged.
            const std::vector<FieldChange> differences = nodetext::Changes(*base, file);
            const bool changedSince = file.stored.empty()
                                          ? absentBefore.count(file.number) > 0
                                          : file.stored != nodetext::Fingerprint(*base);
            if (changedSince && !differences.empty() && !options.force) {
                std::string fields;
                for (const FieldChange& change : differences) {
                    fields += (fields.empty() ? "" : ", ") + change.path;
                }
                problems.push_back(
                    {prefix, "DBN " + std::to_string(file.number) +
                                 (file.stored.empty() ? " was created in the database meanwhile"
                                                      : " was changed in the database since the "
                                                        "export") +
                                 " (it now differs from the file in: " + fields +
                                 "); --force writes the file over it"});
                continue;
            }
        } else {
            if (!file.stored.empty() && !options.force) {
                problems.push_back(
                    {prefix, "DBN " + std::to_string(file.number) +
                                 " was deleted from the database since the export; --force "
                                 "creates it again from the template"});
                continue;
            }
            if (file.number < 1 || file.number > targets.DialByNameLimit()) {
                checker.Fail("number", std::to_string(file.number) + " is outside 1 to " +
                                           std::to_string(targets.DialByNameLimit()));
                continue;
            }
            if (templateNode == stored.end()) {
                checker.Fail("number", "DBN " + std::to_string(file.number) +
                                           " does not exist, and there is no template DBN 0 "
                                           "to create it from");
                continue;
            }
            base = &templateNode->second;
            plan.outcome = NodeOutcome::Created;
        }
        plan.node = nodetext::MergedNode(
            *base, file, [&](const nodetext::StoredRef& ref, const nodetext::StoredRef& before) {
                return Resolved(ref, before, targets);
            });
        plan.changes = nodetext::Changes(*base, plan.node);
        if (plan.outcome != NodeOutcome::Created) {
            plan.outcome = plan.changes.empty() ? NodeOutcome::Unchanged : NodeOutcome::Changed;
        }
        if (plan.outcome != NodeOutcome::Unchanged) {
            checker.CheckFields(plan.node, plan.changes);
            checker.CheckSave(plan.node, plan.changes);
        }
        planned.push_back(std::move(plan));
    }
    return planned;
}

bool Writes(const std::vector<PlannedNode>& planned) {
    return std::any_of(planned.begin(), planned.end(), [](const PlannedNode& plan) {
        return plan.outcome != NodeOutcome::Unchanged;
    });
}

// The references the written nodes gather, each looked up in one batch
// (sent on its own, or with other reads).
struct References {
    std::vector<RequiredNode> required;
    std::vector<bool> exists;
};

std::vector<RequiredNode> GatherAll(const std::vector<PlannedNode>& planned) {
    std::vector<RequiredNode> required;
    std::set<std::string> keys;
    for (const PlannedNode& plan : planned) {
        if (plan.outcome != NodeOutcome::Unchanged) {
            GatherReferences(plan.node, required, keys);
        }
    }
    return required;
}

References FoundReferences(std::vector<RequiredNode> required, BatchAnswer* answers,
                           const std::vector<PlannedNode>& planned) {
    std::set<std::string> creating;  // DBN numbers this apply creates
    for (const PlannedNode& plan : planned) {
        if (plan.outcome == NodeOutcome::Created) {
            creating.insert(std::to_string(plan.node.number));
        }
    }
    References references{std::move(required), {}};
    for (std::size_t i = 0; i < references.required.size(); ++i) {
        const RequiredNode& node = references.required[i];
        references.exists.push_back(!answers[i].rows.Eof() ||
                                    (node.typeID == kDbnType && creating.count(node.number) > 0));
    }
    return references;
}

References LookUpReferences(DataBase& db, std::int16_t config, std::int16_t partition,
                            const std::vector<PlannedNode>& planned) {
    std::vector<RequiredNode> required = GatherAll(planned);
    std::vector<BatchAnswer> answers =
        required.empty() ? std::vector<BatchAnswer>{}
                         : db.ExecuteBatch(ExistenceReads(config, partition, required));
    return FoundReferences(std::move(required), answers.data(), planned);
}

// When none of the file's fingerprinted nodes is found as exported in the
// partition the file names, the configuration and partition that holds most
// of them: a file of another partition (its header edited or mixed up),
// whose nodes the partition's refusals would only call changed or deleted.
// Templates are left out: they are often alike in every partition.
std::optional<std::pair<std::int16_t, std::int16_t>> OtherOrigin(
    DataBase& db, const nodetext::NodeDocument& document,
    const std::map<std::int64_t, TextNode>& stored) {
    auto matches = [&](const std::map<std::int64_t, TextNode>& nodes) {
        return std::count_if(
            document.nodes.begin(), document.nodes.end(), [&](const TextNode& file) {
                const auto found = nodes.find(file.number);
                return file.number != 0 && !file.stored.empty() && found != nodes.end() &&
                       nodetext::Fingerprint(found->second) == file.stored;
            });
    };
    if (matches(stored) > 0) {
        return std::nullopt;
    }
    db.Execute("Get_Partitions_With_Nodes", {CommandArg(node_type::kDialByName)});
    std::vector<std::pair<std::int16_t, std::int16_t>> partitions;
    RowSet& rows = db.Recordset("Get_Partitions_With_Nodes");
    for (RowSetCloser closer(rows); !rows.Eof(); rows.MoveNext()) {
        partitions.emplace_back(rows.Field("ConfigID").ToInt16(), rows.Field("PartID").ToInt16());
    }
    std::optional<std::pair<std::int16_t, std::int16_t>> origin;
    std::ptrdiff_t most = 0;
    for (const auto& [config, partition] : partitions) {
        if (config == document.configuration && partition == document.partition) {
            continue;
        }
        if (const std::ptrdiff_t found = matches(ReadStoredNodes(db, config, partition));
            found > most) {
            most = found;
            origin = std::pair{config, partition};
        }
    }
    return origin;
}

void ListNodes(ApplyResult& result, const std::vector<PlannedNode>& planned) {
    result.nodes.clear();
    for (const PlannedNode& plan : planned) {
        result.nodes.push_back({plan.node.number, plan.outcome, plan.changes});
    }
}

}  // namespace

ApplyResult ApplyNodes(DataBase& db, const nodetext::NodeDocument& document,
                       const ApplyOptions& options) {
    ApplyResult result;
    const auto config = static_cast<std::int16_t>(document.configuration);
    const auto partition = static_cast<std::int16_t>(document.partition);
    const PartitionTargets targets(db, config, partition);
    std::map<std::int64_t, TextNode> stored = ReadStoredNodes(db, config, partition);
    std::vector<PlannedNode> planned;
    if (stored.empty()) {
        result.problems.push_back({"partition", "configuration " + CommandArg(config) +
                                                    ", partition " + CommandArg(partition) +
                                                    " has no dial-by-name nodes in this database"});
    } else {
        // A first look without locks: refusals and dry runs never hold any.
        planned = PlanNodes(stored, document, options, targets, {}, result.problems);
    }
    if (!result.problems.empty()) {
        if (const auto origin = OtherOrigin(db, document, stored)) {
            result.problems = {{"partition", "the file names configuration " + CommandArg(config) +
                                                 ", partition " + CommandArg(partition) +
                                                 ", but its nodes are those of configuration " +
                                                 CommandArg(origin->first) + ", partition " +
                                                 CommandArg(origin->second)}};
        }
        return result;
    }
    ListNodes(result, planned);
    if (options.dryRun) {
        const References references = LookUpReferences(db, config, partition, planned);
        for (std::size_t i = 0; i < references.required.size(); ++i) {
            if (!references.exists[i]) {
                (options.createMissing ? result.createdReferences : result.missingReferences)
                    .push_back(references.required[i].key);
            }
        }
        return result;
    }
    if (!Writes(planned)) {
        return result;
    }
    // The write compares again under the locks of the partition's nodes: a
    // change committed by another program since the first look is refused
    // as one made since the export, and the history's state before each
    // write is the state it replaces.
    std::set<std::int64_t> absentBefore;
    for (const PlannedNode& plan : planned) {
        if (plan.outcome == NodeOutcome::Created) {
            absentBefore.insert(plan.node.number);
        }
    }
    TransactionScope transaction(db);
    LockPartitionNodes(db, config, partition);
    // The nodes again and the first look's references in one batch; the
    // references are looked up again only when the second look changed them.
    const std::vector<RequiredNode> firstRequired = GatherAll(planned);
    std::vector<BatchStep> reads = StoredNodeReads(config, partition);
    const std::size_t lookupsAt = reads.size();
    const std::vector<BatchStep> lookups = ExistenceReads(config, partition, firstRequired);
    reads.insert(reads.end(), lookups.begin(), lookups.end());
    std::vector<BatchAnswer> answers = db.ExecuteBatch(reads);
    stored = StoredNodesOf(answers.data());
    planned = PlanNodes(stored, document, options, targets, absentBefore, result.problems);
    if (!result.problems.empty()) {
        result.nodes.clear();
        return result;
    }
    ListNodes(result, planned);
    if (!Writes(planned)) {
        return result;
    }
    const References references =
        GatherAll(planned) == firstRequired
            ? FoundReferences(firstRequired, answers.data() + lookupsAt, planned)
            : LookUpReferences(db, config, partition, planned);
    // The new nodes are copied from the template in one batch; each one's
    // history row is the one its write adds.
    std::vector<TemplateCopy> newNodes;
    for (const PlannedNode& plan : planned) {
        if (plan.outcome == NodeOutcome::Created) {
            newNodes.push_back({"0", std::to_string(plan.node.number), kDbnType});
        }
    }
    if (!newNodes.empty()) {
        CopyTemplateNodes(db, config, partition, newNodes, false);
    }
    // Every node's statements in one batch, whatever the number of nodes.
    std::vector<NodeWrite> nodeWrites;
    for (const PlannedNode& plan : planned) {
        if (plan.outcome != NodeOutcome::Unchanged) {
            const bool created = plan.outcome == NodeOutcome::Created;
            nodeWrites.push_back(
                {&plan.node, created || nodetext::Changed(plan.changes, "confirmation.prompts"),
                 created ? ChangeKind::Created : ChangeKind::Saved});
        }
    }
    WriteNodes(db, config, partition, nodeWrites);
    // The missing references, each stored node once (two references may name
    // the same stored node), created together from their templates when
    // asked to.
    struct Absent {
        const RequiredNode* node;
        std::size_t copy;  // its stored node's copy in `copies`
        bool first;        // the first reference to that stored node
    };
    std::vector<Absent> absent;
    std::map<std::pair<std::string, std::string>, std::size_t> copyOf;
    std::vector<TemplateCopy> copies;
    for (std::size_t i = 0; i < references.required.size(); ++i) {
        if (references.exists[i]) {
            continue;
        }
        const RequiredNode& node = references.required[i];
        const auto [at, first] =
            copyOf.try_emplace({LookedUpTypeID(node.typeID), node.number}, copies.size());
        if (first) {
            copies.push_back({"0", node.number, at->first.first});
        }
        absent.push_back({&node, at->second, first});
    }
    const std::vector<bool> made = options.createMissing && !copies.empty()
                                       ? CopyTemplateNodes(db, config, partition, copies)
                                       : std::vector<bool>(copies.size(), false);
    std::vector<const RequiredNode*> missing;
    for (const Absent& reference : absent) {
        if (!made[reference.copy]) {
            missing.push_back(reference.node);
        } else if (reference.first) {
            result.createdReferences.push_back(reference.node->key);
        }
    }
    transaction.Commit();
    result.written = true;
    for (const RequiredNode* node : missing) {
        result.missingReferences.push_back(node->key);
    }
    return result;
}

std::string ApplyReportText(const ApplyResult& result, ApplyReport report, bool fieldChanges) {
    std::string text;
    int created = 0;
    int changed = 0;
    int unchanged = 0;
    for (const AppliedNode& node : result.nodes) {
        text += "DBN " + std::to_string(node.number) + ": ";
        switch (node.outcome) {
            case NodeOutcome::Unchanged:
                ++unchanged;
                text += "unchanged\n";
                continue;
            case NodeOutcome::Created:
                ++created;
                text += "created\n";
                break;
            case NodeOutcome::Changed: {
                ++changed;
                std::string fields;
                for (const FieldChange& change : node.changes) {
                    fields += (fields.empty() ? "" : ", ") + change.path;
                }
                text += "changed: " + fields + "\n";
                break;
            }
        }
        if (fieldChanges) {
            for (const FieldChange& change : node.changes) {
                text += "  " + change.path + ": " + change.before + " -> " + change.after + "\n";
            }
        }
    }
    const bool writes = created + changed > 0;
    for (const std::string& key : result.createdReferences) {
        text += key + (report == ApplyReport::Written ? ": created from its template\n"
                                                      : ": would be created from its template\n");
    }
    if (!result.missingReferences.empty()) {
        std::string keys;
        for (const std::string& key : result.missingReferences) {
            keys += (keys.empty() ? "" : ", ") + key;
        }
        text += "These references point at nodes that do not exist: " + keys + ".\n";
    }
    text += std::to_string(result.nodes.size()) + " nodes: " + std::to_string(created) +
            " created, " + std::to_string(changed) + " changed, " + std::to_string(unchanged) +
            " unchanged" +
            (report == ApplyReport::Review   ? "."
             : !writes                       ? "; nothing to write"
             : report == ApplyReport::DryRun ? "; nothing written (dry run)"
                                             : "; written") +
            "\n";
    return text;
}

}  // namespace dbn::session

#include "nodetext/node_merge.h"

namespace dbn::nodetext {

namespace {

Value ColumnValue(const TextNode& node, const std::string& column) {
    auto found = node.columns.find(column);
    return found == node.columns.end() ? Value{} : found->second;
}

// The languages as the save leaves them under the method "Default Last
// Name": the second moves up when the first is "None", and a second equal
// to the first becomes "None".
void SettleLanguages(TextNode& node) {
    if (Column(node, "Method") == 0) {
        return;
    }
    const std::int64_t first = Column(node, "FirstLanguage");
    const std::int64_t second = Column(node, "SecondLanguage");
    if (first == 0 && second != 0) {
        node.columns["FirstLanguage"] = second;
        node.columns["SecondLanguage"] = std::int64_t{0};
    } else if (first != 0 && first == second) {
        node.columns["SecondLanguage"] = std::int64_t{0};
    }
}

}  // namespace

std::int64_t Column(const TextNode& node, const std::string& column, std::int64_t fallback) {
    auto found = node.columns.find(column);
    return found == node.columns.end() ? fallback : WholeOr(found->second, fallback);
}

TextNode MergedNode(const TextNode& base, const TextNode& file, const RefResolver& resolve) {
    TextNode merged = base;
    merged.number = file.number;
    for (const FieldRule& rule : Fields()) {
        switch (rule.kind) {
            case FieldKind::Target:
                SetRefColumns(
                    merged, rule.column,
                    resolve(RefColumns(file, rule.column), RefColumns(base, rule.column)));
                break;
            case FieldKind::Prompts:
                merged.prompts.clear();
                for (std::size_t i = 0; i < file.prompts.size(); ++i) {
                    merged.prompts.push_back(resolve(
                        file.prompts[i], i < base.prompts.size() ? base.prompts[i] : StoredRef{}));
                }
                break;
            default:
                merged.columns[rule.column] = ColumnValue(file, rule.column);
        }
    }
    SettleLanguages(merged);
    return merged;
}

std::vector<Problem> ChangedFieldRefusals(const TextNode& node,
                                          const std::vector<FieldChange>& changes,
                                          const TargetCheck& checkTarget) {
    std::vector<Problem> problems;
    for (const FieldRule& rule : Fields()) {
        if (!Changed(changes, rule.path)) {
            continue;
        }
        if (rule.kind == FieldKind::Target) {
            if (auto problem = checkTarget(rule.path, rule.role, RefColumns(node, rule.column))) {
                problems.push_back(std::move(*problem));
            }
        } else if (rule.kind == FieldKind::Prompts) {
            for (std::size_t i = 0; i < node.prompts.size(); ++i) {
                if (auto problem = checkTarget(rule.path + "[" + std::to_string(i) + "]", rule.role,
                                               node.prompts[i])) {
                    problems.push_back(std::move(*problem));
                }
            }
        } else {
            const Value value = ColumnValue(node, rule.column);
            const auto* number = std::get_if<std::int64_t>(&value);
            if (auto refusal = nodefields::Refusal(
                    rule, number ? std::optional<std::int64_t>(*number) : std::nullopt,
                    ValueText(value))) {
                problems.push_back({rule.path, *refusal});
            }
        }
    }
    return problems;
}

}  // namespace dbn::nodetext

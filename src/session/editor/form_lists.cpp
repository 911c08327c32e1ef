#include "session/editor/form_lists.h"

#include "core/component_error.h"

#include <charconv>

namespace dbn::session {

form::list_rows::RowCells TargetCells(const std::string& name, const StoredRef& ref,
                                      const std::string& description,
                                      const form::KeyedCollection& nodeNames) {
    return {name,
            TargetText(ref),
            description,
            nodeNames.Item(CommandArg(ref.typeID)),
            CommandArg(ref.typeID),
            CommandArg(ref.number)};
}

void AddTargetRow(form::ListView& list, int position, const std::string& name, const StoredRef& ref,
                  const std::string& description, const form::KeyedCollection& nodeNames) {
    form::list_rows::AddRow(list, position, TargetCells(name, ref, description, nodeNames));
}

std::int32_t EntryNumberOrRaise(const form::ListControl& list, int index) {
    const std::string& text = list.List(index);
    std::size_t begin = text.find_first_not_of(' ');
    std::size_t end = text.find_last_not_of(' ');
    std::int32_t value = 0;
    if (begin != std::string::npos) {
        const char* first = text.data() + begin;
        const char* last = text.data() + end + 1;
        auto [stop, error] = std::from_chars(first, last, value);
        if (error == std::errc() && stop == last) {
            return value;
        }
    }
    RaiseTypeMismatch();
}

bool SelectByEntryRange(form::ListControl& list, std::int32_t value, int fallback) {
    const int count = list.ListCount();
    if (count > 0 && value >= EntryNumberOrRaise(list, 0) &&
        value <= EntryNumberOrRaise(list, count - 1)) {
        list.SetListIndex(static_cast<int>(value) - 1);
        return true;
    }
    if (fallback >= 0) {
        list.SetListIndex(fallback);
    } else if (count > 0) {
        list.SetListIndex(0);
    }
    return count == 0;
}

bool SelectInRange(form::ListControl& list, std::int32_t value, std::int32_t low, std::int32_t high,
                   int fallback) {
    if (value >= low && value <= high) {
        list.SetListIndex(static_cast<int>(value) - 1);
        return true;
    }
    list.SetListIndex(fallback);
    return false;
}

void AddEntry(form::ListControl& list, const std::string& text, std::int32_t tag) {
    list.AddItem(text);
    list.SetItemData(list.NewIndex(), tag);
}

}  // namespace dbn::session

#include "form/list_rows.h"

#include "core/component_error.h"

#include <cctype>
#include <cmath>
#include <limits>
#include <optional>
#include <stdexcept>

namespace dbn::form::list_rows {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}
bool IsDigit(char c) {
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

// The value of a numeric text, or nothing when the text is not a number.
std::optional<double> ParseNumber(const std::string& text) {
    std::size_t begin = 0;
    std::size_t end = text.size();
    while (begin < end && IsBlank(text[begin])) {
        ++begin;
    }
    while (end > begin && IsBlank(text[end - 1])) {
        --end;
    }
    std::size_t at = begin;
    if (at < end && (text[at] == '+' || text[at] == '-')) {
        ++at;
    }
    int digits = 0;
    bool point = false;
    for (; at < end; ++at) {
        if (IsDigit(text[at])) {
            ++digits;
        } else if (text[at] == '.' && !point) {
            point = true;
        } else {
            return std::nullopt;
        }
    }
    if (digits == 0) {
        return std::nullopt;
    }
    try {
        return std::stod(text.substr(begin, end - begin));
    } catch (const std::out_of_range&) {
        // Too many digits for any number: reads as beyond every range.
        return std::numeric_limits<double>::infinity();
    }
}

long RoundedInRange(const std::string& text, long lowest, long highest) {
    const std::optional<double> value = ParseNumber(text);
    if (!value) {
        RaiseTypeMismatch();
    }
    // nearbyint rounds half to even in the default rounding mode.
    const double rounded = std::nearbyint(*value);
    if (rounded < static_cast<double>(lowest) || rounded > static_cast<double>(highest)) {
        RaiseOverflow();
    }
    return static_cast<long>(rounded);
}

}  // namespace

std::string RowKey(int position) {
    return std::to_string(position) + "a";
}

bool IsNumeric(const std::string& text) {
    return ParseNumber(text).has_value();
}

long ToLong(const std::string& text) {
    return RoundedInRange(text, std::numeric_limits<std::int32_t>::min(),
                          std::numeric_limits<std::int32_t>::max());
}

std::int16_t ToInt16(const std::string& text) {
    return static_cast<std::int16_t>(RoundedInRange(text, std::numeric_limits<std::int16_t>::min(),
                                                    std::numeric_limits<std::int16_t>::max()));
}

long NodeNumberOf(const ListItem& row) {
    return ToLong(row.SubItem(kNodeNumber));
}

std::string MaxNumberNotice(const std::string& code) {
    return "Please check the \"Max Number of each Node\" Section for " + code +
           " Node in Partition Settings.";
}

std::string LastEntry(const ListControl& number) {
    const int count = number.ListCount();
    return count > 0 ? number.List(count - 1) : std::string();
}

void RefillNumbers(ListControl& number, const std::string& highest) {
    if (LastEntry(number) == highest) {
        return;
    }
    const long last = ToLong(highest);
    number.Clear();
    for (long value = 1; value <= last; ++value) {
        number.AddItem(std::to_string(value));
    }
}

ListItem& AddRow(ListView& list, int position, const std::string& name,
                 const std::string& commandNode, const std::string& label,
                 const std::string& nodeName, const std::string& typeId,
                 const std::string& nodeNumber) {
    ListItem& row = list.AddItem(RowKey(position), std::to_string(position));
    row.SetSubItem(kName, name);
    row.SetSubItem(kCommandNode, commandNode);
    row.SetSubItem(kLabel, label);
    row.SetSubItem(kNodeName, nodeName);
    row.SetSubItem(kNodeTypeID, typeId);
    row.SetSubItem(kNodeNumber, nodeNumber);
    return row;
}

RowCells CellsOf(const ListItem& row) {
    return {row.SubItem(kName),     row.SubItem(kCommandNode), row.SubItem(kLabel),
            row.SubItem(kNodeName), row.SubItem(kNodeTypeID),  row.SubItem(kNodeNumber)};
}

ListItem& AddRow(ListView& list, int position, const RowCells& cells) {
    return AddRow(list, position, cells.name, cells.commandNode, cells.label, cells.nodeName,
                  cells.typeId, cells.nodeNumber);
}

void CopyRows(const ListView& from, ListView& to) {
    for (int position = 0; position < from.ItemCount(); ++position) {
        const ListItem& source = from.ItemAt(position);
        AddRow(to, position + 1, source.SubItem(kName), source.SubItem(kCommandNode),
               source.SubItem(kLabel), source.SubItem(kNodeName), source.SubItem(kNodeTypeID),
               source.SubItem(kNodeNumber));
    }
}

}  // namespace dbn::form::list_rows

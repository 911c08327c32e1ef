#pragma once

// Small pieces shared by the editor's loading operations: filling list-view
// rows and picking list entries by stored values. Internal to the session
// layer.

#include "form/controls/list_control.h"
#include "form/controls/list_view.h"
#include "form/form_services.h"
#include "form/keyed_collection.h"
#include "form/list_rows.h"
#include "session/nodes/stored_values.h"

#include <cstdint>
#include <string>

namespace dbn::session {

// Adds row `position` (key "<position>a", text "<position>") with its six
// cells: name, target, description, type name, type ID, number.
// The cells of such a row, kept apart from any list.
form::list_rows::RowCells TargetCells(const std::string& name, const StoredRef& ref,
                                      const std::string& description,
                                      const form::KeyedCollection& nodeNames);
void AddTargetRow(form::ListView& list, int position, const std::string& name, const StoredRef& ref,
                  const std::string& description, const form::KeyedCollection& nodeNames);

// A list entry's text read as a whole number (error 13 when it is none).
std::int32_t EntryNumberOrRaise(const form::ListControl& list, int index);

// Selects index value - 1 when value lies between the list's first and last
// entries (compared as numbers), else `fallback` (-1: nothing when the list
// is empty, else index 0). False when a non-empty list fell back.
bool SelectByEntryRange(form::ListControl& list, std::int32_t value, int fallback);

// Selects index value - 1 when value lies in low..high, else `fallback`;
// false when it fell back.
bool SelectInRange(form::ListControl& list, std::int32_t value, std::int32_t low, std::int32_t high,
                   int fallback);

// Adds an entry and sets its tag on the entry just added.
void AddEntry(form::ListControl& list, const std::string& text, std::int32_t tag = 0);

// Shows the busy cursor for its lifetime; restores it on every path.
class BusyCursor {
public:
    explicit BusyCursor(form::FormServices& services) : services_(services) {
        services_.SetBusyCursor(true);
    }
    ~BusyCursor() { services_.SetBusyCursor(false); }
    BusyCursor(const BusyCursor&) = delete;
    BusyCursor& operator=(const BusyCursor&) = delete;

private:
    form::FormServices& services_;
};

}  // namespace dbn::session

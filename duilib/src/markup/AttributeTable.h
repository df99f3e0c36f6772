#pragma once
// A class's attributes as a table of names and setters, and the few shapes that setters have. Pure logic.
#include <cstddef>
#include <optional>
#include <string_view>

#include "markup/AttributeParser.h"

namespace DuiLib {

// `apply` gives false for a value that it does not understand; nothing has changed then.
template <typename Control>
struct AttributeEntry {
    std::wstring_view name;
    bool (*apply)(Control& control, std::wstring_view value);
};

// Null when the table does not have the name.
template <typename Control, std::size_t Count>
const AttributeEntry<Control>* FindAttribute(const AttributeEntry<Control> (&table)[Count], std::wstring_view name) {
    for (const AttributeEntry<Control>& entry : table) {
        if (entry.name == name) {
            return &entry;
        }
    }
    return nullptr;
}

// For a control's ApplyAttribute. The type of the answer is taken from it, because the header that has it is not pure.
template <typename Control, std::size_t Count>
auto ApplyFromTable(const AttributeEntry<Control> (&table)[Count], Control& control, std::wstring_view name,
                    std::wstring_view value) {
    using Result = decltype(control.ApplyAttribute(name, value));
    const AttributeEntry<Control>* entry = FindAttribute(table, name);
    if (!entry) {
        return Result::kUnknown;
    }
    return entry->apply(control, value) ? Result::kOk : Result::kBadValue;
}

// Hands a parsed value on; false when there is none.
template <typename Value, typename Apply>
bool ApplyParsed(const std::optional<Value>& value, Apply apply) {
    if (value) {
        apply(*value);
    }
    return value.has_value();
}

// A number that is at least `smallest`.
template <typename Apply>
bool ApplyNumber(std::wstring_view text, int smallest, Apply apply) {
    const std::optional<int> number = ParseInt(text);
    if (!number || *number < smallest) {
        return false;
    }
    apply(*number);
    return true;
}

}  // namespace DuiLib

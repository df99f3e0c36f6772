#include "tests/support/ImportHook.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

namespace harness {

namespace {

// The places of the module's import table that hold functions of that name.
std::vector<void**> Slots(HMODULE module, std::string_view function) {
    auto* const base = reinterpret_cast<BYTE*>(module ? module : GetModuleHandleW(nullptr));
    const auto at = [base](DWORD offset) { return base + offset; };
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& table = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    std::vector<void**> slots;
    std::vector<void**> parts;  // of names that hold it; the whole name counts first
    const auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(at(table.VirtualAddress));
    for (; table.VirtualAddress != 0 && library->Name != 0; ++library) {
        const auto* name = reinterpret_cast<const IMAGE_THUNK_DATA*>(at(library->OriginalFirstThunk));
        auto* slot = reinterpret_cast<void**>(at(library->FirstThunk));
        for (; name->u1.AddressOfData != 0; ++name, ++slot) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) {
                continue;
            }
            const auto* const entry =
                reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(at(static_cast<DWORD>(name->u1.AddressOfData)));
            const std::string_view imported(reinterpret_cast<const char*>(entry->Name));
            if (imported == function) {
                slots.push_back(slot);
            } else if (imported.find(function) != std::string_view::npos) {
                parts.push_back(slot);
            }
        }
    }
    return slots.empty() ? parts : slots;
}

}  // namespace

ImportHook::ImportHook(HMODULE module, const std::string& function, void* replacement) {
    const std::vector<void**> slots = Slots(module, function);
    if (slots.size() != 1) {
        ADD_FAILURE() << "imported " << slots.size() << " times: " << function;
        return;
    }
    slot_ = slots.front();
    original_ = *slot_;
    Write(replacement);
}

ImportHook::~ImportHook() {
    if (slot_) {
        Write(original_);
    }
}

// Some linkers put the table into memory that is only read.
void ImportHook::Write(void* function) const {
    DWORD before = 0;
    VirtualProtect(slot_, sizeof(*slot_), PAGE_READWRITE, &before);
    *slot_ = function;
    VirtualProtect(slot_, sizeof(*slot_), before, &before);
}

}  // namespace harness

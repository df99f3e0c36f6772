#include "service/EffectTable.h"

#include <algorithm>

namespace service {

namespace {

// Each row stands at its number, so that EffectOf finds it.
constexpr bool RowsStandAtTheirNumbers() {
    for (std::size_t i = 0; i < kEffects.size(); ++i) {
        if (kEffects[i].id != static_cast<EffectId>(i)) {
            return false;
        }
    }
    return true;
}
static_assert(RowsStandAtTheirNumbers());

// Each row has a place of its own in a snapshot.
constexpr bool EveryRowIsRead() {
    constexpr auto kOrder = ReadOrder();
    return std::all_of(kEffects.begin(), kEffects.end(),
                       [&kOrder](const Effect& effect) { return kOrder[effect.readPlace] == effect.id; });
}
static_assert(EveryRowIsRead());

template <typename Rows, typename Matches>
auto FindRow(const Rows& rows, Matches matches) -> const typename Rows::value_type* {
    const auto found = std::find_if(rows.begin(), rows.end(), matches);
    return found == rows.end() ? nullptr : &*found;
}

}  // namespace

const Effect* EffectOfControl(std::wstring_view control) {
    return FindRow(kEffects, [control](const Effect& row) { return row.control == control; });
}

const BeautyLevel* BeautyLevelOf(GlobalUtils::BeautyKind kind) {
    return FindRow(kBeautyLevels, [kind](const BeautyLevel& row) { return row.kind == kind; });
}

const BeautyLevel* BeautyLevelOfControl(std::wstring_view control) {
    return FindRow(kBeautyLevels, [control](const BeautyLevel& row) { return row.control == control; });
}

}  // namespace service

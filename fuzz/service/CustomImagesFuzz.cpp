// The registry string of the user's own backgrounds, and the names in it.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/support/Require.h"
#include "fuzz/support/WideText.h"
#include "service/CustomImageGroup.h"
#include "service/pictures/CustomItemNames.h"
#include "service/pictures/FileKinds.h"

namespace FileKinds = pictures::FileKinds;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::wstring text = WideText({data, size});
    const std::vector<CustomImageRecord> records = CustomImageGroup::Parse(text);
    // What was understood says the same when it is written out and read again.
    REQUIRE(CustomImageGroup::Parse(CustomImageGroup::Serialise(records)) == records);

    const std::wstring item = CustomItemName(text);
    REQUIRE(item.empty() || text.starts_with(item));
    REQUIRE(!FileKinds::IsImage(text) || !FileKinds::IsVideo(text));
    return 0;
}

// Usage events as lines of the spool: whatever names and texts hold, a reader of JSON gets them back, and a line never
// breaks.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/support/Input.h"
#include "fuzz/support/Require.h"
#include "suite/common/Utf8.h"
#include "suite/report/EventLine.h"

namespace {

// Reads a line from the left; every mistake ends the program.
class Reader {
  public:
    explicit Reader(std::string_view line) : rest_(line) {}

    void Literal(std::string_view text) {
        REQUIRE(rest_.starts_with(text));
        rest_.remove_prefix(text.size());
    }

    std::string String() {
        Literal("\"");
        std::string text;
        while (!rest_.starts_with('"')) {
            REQUIRE(!rest_.empty());
            const auto c = static_cast<unsigned char>(Take());
            REQUIRE(c >= 0x20 && c != 0x7F);
            if (c != '\\') {
                text += static_cast<char>(c);
                continue;
            }
            const char escape = Take();
            if (escape == 'u') {
                suite::AppendUtf8(text,
                                  static_cast<char32_t>(std::stoul(std::string(rest_.substr(0, 4)), nullptr, 16)));
                rest_.remove_prefix(4);
            } else {
                REQUIRE(escape == '"' || escape == '\\');
                text += escape;
            }
        }
        Literal("\"");
        return text;
    }

    void AtEnd() const { REQUIRE(rest_.empty()); }

  private:
    char Take() {
        REQUIRE(!rest_.empty());
        const char c = rest_.front();
        rest_.remove_prefix(1);
        return c;
    }

    std::string_view rest_;
};

std::string Readable(std::string_view bytes) {
    return suite::ToUtf8(suite::FromUtf8(bytes));
}

void CheckLine(const std::string& line) {
    REQUIRE(suite::ToUtf8(suite::FromUtf8(line)) == line);
    REQUIRE(line.find('\n') == line.npos);
}

std::string TakeText(Input& in) {
    const auto bytes = in.Take(in.Any<std::uint8_t>());
    return {bytes.begin(), bytes.end()};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input in(data, size);
    suite::UtcTime time;
    if (in.Flag()) {
        for (int* field :
             {&time.year, &time.month, &time.day, &time.hour, &time.minute, &time.second, &time.millisecond}) {
            *field = in.Any<std::int32_t>();
        }
    }
    const std::string event = TakeText(in), text = TakeText(in);
    {
        const std::string line = suite::TextEventLine(time, event, text);
        CheckLine(line);
        Reader reader(line);
        reader.Literal("{\"time\":");
        REQUIRE(reader.String().ends_with('Z'));
        reader.Literal(",\"event\":");
        REQUIRE(reader.String() == Readable(event));
        reader.Literal(",\"text\":");
        REQUIRE(reader.String() == Readable(text));
        reader.Literal("}");
        reader.AtEnd();
    }
    const auto number = in.Any<std::int32_t>();
    std::vector<std::pair<std::string, int>> fields;
    while (!in.Empty()) {
        const auto value = in.Any<std::int32_t>();
        fields.emplace_back(TakeText(in), value);
    }
    const std::string line = suite::FieldEventLine(time, number, fields);
    CheckLine(line);
    Reader reader(line);
    reader.Literal("{\"time\":");
    reader.String();
    reader.Literal(",\"event\":\"" + std::to_string(number) + "\",\"fields\":{");
    for (const auto& field : fields) {
        if (&field != &fields.front()) {
            reader.Literal(",");
        }
        REQUIRE(reader.String() == Readable(field.first));
        reader.Literal(":" + std::to_string(field.second));
    }
    reader.Literal("}}");
    reader.AtEnd();
    return 0;
}

#pragma once
// Builds one JSON object on one line, its members in the order they are added.
//
// Why: test scripts read the stand-in service's output line by line. Texts may hold any bytes: what is no valid UTF-8
// becomes U+FFFD, so that every line can be read.
// Threads: none of its own.
#include <cstdint>
#include <string>
#include <string_view>

class JsonLine {
  public:
    JsonLine& Text(std::string_view name, std::string_view utf8);
    JsonLine& Number(std::string_view name, std::int64_t value);
    // `object` is taken as it is.
    JsonLine& Object(std::string_view name, const JsonLine& object);

    // The object, without a line break.
    std::string Take() const { return "{" + members_ + "}"; }

  private:
    void Name(std::string_view name);

    std::string members_;
};

// A JSON string with its quotes.
std::string JsonString(std::string_view utf8);

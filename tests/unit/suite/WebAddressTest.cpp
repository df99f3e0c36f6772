#include "suite/url/WebAddress.h"

#include <gtest/gtest.h>

#include <string>

using suite::IsWebAddress;

TEST(WebAddressTest, HttpAndHttpsPass) {
    for (const wchar_t* text :
         {L"https://www.example.com", L"http://example.com/", L"HTTPS://EXAMPLE.COM/A?b=c&d=%20#e",
          L"http://[::1]:8080/", L"https://b\u00fccher.example/\u65e5",
          L"https://user@example.com:1/(a,b;c)!~*$+|{}^"}) {
        EXPECT_TRUE(IsWebAddress(text));
    }
}

TEST(WebAddressTest, EverythingElseIsRefused) {
    for (const wchar_t* text : {L"",
                                L"http",
                                L"http:",
                                L"http:/",
                                L"http://",
                                L"https://",
                                L"https:///path",
                                L"https://?x",
                                L"https://#x",
                                L"https://:80",
                                L"https://@x",
                                L"file:///C:/x.exe",
                                L"C:\\x.exe",
                                L"\\\\server\\x.exe",
                                L"x.exe",
                                L"ftp://a",
                                L"javascript:alert(1)",
                                L"httpx://a",
                                L" https://a",
                                L"https://a b",
                                L"https://a ",
                                L"https://a\tb",
                                L"https://a\nb",
                                L"https://a\"b",
                                L"https://a'b",
                                L"https://a`b",
                                L"https://a\\b",
                                L"https://a<b>",
                                L"https://a\u00a0b",
                                L"https://a\u007f",
                                L"view-source:https://a",
                                L"mailto:a@b"}) {
        EXPECT_FALSE(IsWebAddress(text));
    }
    EXPECT_FALSE(IsWebAddress(std::wstring(L"https://a\0b", 11)));
}

TEST(WebAddressTest, TheLengthIsLimited) {
    const std::wstring begin = L"https://a/";
    EXPECT_TRUE(IsWebAddress(begin + std::wstring(suite::kLongestWebAddress - begin.size(), L'x')));
    EXPECT_FALSE(IsWebAddress(begin + std::wstring(suite::kLongestWebAddress - begin.size() + 1, L'x')));
}

#include "suite/url/WebAddress.h"

#include <gtest/gtest.h>

#include <string>

using suite::IsWebAddress;

TEST(WebAddressTest, TakesWebAddresses) {
    for (const wchar_t* address :
         {L"http://a", L"https://example.com", L"HTTPS://Example.com/a/b.html?c=d&e=%20f#g", L"https://[::1]:8080/",
          L"https://user@example.com", L"https://example.com/\u65e5\u672c?q=(a),b;c=1+2!~*$"}) {
        EXPECT_TRUE(IsWebAddress(address)) << testing::PrintToString(std::wstring(address));
    }
    EXPECT_TRUE(IsWebAddress(L"http://" + std::wstring(suite::kLongestWebAddress - 7, L'a')));
}

TEST(WebAddressTest, RefusesEverythingElse) {
    for (const wchar_t* text : {L"",
                                L"http",
                                L"http:",
                                L"http://",
                                L"https://",
                                L"http:///a",
                                L"http://?",
                                L"http://:80",
                                L"ftp://a",
                                L"file:///C:/windows/win.ini",
                                L"C:\\windows\\notepad.exe",
                                L"notepad.exe",
                                L"javascript:alert(1)",
                                L"mailto:a@b",
                                L" http://a",
                                L"http://a ",
                                L"http://a b",
                                L"http://a\"b",
                                L"http://a'b",
                                L"http://a\\b",
                                L"http://a\nb",
                                L"http://a\x7f",
                                L"http://a<b>",
                                L"\\\\server\\share",
                                L"httpx://a",
                                L"//a",
                                L"ms-settings:",
                                L"http:\\\\a"}) {
        EXPECT_FALSE(IsWebAddress(text)) << testing::PrintToString(std::wstring(text));
    }
    EXPECT_FALSE(IsWebAddress(std::wstring(L"http://a\0b", 10)));
    EXPECT_FALSE(IsWebAddress(L"http://" + std::wstring(suite::kLongestWebAddress - 6, L'a')));
}

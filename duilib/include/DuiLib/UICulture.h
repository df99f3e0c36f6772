#pragma once
// The program's texts: one string table per language, <values folder>\<language>\strings.xml.
//
//   <Strings language="en_US" direction="ltr"><String id="IDS_X">text</String>…</Strings>
//
// A language without a folder falls back to another region of the same language (the first by name; a Chinese tag goes
// by its script: zh_HK and zh_MO to zh_TW, others to zh_CN), then to en_US. A string that the table lacks is taken
// from en_US, then is its own key. Broken tables are logged and read as far as they are sound.
// Threads: selecting on the UI thread, before any other thread reads; reading from any thread afterwards.
#include <memory>
#include <string>

#include "DuiLib/Export.h"

namespace DuiLib {

class DUILIB_API UICulture {
  public:
    static UICulture* GetInstance();

    // With a trailing backslash or without.
    void SetValuesFolder(const std::wstring& folder);
    // `language`: "zh_CN". With `load` the tables are read at once, else with the first text. True when some table
    // could be read.
    bool SelectLanguage(const std::wstring& language, bool load);
    // The language in use after fallback; empty when none could be read.
    std::wstring GetLanguage() const;
    bool IsRightToLeft() const;
    std::wstring GetString(const std::wstring& key) const;

  private:
    UICulture();
    ~UICulture();
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace DuiLib

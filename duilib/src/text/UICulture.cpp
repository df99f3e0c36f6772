#include "DuiLib/UICulture.h"

#include <windows.h>

#include <map>
#include <mutex>
#include <vector>

#include "suite/common/FolderListing.h"
#include "suite/logger/QxLogger.h"
#include "suite/xml/XmlTree.h"
#include "text/LanguageFallback.h"

namespace DuiLib {
namespace {

struct StringTable {
    std::map<std::wstring, std::wstring> texts;
    bool rightToLeft = false;
    bool read = false;  // the file has a <Strings> root, sound or not
};

std::vector<std::wstring> SubFolders(const std::wstring& folder) {
    std::vector<std::wstring> names;
    if (folder.empty()) {
        return names;
    }
    for (suite::FolderListing entry(folder + L"*"); entry; entry.Next()) {
        if (entry.IsFolder()) {
            names.push_back(entry.Name());
        }
    }
    return names;
}

void Complain(const std::wstring& path, unsigned line, const std::wstring& what) {
    LogLine(LogLevel::kError, L"UICulture::ReadTable", path, L":", line, L": ", what);
}

StringTable ReadTable(const std::wstring& path) {
    StringTable table;
    const suite::XmlDocument document = suite::ReadXmlFile(path);
    if (!document.fault.empty()) {
        Complain(path, document.faultLine, document.fault);
    }
    if (!document.root) {
        return table;
    }
    const suite::XmlElement& root = *document.root;
    if (root.name != L"Strings") {
        Complain(path, root.line, L"The root is not Strings but " + root.name);
        return table;
    }
    table.read = true;
    if (const std::wstring* const direction = root.Attribute(L"direction")) {
        table.rightToLeft = *direction == L"rtl";
        if (!table.rightToLeft && *direction != L"ltr") {
            Complain(path, root.line, L"Unknown direction " + *direction);
        }
    }
    for (const suite::XmlElement& element : root.children) {
        const std::wstring* const id = element.Attribute(L"id");
        if (element.name != L"String" || !id || id->empty()) {
            Complain(path, element.line, L"No string with an id: " + element.name);
            continue;
        }
        if (!element.children.empty()) {
            Complain(path, element.line, L"Markup is not escaped in string " + *id);
        }
        if (!table.texts.emplace(*id, element.text).second) {
            Complain(path, element.line, L"Second string " + *id);
        }
    }
    return table;
}

}  // namespace

class UICulture::Impl {
  public:
    void SetFolder(const std::wstring& folder) {
        const std::scoped_lock lock(mutex_);
        folder_ = folder;
        if (!folder_.empty() && folder_.back() != L'\\' && folder_.back() != L'/') {
            folder_ += L'\\';
        }
        loaded_ = false;
    }

    bool Select(const std::wstring& wanted, bool load) {
        const std::scoped_lock lock(mutex_);
        language_ = ChooseLanguage(wanted, SubFolders(folder_));
        loaded_ = false;
        if (language_.empty()) {
            LogLine(LogLevel::kError, L"UICulture::SelectLanguage", L"No string tables for ", wanted, L" in ", folder_);
            return false;
        }
        if (!load) {
            return true;
        }
        Load();
        return own_.read || fallback_.read;
    }

    std::wstring Language() const {
        const std::scoped_lock lock(mutex_);
        return language_;
    }

    bool IsRightToLeft() {
        const std::scoped_lock lock(mutex_);
        Load();
        return own_.rightToLeft;
    }

    std::wstring Text(const std::wstring& key) {
        const std::scoped_lock lock(mutex_);
        Load();
        for (const StringTable* table : {&own_, &fallback_}) {
            const auto it = table->texts.find(key);
            if (it != table->texts.end()) {
                return it->second;
            }
        }
        return key;
    }

  private:
    // Guarded by mutex_.
    void Load() {
        if (loaded_) {
            return;
        }
        loaded_ = true;
        own_ = {};
        fallback_ = {};
        if (!language_.empty()) {
            own_ = ReadTable(TablePath(language_));
            if (language_ != kFallbackLanguage) {
                fallback_ = ReadTable(TablePath(kFallbackLanguage));
            }
            if (!own_.read) {
                language_ = fallback_.read ? kFallbackLanguage : L"";
            }
        }
    }
    std::wstring TablePath(const std::wstring& language) const { return folder_ + language + L"\\strings.xml"; }

    mutable std::mutex mutex_;
    // Guarded by mutex_.
    std::wstring folder_;    // with a trailing backslash
    std::wstring language_;  // a folder of it; empty: none
    bool loaded_ = false;
    StringTable own_, fallback_;
};

UICulture::UICulture() : impl_(std::make_unique<Impl>()) {}
UICulture::~UICulture() = default;

UICulture* UICulture::GetInstance() {
    static UICulture culture;
    return &culture;
}

void UICulture::SetValuesFolder(const std::wstring& folder) {
    impl_->SetFolder(folder);
}
bool UICulture::SelectLanguage(const std::wstring& language, bool load) {
    return impl_->Select(language, load);
}
std::wstring UICulture::GetLanguage() const {
    return impl_->Language();
}
bool UICulture::IsRightToLeft() const {
    return impl_->IsRightToLeft();
}
std::wstring UICulture::GetString(const std::wstring& key) const {
    return impl_->Text(key);
}

}  // namespace DuiLib

// What the report says of signatures, by what the system answers. The system itself has none to show here.
#include "diagnostics/SignatureState.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <softpub.h>
#include <wintrust.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "tests/support/FoundFunction.h"

namespace diagnostics {
namespace {

using testing::HasSubstr;

class SignatureTest : public testing::Test {
  protected:
    SignatureTest() {
        wchar_t temp[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, temp);
        folder_ = std::filesystem::path(temp) / (L"pixora-signatures-" + std::to_wstring(GetCurrentProcessId()));
        std::filesystem::create_directories(folder_);
        for (const wchar_t* name : {L"a.exe", L"b.dll", L"c.txt"}) {
            std::ofstream(folder_ / name) << "x";
        }
    }
    ~SignatureTest() override {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    Report Signatures(LONG result) const {
        answer_ = result;
        looked_.clear();
        Report report;
        AddSignatures(report, folder_.wstring());
        return report;
    }
    static LONG WINAPI Verify(HWND window, GUID* action, LPVOID given) {
        const auto& data = *static_cast<WINTRUST_DATA*>(given);
        EXPECT_EQ(window, INVALID_HANDLE_VALUE);
        EXPECT_EQ(data.dwUIChoice, DWORD{WTD_UI_NONE});
        EXPECT_EQ(data.cbStruct, sizeof data);
        EXPECT_EQ(data.fdwRevocationChecks, DWORD{WTD_REVOKE_NONE}) << "a list of the network's";
        EXPECT_NE(data.dwProvFlags & WTD_CACHE_ONLY_URL_RETRIEVAL, 0U);
        EXPECT_EQ(data.dwUnionChoice, DWORD{WTD_CHOICE_FILE});
        EXPECT_EQ(data.pFile->cbStruct, sizeof *data.pFile);
        static const GUID kGeneric = WINTRUST_ACTION_GENERIC_VERIFY_V2;
        EXPECT_TRUE(*action == kGeneric);
        if (data.dwStateAction == WTD_STATEACTION_VERIFY) {
            looked_.insert(data.pFile->pcwszFilePath);
            ++open_;
        } else {
            EXPECT_EQ(data.dwStateAction, DWORD{WTD_STATEACTION_CLOSE});
            --open_;
        }
        return answer_;
    }

    static inline LONG answer_ = 0;
    static inline int open_ = 0;
    static inline std::set<std::wstring> looked_;
    std::filesystem::path folder_;

  private:
    const harness::FoundFunction verify_{"WinVerifyTrust", &Verify};
};

TEST_F(SignatureTest, FilesAreCountedByTheirSignature) {
    EXPECT_THAT(Signatures(ERROR_SUCCESS).Text(), HasSubstr("signed files: 2, files without a signature: 0"));
    EXPECT_THAT(Signatures(TRUST_E_NOSIGNATURE).Text(), HasSubstr("signed files: 0, files without a signature: 2"));
    EXPECT_THAT(looked_, testing::ElementsAre((folder_ / L"a.exe").wstring(), (folder_ / L"b.dll").wstring()));
    EXPECT_EQ(open_, 0) << "what was opened for a look is not closed";
}

TEST_F(SignatureTest, WhatTheSystemCannotJudgeHasNoSignature) {
    for (const LONG result : {TRUST_E_SUBJECT_FORM_UNKNOWN, TRUST_E_PROVIDER_UNKNOWN}) {
        const Report report = Signatures(result);
        EXPECT_EQ(report.WrongCount(), 0);
        EXPECT_THAT(report.Text(), HasSubstr("signed files: 0, files without a signature: 2"));
    }
}

TEST_F(SignatureTest, ASignatureThatDoesNotHoldIsWrong) {
    const Report report = Signatures(TRUST_E_BAD_DIGEST);
    EXPECT_EQ(report.WrongCount(), 2);
    EXPECT_THAT(report.Text(), HasSubstr("the signature of a.exe does not hold"));
    EXPECT_THAT(report.Text(), HasSubstr("the signature of b.dll does not hold"));
    EXPECT_THAT(report.Text(), HasSubstr("Install Pixora again, from where its maker offers it.\n"));
    EXPECT_THAT(report.Text(), HasSubstr("signed files: 0, files without a signature: 0"));
}

}  // namespace
}  // namespace diagnostics

#pragma once
// The file checks and the folder of the user's own backgrounds, as far as they need no picture.
//
// Threads: any. Nothing throws.
#include <string>

class FileUtil {
  public:
    static FileUtil& GetInstance();

    // By the extension alone, in any case.
    bool IsVideoFile(const std::wstring& path) const;
    bool IsImageFile(const std::wstring& path) const;
    // Files and folders alike.
    bool FileExists(const std::wstring& path) const;
    // Missing in a folder that can be looked at. Anything else may come back: a share, a drive, a right.
    bool IsGone(const std::wstring& path) const;
    // Makes the last component of the path, with full access for every user of the machine: the camera service and
    // other users' sessions work in there too. True when the folder is there afterwards; one that was there before
    // keeps its access list. The parent must exist.
    bool CreateResDirectory(const std::wstring& path) const;
    // Over an older file. False when that fails, which is logged in the name of HomeService.
    bool CopyFileToDest(const std::wstring& source, const std::wstring& destination) const;

    FileUtil(const FileUtil&) = delete;
    FileUtil& operator=(const FileUtil&) = delete;

  private:
    FileUtil() = default;
    ~FileUtil() = default;
};

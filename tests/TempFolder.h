// TempFolder.h -- a folder of the test's own that goes with it, and files in it
#pragma once

#include "platform/Text.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

// Named after the running test, so that what a crash leaves behind tells where it comes from.
class TempFolder {
  public:
    TempFolder() : TempFolder(TestName())
    {
    }
    explicit TempFolder(const std::string &sName)
    {
        std::string s = (std::filesystem::temp_directory_path() / ("vd-" + sName + "-XXXXXX")).string();
        if (!mkdtemp(s.data())) {
            std::perror(s.c_str());
            std::abort(); // a test without its folder would write into somebody else's
        }
        path = s;
    }
    ~TempFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    TempFolder(const TempFolder &) = delete;
    TempFolder &operator=(const TempFolder &) = delete;

    std::filesystem::path operator/(const std::filesystem::path &name) const
    {
        return path / name;
    }
    operator const std::filesystem::path &() const
    {
        return path;
    }
    std::string string() const
    {
        return path.string();
    }
    // As the program takes paths: of the folder, and of something in it.
    std::u16string Wide() const
    {
        return FromUtf8(path.string());
    }
    std::u16string Wide(const std::filesystem::path &name) const
    {
        return FromUtf8((path / name).string());
    }

    // Writes a file with its folders and returns its path.
    std::filesystem::path Write(const std::filesystem::path &name, std::string_view bytes = "x") const
    {
        std::filesystem::create_directories((path / name).parent_path());
        std::ofstream file(path / name, std::ios::binary | std::ios::trunc);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush();
        EXPECT_TRUE(file) << name;
        return path / name;
    }
    // The bytes of a file; empty if there is none.
    std::string Read(const std::filesystem::path &name) const
    {
        std::ostringstream s;
        s << std::ifstream(path / name, std::ios::binary).rdbuf();
        return s.str();
    }

  private:
    static constexpr size_t NAME_MOST = 60; // leaves the paths below it room

    static std::string TestName()
    {
        const testing::TestInfo *pTest = testing::UnitTest::GetInstance()->current_test_info();
        std::string s = std::string(pTest ? pTest->name() : "test").substr(0, NAME_MOST);
        for (char &ch : s)
            if (!std::isalnum(static_cast<unsigned char>(ch)))
                ch = '-'; // a parameter's "/0"
        return s;
    }

    std::filesystem::path path;
};

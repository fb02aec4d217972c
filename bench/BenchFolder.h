// BenchFolder.h -- a folder of the benchmark's own that goes with it
#pragma once

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

enum class FolderPlace { Disk, Memory };

class BenchFolder {
  public:
    // Memory: where there is such a place, for benchmarks that are not about disks.
    explicit BenchFolder(FolderPlace ePlace = FolderPlace::Disk)
    {
        const bool bMemory = ePlace == FolderPlace::Memory && std::filesystem::exists("/dev/shm");
        std::string s = (bMemory ? "/dev/shm" : std::filesystem::temp_directory_path().string()) + "/vd-bench-XXXXXX";
        if (!mkdtemp(s.data())) {
            std::perror(s.c_str());
            std::exit(1);
        }
        path = s;
    }
    ~BenchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    BenchFolder(const BenchFolder &) = delete;
    BenchFolder &operator=(const BenchFolder &) = delete;

    const std::filesystem::path &Path() const
    {
        return path;
    }

  private:
    std::filesystem::path path;
};

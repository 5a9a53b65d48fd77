#pragma once

#include "base/FileDescriptor.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace orv {

/// A file with a content, which goes with the test.
struct TemporaryFile {
    explicit TemporaryFile(const std::string& content)
        : path(std::filesystem::temp_directory_path() / "orv-test-XXXXXX")
    {
        const FileDescriptor made(::mkstemp(path.data()));
        std::ofstream(path, std::ios::binary) << content;
    }
    ~TemporaryFile() { std::filesystem::remove(path); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    std::string path;
};

} // namespace orv

// A folder for one test's files, removed with everything in it.
#pragma once

#include <filesystem>
#include <string>

namespace quorix::testkit {

class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return path_; }

    // Writes a file of this name and returns its path.
    std::string Write(const std::string& name, const std::string& contents) const;

    // What the file holds, "" when there is none.
    std::string Read(const std::string& name) const;

private:
    std::filesystem::path path_;
};

}  // namespace quorix::testkit

#include "testkit/TemporaryFolder.h"

#include <fstream>
#include <iterator>
#include <random>
#include <system_error>

namespace quorix::testkit {

TemporaryFolder::TemporaryFolder() {
    std::random_device random;
    do {
        path_ = std::filesystem::temp_directory_path() / ("quorix-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryFolder::Write(const std::string& name, const std::string& contents) const {
    std::ofstream(path_ / name, std::ios::binary) << contents;
    return (path_ / name).string();
}

std::string TemporaryFolder::Read(const std::string& name) const {
    std::ifstream file(path_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace quorix::testkit

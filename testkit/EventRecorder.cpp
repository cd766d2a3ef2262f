#include "testkit/EventRecorder.h"

#include <algorithm>

namespace quorix::testkit {

std::size_t EventRecorder::Count(const std::string& event) const {
    return static_cast<std::size_t>(std::count_if(lines.begin(), lines.end(), [&](const std::string& line) {
        return line.substr(0, line.find(' ')) == event;
    }));
}

}  // namespace quorix::testkit

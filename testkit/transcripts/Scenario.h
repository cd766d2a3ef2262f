// Scenarios read from transcript files; docs/transcripts.md describes the format.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace quorix::transcripts {

struct Step {
    std::string where;  // file and line
    std::size_t depth;  // of its indentation
    std::string text;
};

struct Scenario {
    std::string title;
    std::vector<std::string> tags;
    std::vector<Step> steps;

    bool Has(const std::string& tag) const;
};

// Those of a folder, without its beginnings.
std::vector<std::filesystem::path> TranscriptsIn(const std::filesystem::path& folder);

// The scenarios of a file, one for each of its cases and modes, with their beginnings, which stand in
// beginnings.transcript beside it. Throws std::runtime_error for what it cannot read.
std::vector<Scenario> ReadTranscript(const std::filesystem::path& file);

// Where `token` stands in `text` from `from` on, outside of quotes and parentheses; npos when it does not.
std::size_t FindOutside(const std::string& text, const std::string& token, std::size_t from = 0);

// Cut at each `separator` that stands outside of quotes and parentheses.
std::vector<std::string> SplitOutside(const std::string& text, const std::string& separator);

}  // namespace quorix::transcripts

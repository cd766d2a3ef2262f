#include "testkit/transcripts/Scenario.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <stdexcept>

namespace quorix::transcripts {
namespace {

using Steps = std::vector<Step>;

constexpr std::size_t kIndentation = 2;
constexpr const char* kBeginnings = "beginnings.transcript";

std::size_t FindAnywhere(const std::string& text, const std::string& token, std::size_t from) {
    return text.find(token, from);
}

template <class Find>
std::vector<std::string> Split(const std::string& text, const std::string& separator, Find find) {
    std::vector<std::string> parts;
    std::size_t begin = 0;
    for (std::size_t end; (end = find(text, separator, begin)) != std::string::npos;) {
        parts.push_back(text.substr(begin, end - begin));
        begin = end + separator.size();
    }
    parts.push_back(text.substr(begin));
    return parts;
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
    return text;
}

// The paragraphs of a file: lines without comments, each with what continues it behind a backslash.
std::vector<Steps> ParagraphsOf(const std::filesystem::path& file) {
    std::ifstream in(file);
    if (!in) throw std::runtime_error("cannot read " + file.string());
    std::vector<Steps> paragraphs;
    int number = 0;
    bool isNew = true;
    bool goesOn = false;
    for (std::string line; std::getline(in, line);) {
        const std::string where = file.filename().string() + ":" + std::to_string(++number);
        const std::size_t depth = line.find_first_not_of(' ');
        isNew = isNew || depth == std::string::npos;
        if (depth == std::string::npos || line[depth] == '#') continue;
        if (isNew) paragraphs.emplace_back();
        isNew = false;
        if (!goesOn) paragraphs.back().push_back({where, depth, {}});
        goesOn = line.ends_with('\\');
        paragraphs.back().back().text += line.substr(depth, line.size() - depth - (goesOn ? 1 : 0));
    }
    return paragraphs;
}

// "Title [tag] [other]" without its tags, which are added to `tags`.
std::string TakeTags(std::string title, std::vector<std::string>& tags) {
    while (title.ends_with(']')) {
        const std::size_t at = title.rfind('[');
        tags.push_back(title.substr(at + 1, title.size() - at - 2));
        title.erase(at == 0 ? 0 : at - 1);
    }
    return title;
}

class Reader {
public:
    explicit Reader(const std::filesystem::path& beginnings) {
        if (!std::filesystem::exists(beginnings)) return;
        for (Steps& paragraph : ParagraphsOf(beginnings)) {
            const std::string name = paragraph.front().text;
            paragraph.erase(paragraph.begin());
            beginnings_[name] = Expanded(paragraph);
        }
    }

    std::vector<Scenario> Read(const std::filesystem::path& file) {
        std::vector<Scenario> all;
        std::vector<std::string> usual;
        for (Steps& paragraph : ParagraphsOf(file)) {
            Scenario scenario;
            scenario.title = TakeTags(paragraph.front().text, scenario.tags);
            if (scenario.title.empty()) {
                usual = scenario.tags;
                continue;
            }
            scenario.title = paragraph.front().where + ": " + scenario.title;
            if (scenario.tags.empty()) scenario.tags = usual;
            paragraph.erase(paragraph.begin());
            AddCases(scenario, paragraph, all);
        }
        return all;
    }

    // Beginnings written out, and a line of several steps as so many.
    Steps Expanded(const Steps& steps) const {
        Steps all;
        for (const Step& step : steps) {
            const std::size_t arrow = step.text.find(" => ");
            Expand({step.where, step.depth, step.text.substr(0, arrow)}, all);
            if (arrow != std::string::npos)
                Expand({step.where, step.depth, step.text.substr(arrow + 4)}, all);
        }
        return all;
    }

private:
    // One scenario, or one for each row of its table, which follows its steps.
    void AddCases(const Scenario& scenario, const Steps& steps, std::vector<Scenario>& all) const {
        const auto table = std::find_if(steps.begin(), steps.end(),
                                        [](const Step& step) { return step.text.starts_with("cases: "); });
        const Steps own(steps.begin(), table);
        if (table == steps.end()) return AddModes(scenario, own, all);
        const std::vector<std::string> names = Split(table->text.substr(7), " | ", FindAnywhere);
        for (auto row = table + 1; row != steps.end(); ++row)
            AddModes(scenario, Filled(own, names, *row), all);
    }

    void AddModes(Scenario scenario, const Steps& steps, std::vector<Scenario>& all) const {
        for (const std::string& tag : scenario.tags) {
            if (beginnings_.count(tag) != 0) scenario.steps = beginnings_.at(tag);
        }
        for (const Step& step : Expanded(steps)) scenario.steps.push_back(step);
        if (scenario.Has("both modes")) {
            all.push_back(InMode(scenario, "KV_Classic"));
            all.push_back(InMode(scenario, "KV_Modern"));
        } else {
            all.push_back(scenario.Has("modern") ? InMode(scenario, "KV_Modern") : scenario);
        }
    }

    static Scenario InMode(Scenario scenario, const std::string& mode) {
        scenario.title += " [" + mode + "]";
        scenario.steps.insert(scenario.steps.begin(), {scenario.title, 0, "session.Mode := " + mode});
        return scenario;
    }

    static Steps Filled(Steps steps, const std::vector<std::string>& names, const Step& row) {
        std::vector<std::string> cells = Split(row.text, " | ", FindAnywhere);
        if (cells.size() != names.size()) throw std::runtime_error(row.where + ": cells are missing");
        for (Step& step : steps) {
            for (std::size_t i = 0; i < names.size(); ++i) {
                step.text = Replaced(step.text, "{" + names[i] + "}", cells[i] == "-" ? "" : cells[i]);
            }
            step.where = row.where + ", step " + step.where;
        }
        return steps;
    }

    void Expand(const Step& step, Steps& all) const {
        const auto beginning = beginnings_.find(step.text);
        if (beginning != beginnings_.end()) {
            for (const Step& begun : beginning->second) {
                all.push_back({begun.where, begun.depth + step.depth - kIndentation, begun.text});
            }
        } else if (step.text.starts_with("On")) {
            for (const auto& event : SplitOutside(step.text, ", "))
                all.push_back({step.where, step.depth, event});
        } else if (!step.text.empty()) {
            all.push_back(step);
        }
    }

    std::map<std::string, Steps> beginnings_;
};

}  // namespace

bool Scenario::Has(const std::string& tag) const {
    return std::find(tags.begin(), tags.end(), tag) != tags.end();
}

std::size_t FindOutside(const std::string& text, const std::string& token, std::size_t from) {
    bool quoted = false;
    int depth = 0;
    for (std::size_t at = from; at < text.size(); ++at) {
        if (!quoted && depth == 0 && text.compare(at, token.size(), token) == 0) return at;
        if (text[at] == '"') quoted = !quoted;
        if (quoted && text[at] == '\\') ++at;
        if (!quoted) depth += text[at] == '(' ? 1 : text[at] == ')' ? -1 : 0;
    }
    return std::string::npos;
}

std::vector<std::string> SplitOutside(const std::string& text, const std::string& separator) {
    return Split(text, separator, FindOutside);
}

std::vector<std::filesystem::path> TranscriptsIn(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::filesystem::path& file = entry.path();
        if (file.extension() == ".transcript" && file.filename() != kBeginnings) files.push_back(file);
    }
    return files;
}

std::vector<Scenario> ReadTranscript(const std::filesystem::path& file) {
    return Reader(file.parent_path() / kBeginnings).Read(file);
}

}  // namespace quorix::transcripts

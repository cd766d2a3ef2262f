// A transcript of any text: what a server says and an application calls, in any order. It is played as it is
// written; where something else happens, it is played again without what it expects, to its end.
#include "testkit/TemporaryFolder.h"
#include "testkit/transcripts/NativeFace.h"
#include "testkit/transcripts/Runner.h"

namespace quorix::transcripts {
namespace {

std::shared_ptr<void> BeginASession(Stage& stage) {
    stage.Add("session", cSession::Create());
    return nullptr;
}

class Careful : public NativeFace {
public:
    explicit Careful(bool isDeaf) : NativeFace(BeginASession), isDeaf_(isDeaf) {}

    std::map<std::string, Value> Start(EventHandler onEvent) override {
        return NativeFace::Start(isDeaf_ ? [](const auto&, const auto&) {} : onEvent);
    }
    // No file gets a name that nobody chose.
    Value Call(const Object& object, const std::string& member, const Values& arguments) override {
        return member.find("File") == std::string::npos ? NativeFace::Call(object, member, arguments)
                                                        : Value();
    }
    void Wait(double seconds) override { NativeFace::Wait(std::clamp(seconds, 0.0, 1000.0)); }

private:
    const bool isDeaf_;
};

bool IsExpectation(const Step& step) {
    return step.text.starts_with("On") || step.text.starts_with("client: ");
}

void PlayAnyhow(Scenario scenario) {
    Careful face(false);
    if (Runner(face, scenario).Play().empty()) return;
    std::erase_if(scenario.steps, IsExpectation);
    scenario.steps.insert(scenario.steps.begin(), {"", 0, "whatever goes out"});
    Careful deaf(true);
    Runner(deaf, scenario).Play();
}

// Where the files lie that scenarios begin with.
const testkit::TemporaryFolder& Folder() {
    static const testkit::TemporaryFolder folder;
    static const bool isReady = std::filesystem::copy_file(QUORIX_TRANSCRIPTS "/beginnings.transcript",
                                                           folder.Path() / "beginnings.transcript");
    return isReady ? folder : throw std::runtime_error("no beginnings");
}

}  // namespace
}  // namespace quorix::transcripts

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorix::transcripts;
    const auto file = Folder().Write("any.transcript", {reinterpret_cast<const char*>(data), size});
    std::vector<Scenario> scenarios;
    try {
        scenarios = ReadTranscript(file);
    } catch (const std::exception&) {  // it cannot be read
    }
    for (const Scenario& scenario : scenarios) PlayAnyhow(scenario);
    return 0;
}

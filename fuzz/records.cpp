// An element as an application uses it: searched, asked, changed, stored, and read from a file of any bytes.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>

#include "quorix/base/AutomationError.h"
#include "quorix/base/WireText.h"
#include "quorix/xml/ParsedXml.h"
#include "quorix/xml/cXML_Node.h"
#include "testkit/TemporaryFolder.h"

namespace quorix {
namespace {

constexpr const char* kXml = "<a b='1'><c>2</c><p:d x='y'>True</p:d><c><e/></c></a>";

void Expect(bool holds) {
    if (!holds) std::abort();
}

String Text(FuzzedDataProvider& input) { return TextFromUtf8(input.ConsumeRandomLengthString(100)); }

void Act(cXML_Node& node, const testkit::TemporaryFolder& folder, FuzzedDataProvider& input) {
    const String path = TextFromUtf8((folder.Path() / "file").string());
    const String name = Text(input);
    switch (input.ConsumeIntegralInRange(0, 15)) {
        case 0: return Expect(!node.getNode(name) || node.getNodes(name)->Count() > 0);
        case 1: return Expect(node.FindTag(name) == node.TagExists(name));
        case 2: return Expect(node.GetTag(name).empty() || node.FindTag(name));
        case 3: return Expect(node.GetTagInt(name) == 0 || node.GetTagInt(name) == node.GetTagLng(name));
        case 4: return static_cast<void>(node.GetTagYesNo(name));
        case 5: return Expect(node.GetAttrib(name).empty() || node.FindAttrib(name));
        case 6: return node.setAttrib(name, Text(input));
        case 7: return node.AddAttrib(name, Text(input), Text(input));
        case 8: return node.AddTag(name, Text(input), Text(input));
        case 9: return node.SetTag(name, Text(input));
        case 10: return node.xml(name);
        case 11:
            return node.LoadXML_FromFile(
                TextFromUtf8(folder.Write("file", input.ConsumeRandomLengthString())));
        case 12: return node.LoadXML_FromFile(path);
        default: return node.SaveXML_ToFile(path);
    }
}

// What was written loads again, as the same.
void CheckWritten(const cXML_Node& node) {
    const String written = node.xml();
    cXML_Node again;
    again.xml(written);
    Expect(again.GetNamespace() == node.GetNamespace());
    if (written.find(u"&#") == String::npos && written.find(u'\r') == String::npos)
        Expect(again.xml() == written);
}

}  // namespace
}  // namespace quorix

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quorix;
    static const testkit::TemporaryFolder folder;
    FuzzedDataProvider input(data, size);
    cXML_Node node = input.ConsumeBool() ? cXML_Node(ParsedXml::FromUtf8(kXml)) : cXML_Node();
    while (input.remaining_bytes() > 0) {
        try {
            Act(node, folder, input);
        } catch (const AutomationError&) {  // NOLINT(bugprone-empty-catch): the application's own mistake
        }
        CheckWritten(node);
    }
    return 0;
}

// Saving and loading: encodings and declarations.
#include <gtest/gtest.h>

#include "quorix/xml/cXML_Node.h"
#include "quorix/xml/cXML_Writer.h"
#include "testkit/TemporaryFolder.h"
#include "tests/unit/ErrorOf.h"

namespace quorix {

namespace {

class XmlFile : public ::testing::Test {
protected:
    void Put(const std::string& bytes) const { folder_.Write(kFile, bytes); }
    std::string Bytes() const { return folder_.Read(kFile); }
    String Name() const { return (folder_.Path() / kFile).u16string(); }

    String Loaded(const std::string& bytes) const {
        Put(bytes);
        cXML_Node node;
        node.xml(u"<?xml version='1.0' encoding='ISO-8859-2'?><text/>");
        node.LoadXML_FromFile(Name());
        return node.xml();
    }

private:
    static constexpr const char* kFile = "\u00e9.xml";
    testkit::TemporaryFolder folder_;
};

TEST_F(XmlFile, IsReadInTheEncodingItDeclares) {
    EXPECT_EQ(Loaded("<a>\xC3\xA9</a>\n"), u"<a>\u00e9</a>");
    EXPECT_EQ(Loaded("\xEF\xBB\xBF<a>\xC3\xA9</a>"), u"<a>\u00e9</a>");
    EXPECT_EQ(Loaded("<?xml version='1.0' encoding='ISO-8859-5'?><a>\xE9</a>"),
              u"<?xml version='1.0' encoding='ISO-8859-5'?><a>\u0449</a>");
    EXPECT_EQ(Loaded(std::string("\xFF\xFE<\0a\0>\0\xE9\0<\0/\0a\0>\0", 18)), u"<a>\u00e9</a>");
    EXPECT_EQ(Loaded(std::string("\xFE\xFF\0<\0a\0>\0\xE9\0<\0/\0a\0>", 18)), u"<a>\u00e9</a>");
}

TEST_F(XmlFile, ThatIsDamagedOrMissingDoesNotLoad) {
    for (const char* bytes : {"", "<a>\xE9</a>", "<a>\xC3</a>", "<a>\xED\xA0\x80</a>", "<a", "\xFF\xFE<",
                              "<?xml version='1.0' encoding='EUC-JP'?><a>\xFF\xFF</a>",
                              "<?xml version='1.0' encoding='none-such'?><a/>"}) {
        EXPECT_EQ(Loaded(bytes), u"") << bytes;
    }
    EXPECT_EQ(Loaded(std::string("<a>\0</a>", 8)), u"");
    cXML_Node node;
    node.xml(u"<a/>");
    node.LoadXML_FromFile(u"/nonexistent/file.xml");
    EXPECT_EQ(node.xml(), u"");
}

TEST_F(XmlFile, IsSavedAsUtf8AndSaysSo) {
    cXML_Node node;
    node.xml(
        u"<?xml version='1.0' encoding = 'ISO-8859-1' standalone='yes'?><a "
        u"b='encoding=\"x\"'>\u00e9\u20ac</a>");
    node.SaveXML_ToFile(Name());
    EXPECT_EQ(Bytes(),
              "<?xml version='1.0' encoding = 'UTF-8' standalone='yes'?>"
              "<a b=\"encoding=&quot;x&quot;\">\xC3\xA9\xE2\x82\xAC</a>");
    node.LoadXML_FromFile(Name());
    EXPECT_EQ(node.GetNamespace() + node.Root().Text(), u"a\u00e9\u20ac");
}

TEST_F(XmlFile, OfTheWriterComesBackWithItsRoot) {
    cXML_Writer writer;
    writer.createProcessingInstruction(u"xml", u"version='1.0' encoding='windows-1252'");
    writer.setRootElement(u"r", u"", u"");
    writer.SaveXML_ToFile(Name());

    cXML_Writer reader;
    ASSERT_TRUE(reader.LoadXML_FromFile(Name()));
    reader.setNode(u"n", u"t");
    reader.addNode();
    EXPECT_EQ(reader.xml(), u"<?xml version='1.0' encoding='UTF-8'?><r><n>t</n></r>");
    Put("<cut");
    EXPECT_FALSE(reader.LoadXML_FromFile(Name()));
    EXPECT_EQ(reader.xml(), u"");
}

TEST_F(XmlFile, ThatCannotBeWrittenRaisesFiftyThree) {
    EXPECT_EQ(ErrorOf([] { cXML_Node().SaveXML_ToFile(u"/nonexistent/folder/file.xml"); }), 53);
}

}  // namespace

}  // namespace quorix

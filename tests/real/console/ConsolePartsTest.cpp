// The parts of the console that guard: what is shown of a stranger's text, and what is taken
// for a command's parameters.
#include <gmock/gmock.h>

#ifdef QUORIX_CONSOLE

#include "apps/console/Clean.h"
#include "apps/console/Parameters.h"
#include "apps/console/Proxy.h"
#include "apps/console/Wrap.h"
#include "quorix/base/WireText.h"

namespace quorix::console {
namespace {

TEST(ConsoleParts, MarkWhatControlsATerminalAndIsolateWhatTurnsItsOrder) {
    const struct {
        std::string_view text, shown;
    } cases[] = {
        {"plain ü 😀 鷹", "plain ü 😀 鷹"},
        {"a\x1b[2Jb\x7f", "a<U+001B>[2Jb<U+007F>"},
        {"\u009b31m\u0085", "<U+009B>31m<U+0085>"},
        {"tab\tbell\a", "tab bell<U+0007>"},
        {"\u202Eevil\u2066\u200F\uFEFF\u200B", "<U+202E>evil<U+2066><U+200F><U+FEFF><U+200B>"},
        {"שלום", "\u2068שלום\u2069"},
        {"👩\u200D🚀 می\u200Cخواهم", "\u2068👩\u200D🚀 می\u200Cخواهم\u2069"},
        {"cut \xc3", "cut \uFFFD"},
        {"\xc0\x9b", "\uFFFD\uFFFD"},
    };
    for (const auto& [text, shown] : cases) EXPECT_EQ(Clean(text, Lines::many), shown);
    EXPECT_EQ(Clean("a\r\nb\rc\u2028d\ne", Lines::many), "a\nb\nc\nd\ne");
    EXPECT_EQ(Clean("a\nb\rc\u2029d", Lines::one), "a<U+000A>b<U+000D>c<U+2029>d");
}

TEST(ConsoleParts, IndentEveryLineButTheFirst) {
    EXPECT_EQ(Wrap("ann: one\n! two\nthree", 0, 4), "ann: one\n    ! two\n    three");
    EXPECT_EQ(Wrap("ann: word wörd 漢字漢字", 12, 4), "ann: word\n    wörd\n    漢字漢字");
    EXPECT_EQ(Wrap("0123456789", 6, 2), "012345\n  6789");
    EXPECT_EQ(Wrap("filled up                 ! forged", 10, 2).find("\n!"), std::string::npos);
}

TEST(ConsoleParts, TakeRightParametersOnly) {
    const struct {
        const char* usage;
        StringView line;
        bool right;
    } cases[] = {
        {"JID TEXT", u" ann@localhost/x  hello  there ", true},
        {"JID TEXT", u"ann@localhost", false},
        {"JID TEXT", u"@localhost hello", false},
        {"JID TEXT", u"a'b@localhost hello", false},
        {"JID", u"ann@localhost bob@localhost", false},
        {"XML", u"<a b:c='d'/>", true},
        {"JIDS TEXT", u"a@b,c@d text", true},
        {"XML", u"<a", false},
        {"ROOM", u"conference.localhost", false},
        {"PRIORITY", u"-128", true},
        {"PRIORITY", u"high", false},
        {"PRIORITY", u"128", false},
        {"SECONDS", u"-1", false},
        {"[JID]", u"", true},
        {"JID [VALUES]", u"a@b x=1; y=", true},
        {"JID [VALUES]", u"a@b x", false},
        {"NAMESPACE [TEXT]", u"notes", false},
        {"", u"more", false},
    };
    for (const auto& [usage, line, right] : cases) {
        EXPECT_EQ(ParseLine(usage, line).complaint.empty(), right) << usage << ": " << Utf8FromText(line);
    }
    EXPECT_THAT(ParseLine("JID TEXT", u"a@b  two  words ").values,
                ::testing::ElementsAre(u"a@b", u"two  words"));
    EXPECT_TRUE(ParseLine("USER PASSWORD", u"ann").onlyPasswordMissing);
    EXPECT_FALSE(ParseLine("USER PASSWORD", u"").onlyPasswordMissing);
}

TEST(ConsoleParts, ReadAProxyAsTheAddressItIs) {
    const auto proxy = ParseProxy("socks5://joe%40home:p%3Aw%20%2F@[::1]:1080");
    ASSERT_TRUE(proxy);
    EXPECT_EQ(proxy->user + " " + proxy->password + " " + proxy->host, "joe@home p:w / ::1");
    EXPECT_EQ(proxy->port, 1080);
    for (const char* wrong : {"", "h:1", "socks4://h:1", "socks5://h", "socks5://h:0", "socks5://h:65536",
                              "http://joe:pw@h:1", "http://h:1/path", "socks5://joe@h:1"}) {
        EXPECT_FALSE(ParseProxy(wrong)) << wrong;
    }
}

}  // namespace
}  // namespace quorix::console

#endif

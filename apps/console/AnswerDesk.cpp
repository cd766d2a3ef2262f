#include "apps/console/AnswerDesk.h"

#include <ctime>

#include "apps/console/Console.h"
#include "quorix/base/WireText.h"

namespace quorix::console {

namespace {

String Clock(const char* format, const std::tm& time) {
    char text[40];
    std::strftime(text, sizeof text, format, &time);
    return WireFromBytes(text);
}

}  // namespace

void AnswerDesk::OnVersionRequest(StringView FromJid, StringView /*ID*/) {
    Session().SendVersionResponse(FromJid, u"Quorix console", TextFromUtf8(QUORIX_VERSION), u"");
}

void AnswerDesk::OnTimeRequest(StringView FromJid, StringView /*ID*/) {
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    std::tm local{};
    gmtime_r(&now, &utc);
    localtime_r(&now, &local);
    Session().SendTimeResponse(FromJid, Clock("%Y%m%dT%H:%M:%S", utc), Clock("%Z", local),
                               Clock("%d.%m.%Y %H:%M", local));
}

void AnswerDesk::OnGetLastRequest(StringView FromJid, StringView /*ID*/) {
    Session().SendGetLastResponse(FromJid, u"0");
}

void AnswerDesk::OnVersionResult(StringView FromJid, StringView AppName, StringView AppVer, StringView OS) {
    Show("version",
         {{"from", Text(FromJid)}, {"name", Text(AppName)}, {"version", Text(AppVer)}, {"os", Text(OS)}});
}

void AnswerDesk::OnTimeResult(StringView FromJid, StringView UTC, StringView Local_DateTime) {
    const String local = Text(Local_DateTime);
    const String utc = Text(UTC);
    const String both = local.empty() ? Concat({utc, u" UTC"}) : Concat({local, u" (", utc, u" UTC)"});
    Show("time", {{"from", Text(FromJid)}, {"_both", both}, {"local", local}, {"utc", utc}});
}

void AnswerDesk::OnLastSeenResult(const NodePtr& /*XMLElement*/, StringView FromJid, std::int32_t Seconds) {
    Show("last", {{"from", Text(FromJid)}, {"seconds", Seconds}});
}

void AnswerDesk::OnOOBRequest(StringView FromJid, StringView desc, StringView URL) {
    Show("offer", {{"from", Text(FromJid)}, {"url", Text(URL)}, {"text", Text(desc)}});
}

void AnswerDesk::OnOOBResult(StringView FromJid, bool bSuccess) {
    Show(bSuccess ? "offer-fetched" : "offer-refused", {{"from", Text(FromJid)}});
}

// The end of every answer; some have no event of their own.
void AnswerDesk::OnIQ(const NodePtr& XMLElement) {
    const XmlNode query = XMLElement->Root().FirstElement();
    if (!XMLElement->Root().AttributeIs(u"type", u"result")) return;
    Owner().EndWait();
    if (!query.AttributeIs(u"xmlns", u"jabber:iq:private")) return;
    if (const XmlNode stored = query.FirstElement()) Show("private", {{"xml", Text(stored.Xml())}});
}

void AnswerDesk::OnIQError(const NodePtr& XMLElement, StringView FromJid, std::int16_t /*eErrorCode*/,
                           StringView /*ErrorDescription*/) {
    if (!Session().Active()) return;  // the login's; the connection tells
    const String who = FromJid.empty() ? Session().ServerAddress() : Text(FromJid);
    const String topic = Text(XMLElement->Root().FirstElement().Attribute(u"xmlns"));
    const bool isNamed = StartsWith(topic, u"jabber:iq:");
    Owner().Refused(Concat({who, u" refused ", isNamed ? topic.substr(10) : String(u"a request")}),
                    XMLElement);
}

}  // namespace quorix::console

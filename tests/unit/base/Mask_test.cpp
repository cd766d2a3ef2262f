#include "quorix/base/Mask.h"

#include <gtest/gtest.h>

#include "quorix/base/WireText.h"

namespace quorix {
namespace {

TEST(Mask, HidesEverySecretOfTheTraffic) {
    const struct {
        StringView xml, shown;
    } cases[] = {
        {u"<password>a</password>", u"<password>***</password>"},
        {u"<q:PassWord x='>'>a<b/>c</q:PassWord>d", u"<q:PassWord x='>'>***</q:PassWord>d"},
        {u"<digest>1</digest><hash>2</hash><key>3</key><token>4</token>",
         u"<digest>***</digest><hash>***</hash><key>***</key><token>***</token>"},
        {u"<password>a</password>b</password>", u"<password>***</password>"},
        {u"<password>never closed", u"<password>***"},
        {u"<x password=\"a\" n='1'/>", u"<x password=\"***\" n='1'/>"},
        {u"<field type='text-private' var='n'><value>a</value></field><field "
         u"var='m'><value>b</value></field>",
         u"<field type='text-private' var='n'>***</field><field var='m'><value>b</value></field>"},
        {u"<field var='muc#roomconfig_roomsecret'><value>a</value></field>",
         u"<field var='muc#roomconfig_roomsecret'>***</field>"},
        {u"<auth mechanism='PLAIN'>a</auth>", u"<auth mechanism='PLAIN'>***</auth>"},
        {u"<username/><password/><body>1 < 2 <", u"<username/><password/><body>1 < 2 <"},
    };
    for (const auto& [xml, shown] : cases) EXPECT_EQ(Utf8FromText(MaskSecrets(xml)), Utf8FromText(shown));
}

}  // namespace
}  // namespace quorix

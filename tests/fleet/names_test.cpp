// Names of gateways, operators and services, and topics.
#include "fleet/names.h"

#include <string>

#include <gtest/gtest.h>

namespace
{

using tarn::fleet::isId;
using tarn::fleet::isService;
using tarn::fleet::parseTopic;
using tarn::fleet::TopicKind;
using tarn::fleet::TopicParts;

TEST(NamesTest, AGatewayIsNamedWithPrintableCharactersThatMeanNothingInATopic)
{
    EXPECT_TRUE(isId("g"));
    EXPECT_TRUE(isId("home-0001.example:8883_$~!"));
    EXPECT_TRUE(isId(std::string(64, 'x').c_str()));
    EXPECT_FALSE(isId(""));
    EXPECT_FALSE(isId(std::string(65, 'x').c_str()));
    for (const char* wrong : {"a/b", "a+", "#", "a b", "a\tb", "a\x7F", "\xC3\xA9", " a", "a\n"})
        EXPECT_FALSE(isId(wrong)) << wrong;
}

TEST(NamesTest, AServiceIsNamedAsTheIpcLibraryNamesIt)
{
    EXPECT_TRUE(isService("TARN"));
    EXPECT_TRUE(isService("QTN_RPC_PROXY"));
    EXPECT_TRUE(isService(std::string(31, 'x').c_str()));
    for (const std::string& wrong :
         {std::string(), std::string(32, 'x'), std::string(".a"), std::string("a/b"), std::string("a b")})
        EXPECT_FALSE(isService(wrong.c_str())) << wrong;
}

TEST(NamesTest, EachTopicIsFoundAgainInItsParts)
{
    TopicParts parts = parseTopic(tarn::fleet::requestTopic("home-1").text);
    EXPECT_EQ(parts.kind, TopicKind::kRequest);
    EXPECT_STREQ(parts.gateway, "home-1");

    parts = parseTopic(tarn::fleet::stateTopic("home-1").text);
    EXPECT_EQ(parts.kind, TopicKind::kState);
    EXPECT_STREQ(parts.gateway, "home-1");

    parts = parseTopic(tarn::fleet::eventTopic("home-1", "TARN").text);
    EXPECT_EQ(parts.kind, TopicKind::kEvent);
    EXPECT_STREQ(parts.gateway, "home-1");
    EXPECT_STREQ(parts.service, "TARN");

    parts = parseTopic(tarn::fleet::replyTopic("noc-1", "home-1").text);
    EXPECT_EQ(parts.kind, TopicKind::kReply);
    EXPECT_STREQ(parts.operatorId, "noc-1");
    EXPECT_STREQ(parts.gateway, "home-1");
}

TEST(NamesTest, TopicsAreThoseThatAccessListsAreWrittenFor)
{
    EXPECT_STREQ(tarn::fleet::requestTopic("home-1").text, "tarn/1/gw/home-1/rq");
    EXPECT_STREQ(tarn::fleet::stateTopic("home-1").text, "tarn/1/gw/home-1/st");
    EXPECT_STREQ(tarn::fleet::eventTopic("home-1", "TARN").text, "tarn/1/gw/home-1/ev/TARN");
    EXPECT_STREQ(tarn::fleet::replyTopic("noc-1", "home-1").text, "tarn/1/op/noc-1/re/home-1");
    EXPECT_STREQ(tarn::fleet::allReplies("noc-1").text, "tarn/1/op/noc-1/re/+");
}

TEST(NamesTest, TheLongestNamesFitIntoATopic)
{
    const std::string longest(64, 'x');
    const std::string topic = tarn::fleet::replyTopic(longest.c_str(), longest.c_str()).text;
    EXPECT_EQ(topic, "tarn/1/op/" + longest + "/re/" + longest);
    EXPECT_EQ(parseTopic(topic.c_str()).kind, TopicKind::kReply);
    EXPECT_EQ(topic.size() + 1, std::size_t{tarn::fleet::Topic::kSize});
}

TEST(NamesTest, AnyOtherTopicIsNone)
{
    const std::string tooLong(65, 'x');
    for (const std::string& topic : {std::string(),
                                     std::string("tarn/1/gw/"),
                                     std::string("tarn/1/gw/home-1"),
                                     std::string("tarn/1/gw/home-1/"),
                                     std::string("tarn/1/gw/home-1/rq/"),
                                     std::string("tarn/1/gw/home-1/rqs"),
                                     std::string("tarn/1/gw//rq"),
                                     std::string("tarn/2/gw/home-1/rq"),
                                     std::string("/tarn/1/gw/home-1/rq"),
                                     std::string("tarn/1/gw/a+b/rq"),
                                     std::string("tarn/1/gw/home-1/ev"),
                                     std::string("tarn/1/gw/home-1/ev/"),
                                     std::string("tarn/1/gw/home-1/ev/A/B"),
                                     std::string("tarn/1/gw/home-1/ev/.A"),
                                     std::string("tarn/1/op/noc-1"),
                                     std::string("tarn/1/op/noc-1/re/"),
                                     std::string("tarn/1/op/noc-1/re/home-1/x"),
                                     std::string("tarn/1/op//re/home-1"),
                                     "tarn/1/gw/" + tooLong + "/rq",
                                     "tarn/1/op/" + tooLong + "/re/home-1",
                                     "tarn/1/op/noc-1/re/" + tooLong,
                                     "tarn/1/gw/home-1/ev/" + tooLong})
    {
        const TopicParts parts = parseTopic(topic.c_str());
        EXPECT_EQ(parts.kind, TopicKind::kNone) << topic;
        EXPECT_STREQ(parts.gateway, "") << topic;
        EXPECT_STREQ(parts.operatorId, "") << topic;
        EXPECT_STREQ(parts.service, "") << topic;
    }
}

} // namespace

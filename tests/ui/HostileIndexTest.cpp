#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "LogExpectations.h"
#include "QDUIPodcastXMLConverter.h"

namespace umsservice::testing {
namespace {

/// Somebody who would be asked for what an index names on the network.
class Listener {
 public:
  Listener() {
    address_.sin_family = AF_INET;
    address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address_;
    isListening_ = bind(socket_, generic(), length) == 0 && listen(socket_, 4) == 0 &&
                   getsockname(socket_, generic(), &length) == 0;
  }
  ~Listener() { close(socket_); }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  bool isListening() const { return isListening_; }
  std::string url() const {
    return "http://127.0.0.1:" + std::to_string(ntohs(address_.sin_port)) + "/channel.dtd";
  }
  bool wasAsked() const {
    pollfd asked{socket_, POLLIN, 0};
    return poll(&asked, 1, 0) > 0;
  }
  /// Asks itself: shows that a question would be seen.
  void ask() {
    int asking = socket(AF_INET, SOCK_STREAM, 0);
    EXPECT_EQ(connect(asking, generic(), sizeof address_), 0);
    close(asking);
  }

 private:
  sockaddr* generic() { return reinterpret_cast<sockaddr*>(&address_); }

  const int socket_ = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address_{};
  bool isListening_ = false;
};

/// Index files as a damaged or a malicious device has them.
class HostileIndex : public ::testing::Test {
 protected:
  static constexpr auto kRead = "-[QDUIPodcastXMLConverter makePodcastDictionaryFromXML:]";

  static std::string repeated(const std::string& text, size_t times) {
    std::string all;
    for (size_t i = 0; i < times; ++i) all += text;
    return all;
  }
  /// The bytes are no index, and the log says why, in words that begin or go on like that.
  void expectRefused(const std::string& bytes, const std::string& why) const {
    const std::string reason = XMLDocument::parse(bytes).error;
    EXPECT_NE(reason, "");
    EXPECT_NE(reason.find(why), std::string::npos) << reason;
    expectLine(surroundings, 3, kRead, "failed to load xml:" + reason,
               [&] { EXPECT_FALSE(converter.makePodcastDictionaryFromXML(bytes)); });
  }
  /// A channel whose document type has that in it.
  static std::string typed(const std::string& subset, const std::string& text) {
    return "<!DOCTYPE channel [<!ELEMENT channel ANY><!ELEMENT Title ANY>" + subset + "]><channel><Title>" +
           text + "</Title></channel>";
  }

  TestSurroundings surroundings;
  const Log writer{surroundings.environment};
  const QDUIPodcastXMLConverter converter{writer};
};

TEST_F(HostileIndex, OfEntitiesThatBlowUpIsRefusedWithTheReason) {
  expectRefused(typed("<!ENTITY b '" + repeated("b", 15'000) + "'>", repeated("&b;", 100'000)), "ntit");
  std::string nested = "<!ENTITY e0 'lollollol'>";
  for (int i = 1; i < 12; ++i) {
    nested +=
        "<!ENTITY e" + std::to_string(i) + " '" + repeated("&e" + std::to_string(i - 1) + ";", 10) + "'>";
  }
  expectRefused(typed(nested, "&e11;"), "ntit");
  expectRefused(typed("<!ENTITY b '&b;'>", "&b;"), "ntit");
}

TEST_F(HostileIndex, OfTooManyLevelsIsRefusedWithTheReason) {
  std::string deep = "<channel>" + repeated("<Post>", 64) + repeated("</Post>", 64) + "</channel>";
  expectRefused(deep, "elements are nested too deeply");
  expectRefused("<channel>" + repeated("<Post>", 1'000'000), "elements are nested too deeply");
}

TEST_F(HostileIndex, OfTooManyBytesIsRefusedWithTheReason) {
  expectRefused("<channel>" + std::string(XMLDocument::kLongest, 'x') + "</channel>",
                "the document is longer than 32 MiB");
}

TEST_F(HostileIndex, OfBytesThatAreNoTextIsRefusedWithTheReason) {
  expectRefused("<channel><Title>\xff\xfe</Title></channel>", "not proper UTF-8");
  expectRefused("<channel><Title>\xc3</Title></channel>", "");
  expectRefused("<channel><Title>\x01</Title></channel>", "invalid Char");
  expectRefused(std::string("<channel>\0</channel>", 20), "");
}

TEST_F(HostileIndex, ThatNamesWhatLiesOutsideOfItOpensNoFileAndNoConnection) {
  Sandbox& sandbox = surroundings.sandbox;
  Listener listener;
  ASSERT_TRUE(listener.isListening());
  const std::string secret = sandbox.file("secret", "the secret");
  // Nobody ever writes into the pipe: whoever opens it waits for ever.
  const std::string pipe = sandbox.at("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& target : {secret, "file://" + secret, pipe, "file://" + pipe, listener.url()}) {
    expectRefused(typed("<!ENTITY x SYSTEM '" + target + "'>", "&x;"), "");
    expectRefused(typed("<!ENTITY x PUBLIC 'p' '" + target + "'>", "&x;"), "");
    expectRefused(typed("<!ENTITY % x SYSTEM '" + target + "'> %x;", "text"), "");
    expectRefused("<!DOCTYPE channel SYSTEM '" + target + "'><channel><Title/></channel>", "");
    // Two that are good by themselves, and miss nothing.
    auto complete = converter.makePodcastDictionaryFromXML(
        "<!DOCTYPE channel SYSTEM '" + target +
        "' [<!ELEMENT channel ANY><!ELEMENT Title ANY>]><channel><Title>News</Title></channel>");
    ASSERT_TRUE(complete);
    EXPECT_EQ(complete->string("Title"), "News");
    auto including = converter.makePodcastDictionaryFromXML(
        "<channel><Title><x:include xmlns:x='http://www.w3.org/2001/XInclude' parse='text' href='" + target +
        "'/></Title></channel>");
    ASSERT_TRUE(including);
    EXPECT_EQ(including->get("Title").kind(), Value::Kind::Null);
    for (const std::string& line : surroundings.log->lines())
      EXPECT_EQ(line.find("the secret"), std::string::npos) << line;
  }
  EXPECT_FALSE(listener.wasAsked());
  listener.ask();
  EXPECT_TRUE(listener.wasAsked());
}

}  // namespace
}  // namespace umsservice::testing

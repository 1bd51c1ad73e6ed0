#include "HostTest.h"

namespace umsservice::testing {
namespace {

using Lines = std::vector<std::string>;

class Profile : public HostTest {
 protected:
  std::string profile(const std::string& text) const { return sandbox.file("profile.json", text); }
  Ended pushWith(const std::string& text) const {
    return umsctl(pushing({"--profile", profile(text), media("sunrise.jpg")}));
  }
};

TEST_F(Profile, SaysWhichFolderTakesWhichKind) {
  std::string file = profile(R"({
    "internal": { "music": "/Songs/New", "image": "Pictures/", "video": "/Films" },
    "card":     { "music": "/Card Songs" }
  })");
  EXPECT_EQ(
      umsctl(pushing({"--profile", file, media("plain-hum.mp3"), media("sunrise.jpg"), media("harbour.mp4")}))
          .status,
      0);
  EXPECT_EQ(treeOf(phone),
            (Lines{"Films/", "Films/harbour.mp4", "Films/harbour.smi", "Pictures/", "Pictures/sunrise.jpg",
                   "Songs/", "Songs/New/", "Songs/New/plain-hum.mp3"}));
  EXPECT_EQ(umsctl(pushing({"--card", card, "--to", "1", "--profile", file, media("plain-hum.mp3"),
                            media("sunrise.jpg")}))
                .status,
            0);
  EXPECT_EQ(treeOf(card), (Lines{"Card Songs/", "Card Songs/plain-hum.mp3", "DCIM/", "DCIM/Camera/",
                                 "DCIM/Camera/sunrise.jpg"}));
}

TEST_F(Profile, HoldsForEachVolumeWhateverItsNumberIs) {
  std::string file = profile(R"({"internal": {"music": "/In", "podcast": "/InCasts"},
                                 "card": {"music": "/Out", "podcast": "/OutCasts"}})");
  std::string song = media("plain-hum.mp3");
  std::string json =
      sandbox.file("channel.json", R"({"Title": "Tides", "children": [{"Title": "Low", "Url": "u",
                                                  "FilePath": ")" +
                                       song + "\"}]}");
  for (const std::string command : {"push", "sync"}) {
    sandbox.folder(command + "/card");
    std::string alone = sandbox.at(command + "/card");
    EXPECT_EQ(umsctl({command, "--card", alone, "--profile", file, song}).status, 0);
    EXPECT_TRUE(exists(alone + "/Out/plain-hum.mp3")) << command;
    EXPECT_EQ(umsctl({"podcast", command, "--card", alone, "--profile", file, "--from-json", json}).status,
              0);
    EXPECT_TRUE(exists(alone + "/OutCasts/Tides/plain-hum.mp3")) << command;
    EXPECT_NE(umsctl({"podcast", "ls", "--card", alone, "--profile", file}).output.find("Tides"),
              std::string::npos);

    for (const std::string number : {"0", "1"}) {
      std::string in = sandbox.folder(command + number + "/in"),
                  out = sandbox.folder(command + number + "/out");
      const std::string to = command == "push" ? "--to" : "--first";
      EXPECT_EQ(
          umsctl({command, "--internal", in, "--card", out, to, number, "--profile", file, song}).status, 0);
      EXPECT_TRUE(exists(number == "0" ? in + "/In/plain-hum.mp3" : out + "/Out/plain-hum.mp3")) << command;
    }
  }
}

TEST_F(Profile, HoldsForTheDeviceThatMediaAreSentTo) {
  std::string song = sandbox.file("phone/Music/a.mp3", "la");
  std::string file = profile(R"({"card": {"music": "/Out"}})");
  EXPECT_EQ(umsctl({"send", "--from-internal", phone, "--card", card, "--profile", file, song}).status, 0);
  EXPECT_EQ(treeOf(card), (Lines{"Out/", "Out/a.mp3"}));
}

TEST_F(Profile, HoldsForTheSendingDeviceAndTheReceivingOneEach) {
  std::string channel =
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<channel><Title>Tides</Title><Post><Title>Low</Title>"
      "<Url>http://tides/1</Url><FilePath>one.mp3</FilePath></Post></channel>\n";
  sandbox.file("phone/Casts/Tides/Tides.xml", channel);
  sandbox.file("phone/Casts/Tides/one.mp3", "low tide");
  std::string from = sandbox.file("from.json", R"({"internal": {"podcast": "/Casts"}})");
  std::string to = sandbox.file("to.json", R"({"card": {"podcast": "/Radio"}})");
  Ended ended = umsctl({"podcast", "send", "--from-internal", phone, "--from-profile", from, "--card", card,
                        "--profile", to, "Tides"});
  EXPECT_EQ(ended.status, 0) << ended.error;
  EXPECT_EQ(bytesOf(card + "/Radio/Tides/one.mp3"), "low tide");
}

TEST_F(Profile, ChangesNothingWhereItSaysNothing) {
  EXPECT_EQ(pushWith("{}").status, 0);
  EXPECT_TRUE(exists(phone + "/DCIM/Camera/sunrise.jpg"));
}

TEST_F(Profile, ThatIsWrongIsAUsageErrorWithLineAndCause) {
  const std::pair<const char*, const char*> wrong[] = {
      {"{\n\"internal\": {\n\"musik\": \"/Songs\" } }",
       "line 3: \"musik\" is none of music, image, video and podcast"},
      {"{\n\n\"phone\": {} }", "line 3: \"phone\" is none of internal and card"},
      {"{ \"card\": {},\n \"card\": {} }", "line 2: \"card\" is there twice"},
      {"{ \"card\": { \"music\": \"/a\",\n\"music\": \"/b\" } }", "line 2: \"music\" is there twice"},
      {"{ \"card\":\n 7\n }", "line 1: \"card\" must be an object of folders"},
      {"{ \"card\": {\n \"music\": [\"/Songs\"] } }", "line 2: \"music\" must be a text"},
      {"{ \"card\": {\n \"music\": {} } }", "line 2: \"music\" must be a text"},
      {"{ \"card\": {\n \"music\": null\n } }", "line 2: \"music\" must be a text"},
      {"{ \"card\": {\n \"music\": \"/../../etc\" } }", "line 2: \"/../../etc\" is no folder of a volume"},
      {"{ \"card\": {\n \"music\": \"//\" } }", "line 2: \"//\" is no folder of a volume"},
      {"{ \"card\": {\n \"music\": \"\\u001b[2J/./x\" } }",
       "line 2: \"\\x1b[2J/./x\" is no folder of a volume"},
      {"[]", "line 1: a profile is an object: { \"internal\": { \"music\": \"/Songs\" } }"},
  };
  for (const auto& [text, cause] : wrong) {
    Ended ended = pushWith(text);
    EXPECT_EQ(ended.status, 2) << text;
    EXPECT_EQ(ended.error, "umsctl: " + sandbox.at("profile.json") + ": " + cause + "\n");
    EXPECT_EQ(ended.output, "");
  }
  EXPECT_TRUE(treeOf(phone).empty());
}

TEST_F(Profile, ThatIsNoJsonOrNoFileIsAUsageErrorToo) {
  for (const char* text :
       {"", "{ \"card\": {\n\"music\": \"/Songs\",\n}}", "{ \"card\": { \"music\": \"\xff\" } }"}) {
    Ended ended = pushWith(text);
    EXPECT_EQ(ended.status, 2) << text;
    EXPECT_NE(ended.error.find(": it is no JSON: "), std::string::npos) << ended.error;
  }
  EXPECT_NE(pushWith("{ \"card\": {\n\"music\": \"/Songs\",\n}}").error.find("profile.json: line 3: "),
            std::string::npos);
  EXPECT_EQ(pushWith(std::string(2'000'000, ' ')).error,
            "umsctl: " + sandbox.at("profile.json") + ": it is too large for a profile\n");
  Ended missing = umsctl({"df", "--internal", phone, "--profile", sandbox.at("none")});
  EXPECT_EQ(missing.status, 2);
  EXPECT_EQ(missing.error, "umsctl: " + sandbox.at("none") + ": No such file or directory\n");
  EXPECT_EQ(umsctl({"df", "--internal", phone, "--profile", phone}).status, 2);
}

}  // namespace
}  // namespace umsservice::testing

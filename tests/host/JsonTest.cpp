#include <unistd.h>

#include <chrono>
#include <map>
#include <set>
#include <thread>

#include "HostTest.h"
#include "JsonLines.h"

namespace umsservice::testing {
namespace {

class JsonOutput : public HostTest {
 protected:
  std::vector<std::string> withJson(std::vector<std::string> arguments) const {
    arguments.emplace_back("--json");
    return arguments;
  }
  /// One that takes so long that its progress is told in between.
  Ended slowRun() const {
    sandbox.file("phone/DCIM/Camera/lighthouse.png", "old");
    RunningProgram program(
        withJson(pushing({"--on-conflict", "ask", media("sunrise.jpg"), media("lighthouse.png")})),
        {.atTerminal = true});
    program.waitForOutput("Replace it?");
    std::this_thread::sleep_for(std::chrono::milliseconds(600));
    program.type("n\n");
    return withoutWords(program.wait());
  }
};

std::vector<std::string> outcomesOf(const std::vector<Json>& items) {
  std::vector<std::string> outcomes;
  for (const Json& item : items)
    outcomes.push_back(std::to_string(item["index"].get<int>()) + " " + item["outcome"].get<std::string>());
  std::sort(outcomes.begin(), outcomes.end());
  return outcomes;
}

using Texts = std::vector<std::string>;

TEST_F(JsonOutput, BeginsWithTheTotalsAndEndsWithTheResult) {
  Ended ended = umsctl(withJson(pushing({media("morning-tone.mp3"), media("sunrise.jpg")})));
  EXPECT_EQ(ended.status, 0);
  auto objects = objectsOf(ended);
  ASSERT_GE(objects.size(), 4u);
  EXPECT_EQ(objects.front()["event"], "plan");
  EXPECT_EQ(objects.front()["items"], 2);
  EXPECT_EQ(objects.front()["bytes"],
            bytesOf(media("morning-tone.mp3")).size() + bytesOf(media("sunrise.jpg")).size());
  EXPECT_EQ(objects.front()["volumes"][0]["path"], phone);
  EXPECT_EQ(objects.back()["event"], "result");
  EXPECT_EQ(objects.back()["exit_status"], 0);
  EXPECT_EQ(objects.back()["done"], 2);
  EXPECT_EQ(objectsOf(ended, "result").size(), 1u);
}

TEST_F(JsonOutput, TellsExactlyOneOutcomeOfEveryItem) {
  sandbox.file("phone/Music/plain-hum.mp3", "old");
  Ended ended = umsctl(withJson(pushing(
      {"--verify", media("plain-hum.mp3"), "missing.mp3", media("sunrise.jpg"), media("notes.txt")})));
  EXPECT_EQ(ended.status, 1);
  auto items = objectsOf(ended, "item");
  EXPECT_EQ(outcomesOf(items), (Texts{"0 skipped", "1 failed", "2 done", "3 failed"}));
  for (const Json& item : items) {
    if (item["index"] == 1) EXPECT_EQ(item["cause"], "No such file or directory");
    if (item["index"] == 2) EXPECT_EQ(item["destination"], phone + "/DCIM/Camera/sunrise.jpg");
    if (item["index"] == 2) EXPECT_EQ(item["verified"], true);
    if (item["index"] == 3) EXPECT_EQ(item["error"], 0x14000002);
  }
  EXPECT_NE(ended.causes().find("umsctl: missing.mp3: No such file or directory\n"), std::string::npos);
}

TEST_F(JsonOutput, TellsNumberCauseAndAdviceOfAFailedItemAsThePipedTextDoes) {
  const std::string file = sandbox.file("phone/Music", "a file"), empty = sandbox.folder("phone/Full/Empty");
  struct Case {
    std::vector<std::string> line;
    std::string number, cause, advice;
  };
  const std::vector<Case> cases{
      {pushing({"missing.mp3"}), "0x23000005", "No such file or directory",
       "check the name and its permissions"},
      {{"mkdir", file + "/Live"},
       "0x20000002",
       "Not a directory",
       "see what stands in the way of the folder, and whether the volume can be written to"},
      {{"rmdir", phone + "/Full"},
       "0x20000003",
       "it is not empty; --recursive removes it with everything in it",
       "empty it, or use --recursive"},
      {{"rmdir", file}, "0x10000002", "it is not a folder", "use umsctl rm"},
      {{"rmdir", phone + "/none"},
       "0x20000008",
       "No such file or directory",
       "check the name, and that the device is still there"}};
  for (const Case& expected : cases) {
    const std::string line = "umsctl: " + expected.line.back() + ": " + expected.cause + " (" +
                             expected.number + "); " + expected.advice + "\n";
    EXPECT_EQ(umsctl(expected.line).error, line);
    Ended ended = umsctl(withJson(expected.line));
    const Json item = objectsOf(ended, "item").at(0);
    EXPECT_EQ(item["number"], expected.number);
    EXPECT_EQ(item["cause"], expected.cause);
    EXPECT_EQ(item["advice"], expected.advice);
    EXPECT_EQ(ended.error.find(line), 0u) << ended.error;
  }
}

TEST_F(JsonOutput, CountsWhatACancelKeptFromBeingReached) {
  sandbox.file("phone/Music/plain-hum.mp3", "old");
  RunningProgram program(withJson(pushing({"--on-conflict", "ask", media("sunrise.jpg"),
                                           media("plain-hum.mp3"), media("morning-tone.mp3")})),
                         {.atTerminal = true});
  program.waitForOutput("Replace it?");
  program.type("\x03");
  Ended ended = withoutWords(program.wait());
  EXPECT_EQ(ended.status, 130);
  auto items = objectsOf(ended, "item");
  auto outcomes = outcomesOf(items);
  ASSERT_EQ(outcomes.size(), 3u);
  EXPECT_EQ(outcomes.front(), "0 done");
  EXPECT_EQ(outcomes.back(), "2 not_reached");
  EXPECT_EQ(objectsOf(ended, "result").front()["cancelled"], true);
}

TEST_F(JsonOutput, IsValidForNamesThatAreNoText) {
  std::string odd = sandbox.file("caf\xe9\n\"\x1b.mp3", "la");
  auto items = objectsOf(umsctl(withJson(pushing({odd}))), "item");
  ASSERT_EQ(items.size(), 1u);
  EXPECT_EQ(items.front()["source"], sandbox.path() + "/caf\xef\xbf\xbd\n\"\x1b.mp3");
  std::string bytes, hex = items.front()["source_hex"];
  for (size_t i = 0; i < hex.size(); i += 2)
    bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
  EXPECT_EQ(bytes, odd);
  auto plain = objectsOf(umsctl(withJson(pushing({media("sunrise.jpg")}))), "item");
  EXPECT_FALSE(plain.front().contains("source_hex"));
}

TEST_F(JsonOutput, TellsWhyACommandCouldNotBegin) {
  Ended ended = umsctl({"df", "--internal", sandbox.at("none"), "--json"});
  EXPECT_EQ(ended.status, 3);
  auto objects = objectsOf(ended);
  ASSERT_EQ(objects.size(), 2u);
  EXPECT_EQ(objects[0]["level"], "error");
  EXPECT_EQ(objects[0]["text"], "no such volume: No such file or directory");
  EXPECT_EQ(objects[1]["exit_status"], 3);
  EXPECT_NE(ended.error.find("no such volume"), std::string::npos);
}

TEST_F(JsonOutput, ListsFilesWithTheirTags) {
  umsctl(pushing({media("evening-tone.flac"), media("sunrise.jpg")}));
  auto files = objectsOf(umsctl({"ls", "--internal", phone, "--tags", "--json"}), "file");
  ASSERT_EQ(files.size(), 2u);
  EXPECT_EQ(files[0]["type"], "music");
  EXPECT_EQ(files[0]["artist"], "Übungsensemble 音");
  EXPECT_EQ(files[0]["path"], phone + "/Music/evening-tone.flac");
  EXPECT_EQ(files[1]["type"], "image");
  EXPECT_EQ(files[1]["bytes"], bytesOf(media("sunrise.jpg")).size());
}

/// A field of the documentation: whether it is always there.
using Fields = std::map<std::string, bool>;

/// The tables of docs/json.md, by event.
std::map<std::string, Fields> documentedFields() {
  std::map<std::string, Fields> events;
  std::string event;
  for (const std::string& line : linesOf(bytesOf(TEST_DOCS "/json.md"))) {
    if (line.starts_with("## ")) event = line.starts_with("## `") ? line.substr(4, line.size() - 5) : "";
    if (event.empty() || !line.starts_with("| `")) continue;
    std::string name = line.substr(3, line.find('`', 3) - 3);
    events[event][name] = line.find("| always |") != std::string::npos;
    EXPECT_NE(line.find("| always |") != std::string::npos, line.find("| sometimes |") != std::string::npos);
  }
  return events;
}

/// What was found in real objects; lists of objects count as an event of their own.
void collect(const std::string& event, const Json& object, const std::map<std::string, Fields>& documented,
             std::map<std::string, std::set<std::string>>& seen) {
  auto fields = documented.find(event);
  ASSERT_NE(fields, documented.end()) << "not documented: " << event;
  for (const auto& field : fields->second)
    EXPECT_TRUE(!field.second || object.contains(field.first)) << field.first << " in " << object;
  for (const auto& [name, value] : object.items()) {
    bool isBytes = name.ends_with("_hex");
    EXPECT_TRUE(isBytes || fields->second.count(name) > 0) << name << " of " << event;
    seen[event].insert(name);
    if (!value.is_array()) continue;
    for (const Json& element : value) collect(event + "." + name, element, documented, seen);
  }
}

TEST_F(JsonOutput, IsWhatItsDocumentationSays) {
  sandbox.file("phone/Music/plain-hum.mp3", "old");
  const std::string podcast = sandbox.file("news.json", R"({"Title": "News", "children": [{"Title": "One",
      "Url": "http://example.com/1.mp3", "FilePath": ")" + media("plain-hum.mp3") +
                                                            R"("}]})");
  const std::string onPhone = phone + "/Music/plain-hum.mp3";
  ASSERT_EQ(symlink("/", sandbox.at("phone/root").c_str()), 0);
  const std::vector<std::vector<std::string>> lines{
      pushing({"-n", media("plain-hum.mp3"), media("sunrise.jpg")}),
      pushing({"--verify", media("plain-hum.mp3"), media("evening-tone.flac"), media("missing.mp3")}),
      pushing({media("morning-tone.mp3"), media("pier.jpg"), media("harbour.mp4")}),
      {"pull", "-n", "--internal", phone, "--into", sandbox.at("into"), onPhone},
      {"podcast", "push", "--internal", phone, "--from-json", podcast},
      {"podcast", "ls", "--internal", phone},
      {"ls", "--internal", phone, "--tags"},
      {"tree", "--internal", phone},
      {"df", "--internal", phone},
      {"mkdir", phone + "/New"},
      {"rmdir", phone + "/New"},
      {"rm", "--internal", phone, onPhone},
  };
  std::vector<Ended> runs{slowRun()};
  for (const auto& line : lines) runs.push_back(umsctl(withJson(line)));
  const auto documented = documentedFields();
  std::map<std::string, std::set<std::string>> seen;
  for (const Ended& ended : runs) {
    for (const Json& object : objectsOf(ended)) collect(object["event"], object, documented, seen);
    EXPECT_EQ(objectsOf(ended, "result").size(), 1u) << ended.output;
  }
  for (const auto& [event, fields] : documented) {
    for (const auto& field : fields)
      EXPECT_EQ(seen[event].count(field.first), 1u) << event << "." << field.first;
  }
}

}  // namespace
}  // namespace umsservice::testing

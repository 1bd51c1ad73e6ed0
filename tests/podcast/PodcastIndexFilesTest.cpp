#include <cerrno>
#include <filesystem>

#include "PodcastIndexFiles.h"
#include "PodcastTest.h"
#include "ScarceMemory.h"

namespace umsservice::testing {
namespace {

constexpr auto kCheck = "-[UMSService checkXmlData:channelName:]";
constexpr auto kSend = "-[UMSService sendXmlData:xmlDocument:filePath:podcastName:]";

class PodcastIndexFiles : public PodcastTest {
 protected:
  ServiceContext context{surroundings.environment, "<service>", "location-1"};
  FolderOperations folders{context};
  umsservice::PodcastIndexFiles indexes{context, folders};
  const QDUIPodcastXMLConverter converter{context.log};
  const std::string folder = sandbox.folder("internal/Podcast/News");

  XMLDocument documentOf(const Dictionary& podcast) const {
    return converter.makePodcastXMLFromPodcastDictionary(podcast, true);
  }
  std::string writtenIndex() const { return bytesOf(folder + "/News.xml"); }
};

TEST_F(PodcastIndexFiles, AreReadWithThePathsThatTheyHold) {
  XMLDocument document = documentOf(channel("News", {Dictionary{{"Url", "u"}, {"FilePath", "1.mp3"}}}));
  ASSERT_TRUE(indexes.sendXmlData(&document, folder, "News"));
  EXPECT_EQ(writtenIndex(), document.bytes());
  EXPECT_EQ(fieldOf(indexes.checkXmlData(folder, "News"), "FilePath"), Texts{"1.mp3"});
}

TEST_F(PodcastIndexFiles, SayWhyTheyCannotBeRead) {
  expectLine(surroundings, 3, kCheck, "Input parameter is invalid. podcastName = (null), channelName = News",
             [&] { EXPECT_FALSE(indexes.checkXmlData(std::nullopt, "News")); });
  expectLine(surroundings, 3, kCheck, "Input parameter is invalid. podcastName = /f, channelName = (null)",
             [&] { EXPECT_FALSE(indexes.checkXmlData("/f", std::nullopt)); });
  expectLine(surroundings, 3, kCheck,
             "Open File Handle is failed. File Path = $/internal/Podcast/News/News.xml",
             [&] { EXPECT_FALSE(indexes.checkXmlData(folder, "News")); });
  std::filesystem::create_directory(folder + "/News.xml");
  expectLine(surroundings, 3, kCheck,
             "Open File Handle is failed. File Path = $/internal/Podcast/News/News.xml",
             [&] { EXPECT_FALSE(indexes.checkXmlData(folder, "News")); });
}

TEST_F(PodcastIndexFiles, AreNotReadWhenTheyAreTooLong) {
  std::string path = sandbox.file("internal/Podcast/News/News.xml", "<channel/>");
  std::filesystem::resize_file(path, XMLDocument::kLongest + 5'000'000);
  EXPECT_FALSE(indexes.checkXmlData(folder, "News"));
  EXPECT_EQ(
      linesOf(surroundings, kCheck),
      Lines{"failed to load xml:" + plain(surroundings, errorText(EFBIG, FileError::Action::Reading, path))});
}

TEST_F(PodcastIndexFiles, SayWhenNoConverterCanBeMade) {
  REQUIRE_SCARCE_MEMORY();
  ScarceMemory scarce;
  expectLine(surroundings, 1, kCheck, "podcast XML Converter is failed.",
             [&] { EXPECT_FALSE(indexes.checkXmlData(folder, "News")); });
  expectLine(surroundings, 1, "-[UMSService umsPodcastXmlData:]", "podcast XML Converter is failed.",
             [&] { EXPECT_FALSE(indexes.umsPodcastXmlData(folder + "/News.xml")); });
  EXPECT_FALSE(indexes.makeXMLInfoFromFileData(folder, nullptr));
}

TEST_F(PodcastIndexFiles, SayWhyTheyCannotBeWritten) {
  XMLDocument document = documentOf(channel("News", {}));
  expectLine(surroundings, 3, kSend, "Input parameter is invalid. xmlData = 0x0, filePath = 0x0",
             [&] { EXPECT_FALSE(indexes.sendXmlData(nullptr, std::nullopt, "News")); });
  EXPECT_FALSE(indexes.sendXmlData(&document, std::nullopt, "News"));
  EXPECT_FALSE(indexes.sendXmlData(&document, folder, std::nullopt));
  for (const char* trace : {"ENTER", "EXIT"})
    expectLine(surroundings, 7, kSend, trace,
               [&] { EXPECT_TRUE(indexes.sendXmlData(&document, folder, "News")); });
  expectLine(surroundings, 1, kSend, "XML File Create is failed. XML File Path = $/internal/nowhere",
             [&] { EXPECT_FALSE(indexes.sendXmlData(&document, internal + "/nowhere", "News")); });
  document.root().append("Title", std::string(XMLDocument::kLongest, 'x'));
  EXPECT_FALSE(indexes.sendXmlData(&document, folder, "News"));
  context.releaseState = 1;
  expectLine(surroundings, 5, kSend, "Device Disconnected - location-1",
             [&] { EXPECT_FALSE(indexes.sendXmlData(&document, folder, "Fresh")); });
  EXPECT_EQ(treeOf(folder), Texts{"News.xml"});
}

TEST_F(PodcastIndexFiles, ReplaceAnIndexAndKeepWhatIsNone) {
  XMLDocument document = documentOf(channel("News", {}));
  sandbox.file("internal/Podcast/News/News.xml", "<channel><Title>old</Title></channel>");
  EXPECT_TRUE(indexes.sendXmlData(&document, folder, "News"));
  EXPECT_EQ(treeOf(folder), Texts{"News.xml"});
  sandbox.file("internal/Podcast/News/News.xml", "no index");
  EXPECT_TRUE(indexes.sendXmlData(&document, folder, "News"));
  EXPECT_EQ(treeOf(folder), (Texts{"News.xml", "News.xml.damaged"}));
  EXPECT_EQ(writtenIndex(), document.bytes());
}

TEST_F(PodcastIndexFiles, AreWrittenFromTheBytesOfADocumentToo) {
  const std::string text = "<channel><Title>bytes</Title></channel>";
  auto document = std::make_shared<Data>();
  for (char c : text) document->push_back(static_cast<std::byte>(c));
  EXPECT_TRUE(service->sendXmlData(0, document, folder, "News"));
  EXPECT_EQ(writtenIndex(), text);
  expectLine(surroundings, 3, kSend, "Input parameter is invalid. xmlData = 0x0, filePath = <address>",
             [&] { EXPECT_FALSE(service->sendXmlData(0, nullptr, folder, "News")); });
  EXPECT_FALSE(service->sendXmlData(0, document, std::nullopt, "News"));
  service->disconnectDevice("location-1");
  EXPECT_FALSE(service->sendXmlData(0, document, folder, "Late"));
  EXPECT_EQ(treeOf(folder), Texts{"News.xml"});
}

TEST_F(PodcastIndexFiles, AreFoundAtEveryDepthInAnyLetterCase) {
  for (const char* name : {"news.XML", "a/b.xml", "c.Xml", "d.xmlx", "a/e/f.xml.damaged", ".g.xml"})
    sandbox.file("lists/" + std::string(name), "");
  sandbox.folder("lists/folder.xml");
  MaybeArray found;
  ASSERT_TRUE(service->podcastXmlLists(0, sandbox.at("lists"), &found));
  Texts paths;
  for (const Value& path : found->snapshot()) paths.push_back(*path.string());
  std::sort(paths.begin(), paths.end());
  EXPECT_EQ(paths, (Texts{".g.xml", "a/b.xml", "c.Xml", "news.XML"}));
  ASSERT_TRUE(service->podcastXmlLists(0, sandbox.at("nowhere"), &found));
  EXPECT_EQ(found->count(), 0u);
  expectLine(surroundings, 3, "-[UMSService podcastXmlLists:fileName:contents:]",
             "Input parameters is invalid. FolderNameString = (null)",
             [&] { EXPECT_FALSE(service->podcastXmlLists(0, std::nullopt, &found)); });
}

TEST_F(PodcastIndexFiles, GetFullPathsOnceAndNotTwice) {
  Dictionary news =
      channel("News", {Dictionary{{"FilePath", "1.mp3"}}, Dictionary{{"FilePath", "/P/NEWS/2.mp3"}},
                       Dictionary{{"FilePath", Null()}}, Null()});
  for (int i = 0; i < 2; ++i) {
    service->makeEpisodeFullPath(news, "/P/News");
    EXPECT_EQ(news.get("children").array()->at(0).dictionary()->string("FilePath"), "/P/News/1.mp3");
    EXPECT_EQ(news.get("children").array()->at(1).dictionary()->string("FilePath"), "/P/NEWS/2.mp3");
    EXPECT_EQ(news.get("children").array()->at(2).dictionary()->get("FilePath").kind(), Value::Kind::Null);
  }
  service->makeEpisodeFullPath(std::nullopt, "/P/News");
  service->makeEpisodeFullPath(Dictionary(), "/P/News");
}

TEST_F(PodcastIndexFiles, GetTheFolderInFrontOfEveryPathWhenMadeFromBytes) {
  std::string text =
      "<channel><Post><FilePath>1.mp3</FilePath></Post>"
      "<Post><FilePath>/P/News/2.mp3</FilePath></Post></channel>";
  auto bytes = std::make_shared<Data>();
  for (char c : text) bytes->push_back(static_cast<std::byte>(c));
  EXPECT_EQ(fieldOf(service->makeXMLInfoFromFileData("/P/News", bytes), "FilePath"),
            (Texts{"/P/News/1.mp3", "/P/News//P/News/2.mp3"}));
  EXPECT_FALSE(service->makeXMLInfoFromFileData("/P/News", nullptr));
}

}  // namespace
}  // namespace umsservice::testing

#include "TagReader.h"

#include "Paths.h"
#include "TagProcess.h"
#include "umsservice/Notifications.h"

namespace umsctl {
namespace {

using umsservice::FileSystem;
using umsservice::FileType;
using umsservice::MaybeDictionary;
namespace key = umsservice::key;

class TagBuilder final : public umsservice::OVMediaInfoBuilder {
 public:
  explicit TagBuilder(std::shared_ptr<FileSystem> files) : files_(std::move(files)) {}

  MaybeDictionary build(const std::string& path) override {
    // Looked at first: opening anything but a regular file might wait for ever.
    auto found = files_->attributes(path);
    if (!found || found->type != FileType::Regular) return std::nullopt;
    MaybeDictionary tags = TagProcess::read(path);
    if (!tags) return std::nullopt;
    tags->set(key::kFileName, lastComponent(path));
    tags->set(key::kFilePath, path);
    tags->set(key::kFileSize, found->size);
    return tags;
  }

 private:
  const std::shared_ptr<FileSystem> files_;
};

}  // namespace

std::shared_ptr<umsservice::OVMediaInfoBuilder> TagReader::getBuilder(const std::string&) {
  return std::make_shared<TagBuilder>(files_);
}

}  // namespace umsctl

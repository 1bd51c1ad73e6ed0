#include "AlbumArt.h"

#include <aifffile.h>
#include <asffile.h>
#include <asfpicture.h>
#include <asftag.h>
#include <attachedpictureframe.h>
#include <flacfile.h>
#include <flacpicture.h>
#include <id3v2tag.h>
#include <mp4coverart.h>
#include <mp4file.h>
#include <mp4tag.h>
#include <mpegfile.h>
#include <wavfile.h>
#include <xiphcomment.h>

namespace umsctl {
namespace {

using umsservice::Data;

constexpr unsigned kLargestPicture = 32u << 20;

std::optional<Data> dataOf(const TagLib::ByteVector& bytes) {
  if (bytes.isEmpty() || bytes.size() > kLargestPicture) return std::nullopt;
  const auto* first = reinterpret_cast<const std::byte*>(bytes.data());
  return Data(first, first + bytes.size());
}

/// The picture marked as front cover, or the first one. `Pictures` is a list of pointers to things with a
/// type and bytes.
template <typename Pictures, typename Type, typename Bytes>
std::optional<Data> frontCover(const Pictures& pictures, Type isFront, Bytes bytesOf) {
  std::optional<Data> first;
  for (const auto& picture : pictures) {
    auto data = dataOf(bytesOf(picture));
    if (data && isFront(picture)) return data;
    if (!first) first = std::move(data);
  }
  return first;
}

std::optional<Data> fromId3(const TagLib::ID3v2::Tag* tag) {
  using Frame = TagLib::ID3v2::AttachedPictureFrame;
  if (!tag) return std::nullopt;
  std::vector<const Frame*> pictures;
  for (const auto* frame : tag->frameList("APIC")) {
    if (const auto* picture = dynamic_cast<const Frame*>(frame)) pictures.push_back(picture);
  }
  return frontCover(
      pictures, [](const Frame* picture) { return picture->type() == Frame::FrontCover; },
      [](const Frame* picture) { return picture->picture(); });
}

std::optional<Data> fromPictureList(const TagLib::List<TagLib::FLAC::Picture*>& pictures) {
  using Picture = TagLib::FLAC::Picture;
  return frontCover(
      pictures, [](const Picture* picture) { return picture->type() == Picture::FrontCover; },
      [](const Picture* picture) { return picture->data(); });
}

std::optional<Data> fromMp4(const TagLib::MP4::Tag* tag) {
  if (!tag || !tag->contains("covr")) return std::nullopt;
  using Cover = TagLib::MP4::CoverArt;
  return frontCover(
      tag->item("covr").toCoverArtList(), [](const Cover&) { return true; },
      [](const Cover& cover) { return cover.data(); });
}

std::optional<Data> fromAsf(const TagLib::ASF::Tag* tag) {
  if (!tag || !tag->contains("WM/Picture")) return std::nullopt;
  using Attribute = TagLib::ASF::Attribute;
  using Picture = TagLib::ASF::Picture;
  return frontCover(
      tag->attribute("WM/Picture"),
      [](const Attribute& attribute) { return attribute.toPicture().type() == Picture::FrontCover; },
      [](const Attribute& attribute) { return attribute.toPicture().picture(); });
}

}  // namespace

std::optional<Data> albumArtOf(TagLib::File& file) {
  using namespace TagLib;
  if (auto* mpeg = dynamic_cast<MPEG::File*>(&file)) return fromId3(mpeg->ID3v2Tag());
  if (auto* wave = dynamic_cast<RIFF::WAV::File*>(&file)) return fromId3(wave->ID3v2Tag());
  if (auto* aiff = dynamic_cast<RIFF::AIFF::File*>(&file)) return fromId3(aiff->tag());
  if (auto* mp4 = dynamic_cast<MP4::File*>(&file)) return fromMp4(mp4->tag());
  if (auto* asf = dynamic_cast<ASF::File*>(&file)) return fromAsf(asf->tag());
  if (auto* flac = dynamic_cast<FLAC::File*>(&file)) return fromPictureList(flac->pictureList());
  if (auto* ogg = dynamic_cast<Ogg::XiphComment*>(file.tag())) return fromPictureList(ogg->pictureList());
  return std::nullopt;
}

}  // namespace umsctl

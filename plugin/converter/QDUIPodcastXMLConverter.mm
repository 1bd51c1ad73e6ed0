#import "UMSServiceBundle/QDUIPodcastXMLConverter.h"

#include "bridge/Text.h"
#include "bridge/Values.h"
#include "environment/HostEnvironment.h"
#include "umsservice/PodcastXMLConverter.h"

using umsplugin::toDictionary;
using umsplugin::toHost;
using umsservice::PodcastXMLConverter;

namespace {

/// One for the process: it has no state.
const PodcastXMLConverter& library() {
  static const auto* converter = new PodcastXMLConverter(umsplugin::hostEnvironment());
  return *converter;
}

std::string_view bytesOf(NSData* data) {
  return {static_cast<const char*>([data bytes]), [data length]};
}

/// A document of the platform; nil for absent bytes and for what the platform cannot read.
NSXMLDocument* documentOf(const umsservice::MaybeString& bytes) {
  if (!bytes) return nil;
  NSData* data = [NSData dataWithBytes:bytes->data() length:bytes->size()];
  NSXMLDocument* document = [[NSXMLDocument alloc] initWithData:data options:NSXMLNodeOptionsNone error:NULL];
  [document setCharacterEncoding:@"utf-8"];
  return [document autorelease];
}

/// The index among all children of the element at a position among the elements.
NSUInteger childIndexOf(NSXMLElement* root, size_t position) {
  NSUInteger index = 0;
  for (; index < [root childCount]; ++index) {
    if ([[root childAtIndex:index] kind] == NSXMLElementKind && position-- == 0) break;
  }
  return index;
}

}  // namespace

@implementation QDUIPodcastXMLConverter

- (id)init {
  return [super init];
}

- (NSXMLDocument*)makePodcastXMLFromPodcastDictionary:(NSDictionary*)podcast
                                       includeEpisode:(BOOL)includeEpisode {
  return documentOf(library().makePodcastXMLFromPodcastDictionary(toDictionary(podcast), includeEpisode));
}

- (NSMutableDictionary*)makePodcastDictionaryFromXML:(NSData*)data {
  return toHost(library().makePodcastDictionaryFromXML(bytesOf(data)));
}

- (void)addPodcastEpisode:(NSDictionary*)episode inXML:(NSXMLDocument*)document {
  auto given = toDictionary(episode);
  if (!given || !document) return;
  NSXMLDocument* grown = documentOf(library().addPodcastEpisode(*given, bytesOf([document XMLData])));
  NSXMLElement* post = [[[grown rootElement] elementsForName:@"Post"] lastObject];
  if (!post) return;
  [[post retain] autorelease];
  [post detach];
  [[document rootElement] addChild:post];
}

- (void)removePodcastEpisode:(NSDictionary*)episode inXML:(NSXMLDocument*)document {
  auto given = toDictionary(episode);
  if (!given || !document) return;
  auto position = library().positionOfPodcastEpisode(*given, bytesOf([document XMLData]));
  if (!position) return;
  NSXMLElement* root = [document rootElement];
  [root removeChildAtIndex:childIndexOf(root, *position)];
}

@end

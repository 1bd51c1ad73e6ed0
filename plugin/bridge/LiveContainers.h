/// Containers of the library as the host sees them: mutable collections whose contents are the library's own.
/// The volume list is one, and so are the channels that travel in notifications.
///
/// What either side changes shows on the other. A dictionary in a list answers as the same object each time
/// and lives at least as long as the list holds it. Safe from any thread; a sequence of calls is not one
/// step.
#pragma once

#import <Foundation/Foundation.h>

#include "umsservice/Value.h"

struct UMSLiveElements;

@interface UMSLiveDictionary : NSMutableDictionary {
 @private
  umsservice::Dictionary* _dictionary;
}
- (id)initOverDictionary:(const umsservice::Dictionary&)dictionary;
- (umsservice::Dictionary)libraryDictionary;
@end

@interface UMSLiveArray : NSMutableArray {
 @private
  umsservice::Array* _array;
  struct UMSLiveElements* _elements;
}
- (id)initOverArray:(const umsservice::Array&)array;
- (umsservice::Array)libraryArray;
/// The object that stands for one of the list's dictionaries; nil for an absent one.
- (NSDictionary*)elementFor:(const umsservice::MaybeDictionary&)dictionary;
@end

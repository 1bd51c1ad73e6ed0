#import "Try.h"

NSString* nameOfExceptionIn(void (*body)(void*), void* context) {
  @try {
    body(context);
  } @catch (NSException* exception) {
    return [exception name];
  }
  return nil;
}

NSArray* seenInLoop(id collection) {
  NSMutableArray* seen = [NSMutableArray array];
  for (id each in collection) [seen addObject:each];
  return seen;
}

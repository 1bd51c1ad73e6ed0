#import "Try.h"

NSString* nameOfExceptionIn(void (*body)(void*), void* context) {
  @try {
    body(context);
  } @catch (NSException* exception) {
    return [exception name];
  }
  return nil;
}

#import "bridge/Exceptions.h"

id UMSExceptionIn(void (*body)(void*), void* context) {
  @try {
    body(context);
  } @catch (id exception) {
    return [exception retain];
  }
  return nil;
}

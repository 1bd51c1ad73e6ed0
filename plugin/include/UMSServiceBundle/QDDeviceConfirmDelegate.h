/// The host object that answers questions in the middle of a run, on the worker thread of a service.
///
/// A service does not retain its delegate: it must live until the service is gone or has another one.
#pragma once

#import <Foundation/Foundation.h>

@protocol QDDeviceConfirmDelegate <NSObject>

/// Asked when a file already exists at its destination. The answer NO skips this and every later conflict of
/// the run; `isOverwrite` replaces the existing file; `isNotAsk` keeps both answers for the rest of the run.
- (BOOL)confirmOverwrite:(NSString*)path isOverwrite:(BOOL*)isOverwrite isNotAsk:(BOOL*)isNotAsk;

/// The file service (see `OVFileService`) of another attached device, or nil.
- (id)getFileServiceObject:(NSString*)locationID;

@end

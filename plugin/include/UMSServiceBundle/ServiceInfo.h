/// One request as the service queues and runs it, for hosts that hand a record to the service themselves.
///
/// The record and everything it points to stay the caller's. Fields that a command does not name are zero or
/// nil. Command numbers and media types are those of docs/host-guide.md.
#pragma once

#import <Foundation/Foundation.h>

typedef struct _serviceinfo {
  unsigned int serviceID;         ///< the host's number of the request; echoed in every notification about it
  unsigned int command;           ///< 201 to 217
  NSString* filePath;             ///< primary path of the single-path commands; source of a rename
  NSString* destPath;             ///< target folder, or the new name of a rename
  unsigned int param1;            ///< spare
  unsigned int param2;            ///< spare
  void* context1;                 ///< spare
  void* context2;                 ///< spare
  NSArray* contents;              ///< content dictionaries, or podcast dictionaries
  NSString* playlistName;         ///< copies to the computer only
  NSString* destLocationID;       ///< device to device only
  NSString* srcLocationID;        ///< device to device only
  unsigned int storageIndex;      ///< volume index
  unsigned int mediaType;         ///< 1 music, 2 image, 3 video, 4 podcast
  unsigned char isStartInternal;  ///< sync only: begin with the internal volume
} _serviceinfo;

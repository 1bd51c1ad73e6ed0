/// Names and texts of the error numbers, for a host that shows or logs them.
///
/// Made of constants; every call is safe from any thread. The numbers themselves stand in `ErrorNumbers.h`.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "umsservice/ErrorNumbers.h"
#include "umsservice/Export.h"

namespace umsservice {

/// One number of the protocol in words.
struct ErrorDescription {
  ErrorNumber number = kErrorNone;
  std::string_view name;  ///< as the code writes it: "kErrorVolumeFull"; never changes
  std::string_view text;  ///< what happened, in English without a full stop: "the volume is full"
};

/// Every number of `ErrorNumber`, in the order of the numbers; success is among them.
UMS_EXPORT const std::vector<ErrorDescription>& errorDescriptions();

/// The name of a number as "Status" or "ResultStatus" carries it; its eight hexadecimal digits with "0x" in
/// front for a number that the protocol does not have.
UMS_EXPORT std::string errorNumberName(uint32_t number);

/// The text of a number; "unknown error 0x..." for one that the protocol does not have.
UMS_EXPORT std::string errorNumberText(uint32_t number);

}  // namespace umsservice

/// Dates and durations of episodes as a listing shows them. Feeds write them in many ways, and sometimes
/// wrongly.
#pragma once

#include <string>

namespace umsctl {

/// "2021-03-04" for "Thu, 04 Mar 2021 06:00:00 +0100" and for what begins like it already; "-" for a text
/// that is no date.
std::string shownDate(const std::string& text);

/// "1:02:03", "31:05" or "0:07" for "3723", "31:05" and the like; "-" for a text that is no duration.
std::string shownDuration(const std::string& text);

}  // namespace umsctl

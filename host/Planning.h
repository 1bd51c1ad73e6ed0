/// What a command is about to do, in numbers; after a dry run also what it would have come to.
#pragma once

#include "Errand.h"
#include "Outcomes.h"
#include "WrittenPlace.h"

namespace umsctl {

/// Before the first byte: the number of items, their bytes, the room on each volume. At the end of a dry run
/// also the room that would be left, and the clashes that were found.
Plan planOf(const Errand& errand, const std::vector<uint64_t>& sizes, const std::vector<WrittenPlace>& places,
            std::vector<Clash> clashes = {});

/// Whether the name of an item of a dry run that has just been counted is taken where it is to go, and what
/// would become of it; nothing for other runs.
std::optional<ClashAction> clashOf(const Errand& errand, const umsservice::ItemOutcome& outcome);

}  // namespace umsctl

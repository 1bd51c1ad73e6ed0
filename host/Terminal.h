/// What is known of the terminal, if there is one.
#pragma once

#include <cstddef>
#include <optional>

namespace umsctl {

/// Whether standard output leads to a person's screen.
bool outputIsTerminal();

/// Whether standard error leads to a person's screen.
bool errorIsTerminal();

/// Whether the kind of terminal (TERM) is one that takes sequences for what they mean.
bool terminalUnderstandsSequences();

/// Whether standard error leads to a screen on which a line can be drawn again and again.
bool canRedrawError();

/// Whether a person can be asked: sees standard error and types on standard input.
bool canAsk();

/// The columns of standard error's screen as they are now; 80 where it does not say.
size_t errorColumns();

/// The same of standard output's screen; nothing where it is none.
std::optional<size_t> outputColumns();

/// Whether the locale writes text as UTF-8, so that a screen shows more than ASCII.
bool showsUtf8();

/// Takes the cursor to the start of the line and empties the line.
inline constexpr const char* kEraseLine = "\r\x1b[K";

}  // namespace umsctl

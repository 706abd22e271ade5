#pragma once

// A command line taken apart by the shell's rules for words and quotes (POSIX.1, Shell Command Language 2.2),
// and by no others: no variables, patterns, pipes or substitutions. Who wants those writes sh -c '...'.
// So a session file that names a program runs this program and nothing that hides in an argument.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::comm {

// The words: none for a blank line. No value when a quote is not closed or the line ends in a lone backslash.
std::optional<std::vector<std::string>> SplitCommandLine(std::string_view line);

} // namespace kestrune::comm

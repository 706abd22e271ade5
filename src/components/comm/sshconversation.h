#pragma once

#include "sshmailbox.h"

#include <memory>

namespace kestrune::comm {

// Talks to an SSH host from the first byte to the last, on a thread of its own, which ends with it.
void StartSshConversation(const LineOptions& options, const std::shared_ptr<SshMailbox>& mail);

} // namespace kestrune::comm

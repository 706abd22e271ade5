#pragma once

namespace kestrune::comm {

class SshContact;

// Whether the host is the one that it claims to be: its key against the session's own fingerprint, then the known
// hosts of the user and the system, then the user. Returns when it may be trusted.
void CheckHostKey(SshContact& contact);

} // namespace kestrune::comm

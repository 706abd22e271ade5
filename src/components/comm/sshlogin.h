#pragma once

namespace kestrune::comm {

class SshContact;

// Logs in by what the host takes and the session's settings allow: agent and keys before anything that the user has
// to type. Several methods one after the other, where the host asks for them. Returns when it has worked.
void LogIn(SshContact& contact);

} // namespace kestrune::comm

#pragma once

// The built-in commands as one table: number, symbolic key, whether a session is needed, what is called and whether a
// macro records it. The dispatcher (menucmd.h) walks it; nothing else knows what a command does.

#include <menus/toolkeys.h>
#include <ports/cause.h>
#include <ports/recorder.h>

#include <span>

namespace kestrune {

class ApplicationPort;
class CommandPieces;
class MenuHost;
class MenuCmd;

struct CommandCall
{
    ApplicationPort& application;
    MenuHost& host;
    CommandPieces& pieces;
    MenuCmd& menus;
    clsSession* session; // alive until the command returns; null: none
    Cause cause;
    CommandRecord record; // the command adds what is worth recording beside its number and session
};

enum class Needs
{
    Nothing,
    Session // without one the command does nothing
};

enum class Records
{
    Nothing,
    WhenDone
};

struct CommandRow
{
    int id;
    std::string_view key; // as in toolkeys.h
    Needs needs;
    Records records;
    bool (*run)(CommandCall&); // true: done
};

std::span<const CommandRow> Commands(); // by number
const CommandRow* FindCommand(int id);  // null: no such command

} // namespace kestrune

#pragma once

// A program running on a pseudo-terminal of its own: started as the leader of a new session with that terminal
// as its controlling one, no open files besides it, default signals and all permitted processors.

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

struct ProgramStart
{
    std::string file;                     // path of the program
    std::vector<std::string> arguments;   // from argument 0 on; a login shell gets "-name" there
    std::vector<std::string> environment; // "NAME=value", all of it
    std::string workingFolder;            // when it cannot be entered the program starts in "/"
    int cols = 80;
    int rows = 24;
    int pixelWidth = 0; // 0: not known
    int pixelHeight = 0;
    bool utf8 = false;            // the tty erases whole UTF-8 characters
    char eraseCharacter = '\x7f'; // of the tty, until the program sets its own
};

struct ProgramEnd
{
    int exitCode = 0;
    int signal = 0; // 0: ended by itself
};

class TerminalProgram
{
public:
    // Null when it could not be started; systemError is then the errno of the step that failed.
    static std::unique_ptr<TerminalProgram> Start(const ProgramStart& start, int& systemError);

    // Hangs up with the usual grace when nothing has been done about the program yet.
    ~TerminalProgram();

    // For notifiers: the terminal, never blocking, and a descriptor that is readable once the program has ended.
    int Terminal() const { return terminal_; }
    int EndDescriptor() const { return processHandle_; }

    // Bytes read or written; 0: nothing can be now; -1: nobody has the other side open (any more).
    std::ptrdiff_t Read(char* to, std::size_t room);
    std::ptrdiff_t Write(std::string_view bytes);

    void Resize(int cols, int rows, int pixelWidth, int pixelHeight);
    // SIGINT to the foreground job: what a break does on a real tty. A pseudo-terminal carries no breaks.
    void Interrupt();
    bool HasForegroundJob() const;   // another process group than the program's own has the terminal
    std::optional<ProgramEnd> End(); // collects the program once it has ended; the same answer ever after

    // What closing a terminal window means: SIGHUP to the program's group and, as the terminal goes, to the
    // foreground job. What is still there after the grace time is killed. The program is collected by the event
    // loop when it ends, also after this object has gone.
    void HangUp(int graceMilliseconds = 3000);

private:
    TerminalProgram(int terminal, int processHandle, int process);
    int terminal_;
    int processHandle_;
    int process_;
    std::optional<ProgramEnd> end_;
};

// Where a command is found by the search path, or the name itself when it holds a separator; empty: nowhere.
std::string FindProgram(const std::string& name);

// The login shell of the user: the environment's, else the account's, else the system's.
std::string LoginShell();

} // namespace kestrune

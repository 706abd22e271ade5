#pragma once

// The communications library's calls on open lines, by their own names, for programs that poll: a line is a number,
// what comes from the far side is kept until it is read, and nothing is raised. What the library tells of devices,
// telephone numbers and FIPS mode stands in comm/commlibrary.h, the keys of SSH in a header of their own.
//
//     CommHandles comm(library);
//     const int line = comm.ORCommOpen(options);
//     ... with the event loop running ...
//     if (comm.ORCommQuery(line, CommQuery::State) == int(LineState::Connected))
//         comm.ORCommWriteBuf(line, "ls\r");
//
// All calls are on the user-interface thread. A handle that does not exist gives 0, -1 or an empty text, as stated.

#include <ports/line.h>

#include <QByteArray>
#include <QString>

#include <memory>
#include <unordered_map>

namespace kestrune {

enum class CommQuery : int
{
    State = 0,      // LineState
    Received = 1,   // bytes that wait to be read
    Unsent = 2,     // bytes that wait to go out
    DialStatus = 3, // enum DialStatus; of a line without a modem NoCall
    ErrorWord = 4,  // of the last error, 0: none
    Device = 5,
    Question = 6, // 0: none stands; else one more than LineQuestion::Kind
    ExitCode = 7  // of the program at the far end; -1: it has not told one
};

enum class CommOption : int
{
    Receiving = 0, // 0: take nothing more from the far side
    Columns = 1,   // of the terminal, which the far side is told
    Rows = 2
};

// What is said to a line besides its bytes.
enum class CommEscape : int
{
    Cancel = 0,   // the three answers to a question about trust
    Continue = 1, // this time only
    Update = 2    // and remember it
};

class CommHandles
{
public:
    static constexpr int MostKept = 256 * 1024; // bytes; then the far side waits

    // lines must outlive this object.
    explicit CommHandles(LineFactory& lines);
    ~CommHandles(); // closes what is open

    // Closes every line and forgets every handle. The number of devices (1 to 7) that exist.
    int ORCommInit();
    // A handle, above 0; 0: the device does not exist. The outcome comes while the event loop runs.
    int ORCommOpen(const LineOptions& options);
    // Ends the connection and the handle; 0: no such handle.
    int ORCommClose(int handle);
    // Ends the connection and the try to make one. The handle stays, what was received can be read. 0: nothing to end.
    int ORCommAbort(int handle);
    // Connects again, as ORCommOpen did; what was received and not read is gone.
    int ORCommReset(int handle);

    int ORCommRead(int handle);                              // one byte, 0 to 255; -1: none has come
    int ORCommReadBuf(int handle, char* buffer, int size);   // the number of bytes, 0: none
    int ORCommWrite(int handle, int byte);                   // 1, or 0: it is not connected, or takes nothing more
    int ORCommWriteBuf(int handle, std::string_view bytes);  // their number, or 0: none was taken
    int ORCommUnread(int handle, int byte);                  // it is read next; 1, or 0
    int ORCommUnreadBuf(int handle, std::string_view bytes); // their number, or 0
    int ORCommFlush(int handle);                             // the number of received bytes that were thrown away

    int ORCommBreak(int handle, int milliseconds); // 1, or 0: it is not connected
    int ORCommQuery(int handle, CommQuery what) const;
    int ORCommOption(int handle, CommOption option, int value); // 1, or 0: no such handle, a value that makes no sense
    // Answers the question that stands; 0: none does. Secrets cannot be given here: such a question is answered with
    // "nobody is there" at once.
    int ORCommEscape(int handle, CommEscape what);
    // What the last error was, or else what the line says of its state, in the user's words.
    QString ORCommErrmsg(int handle) const;

    int ORCommDial(int handle, const QString& number); // 1: the modem dials; see CommQuery::DialStatus
    int ORCommHangup(int handle);                      // 1: the call is being ended

private:
    class OpenLine;
    OpenLine* Find(int handle) const;

    LineFactory& lines_;
    std::unordered_map<int, std::unique_ptr<OpenLine>> open_;
    int last_ = 0;
};

} // namespace kestrune

#pragma once

// One running capture: bytes of the host or for the printer on their way into a file or the clipboard.

#include <emulator/engine/plaintext.h>
#include <ports/clipboard.h>
#include <ports/outputfiles.h>
#include <ports/textfiles.h>

#include "hosttext.h"

#include <memory>
#include <string_view>

namespace kestrune {

class HostCapture
{
public:
    static constexpr int Received = 1, PrinterData = 2;
    static constexpr qsizetype MaxClipboard = qsizetype{16} * 1024 * 1024; // characters

    enum class Target : int
    {
        NewFile = 0,
        Overwrite = 1,
        Append = 2,
        Clipboard = 3
    };
    static constexpr int TextOnly = 128; // added to the target

    struct Plan
    {
        QString fileName;
        int source = Received;
        int mode = 0;
        int encoding = 0; // of text only, to a file: 0 the host's own bytes, else as TextFiles has them
        emu::HostCharset charset = emu::HostCharset::Latin1;
        bool eightBitControls = true;
    };
    struct Ports
    {
        OutputFiles& outputs;
        TextFiles& texts;
        Clipboard& clipboard;
    };

    // Raises Failure when the file cannot be opened. failed: from the event loop, at most once; end it then.
    HostCapture(const Ports& ports, Plan plan, OutputFiles::Failed failed);
    static bool IsMode(int mode);

    const Plan& Facts() const { return plan_; }
    void Put(int source, std::string_view bytes); // of another source: not for us
    // Closes the file, or fills the clipboard. Why not all of it is there, for people; empty: it is.
    [[nodiscard]] QString End();

private:
    bool IsText() const { return (plan_.mode & TextOnly) != 0; }
    Target To() const { return Target(plan_.mode & ~TextOnly); }
    std::string WithPlatformLineEnds(std::string_view text);

    Ports ports_;
    Plan plan_;
    emu::PlainText plain_;
    HostText raw_;
    std::unique_ptr<OutputFile> file_; // null: the clipboard
    QString text_;                     // for the clipboard
    bool carriageReturn_ = false;      // the last character was one: its line may have ended already
    bool cut_ = false;
};

} // namespace kestrune

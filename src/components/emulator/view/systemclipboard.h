#pragma once

// The desktop's clipboard and primary selection.

#include <ports/clipboard.h>

namespace kestrune {

class SystemClipboard : public Clipboard
{
public:
    bool HasText(Kind kind) const override;
    QString Text(Kind kind) const override;
    void Put(Kind kind, const ClipboardText& content) override;
};

} // namespace kestrune

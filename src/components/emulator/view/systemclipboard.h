#pragma once

// The desktop's clipboard and primary selection.

#include <ports/clipboard.h>

namespace kestrune {

class SystemClipboard : public Clipboard
{
public:
    bool HasText(Kind kind) const override;
    QString Text(Kind kind) const override;
    void SetText(Kind kind, const QString& text) override;
};

} // namespace kestrune

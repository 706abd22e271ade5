#include <support/msgbox.h>

#include <support/errors.h>

namespace kestrune {

int MsgBox(Questions& ask, const QString& text, int flags, quintptr owner)
{
    int result = 0;
    Silently([&] { result = ask.MsgBox({text, flags, QStringLiteral("Kestrune"), owner}); });
    return result;
}

} // namespace kestrune

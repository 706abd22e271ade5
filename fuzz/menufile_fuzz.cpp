// Any bytes as a menu file: it is refused or read, and what was read is the same after it was written and read again.

#include <dispatch/failure.h>
#include <menus/menufile.h>
#include <platform/textcodec.h>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace kestrune;
    const QByteArray content(reinterpret_cast<const char*>(data), qsizetype(size));
    try {
        std::vector<MenuBand> bands = LoadMenuBag(DecodeText(content, DetectEncoding(content)));
        for (MenuBand& band : bands)
            if (band.dock == BandDock::Normal)
                band.dock = BandDock::Top; // left out by the writer, and then read as its default
        const QString text = QStringLiteral("[Menu]\r\n") + MenuFileLines(bands).join(QStringLiteral("\r\n"));
        const std::vector<MenuBand> again = LoadMenuBag(text);
        // A carriage return or NUL inside a value becomes a blank on the way.
        const bool comparable =
            !text.contains(u'\0') && !content.contains('\0') && content.count('\r') == content.count("\r\n");
        if (comparable && again != bands)
            std::abort();
    } catch (const Failure&) {
    }
    return 0;
}

#include <platform/keyboardlocks.h>

#include <QDir>
#include <QFile>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// The lamps of a keyboard in the core protocol, counted from bit 0, as the standard key map names them.
constexpr unsigned CapsLamp = 1, NumLamp = 2, ScrollLamp = 4;

struct EndConnection
{
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using Connection = std::unique_ptr<xcb_connection_t, EndConnection>;

struct Free
{
    void operator()(void* memory) const { std::free(memory); }
};

KeyboardLocks LampsOf(xcb_connection_t* connection)
{
    const std::unique_ptr<xcb_get_keyboard_control_reply_t, Free> reply(
        xcb_get_keyboard_control_reply(connection, xcb_get_keyboard_control(connection), nullptr));
    if (!reply)
        return {};
    const unsigned lamps = reply->led_mask;
    return {(lamps & CapsLamp) != 0, (lamps & NumLamp) != 0, (lamps & ScrollLamp) != 0};
}

} // namespace

KeyboardLocks LampsBelow(const char* folder)
{
    const QDir lamps(QFile::decodeName(folder));
    const auto isOn = [&](const QString& name) {
        const QStringList found = lamps.entryList({u"*::"_s + name}, QDir::Dirs | QDir::NoDotAndDotDot);
        for (const QString& one : found)
            if (QFile file(lamps.filePath(one + "/brightness"_L1)); file.open(QIODevice::ReadOnly))
                if (file.readAll().trimmed().toInt() > 0)
                    return true;
        return false;
    };
    return {isOn(u"capslock"_s), isOn(u"numlock"_s), isOn(u"scrolllock"_s)};
}

ReadKeyboardLocks KeyboardLockReader()
{
    // With Wayland an X display may stand beside it, whose lamps nobody keeps.
    if (qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        if (const std::shared_ptr<xcb_connection_t> display{Connection(xcb_connect(nullptr, nullptr))};
            xcb_connection_has_error(display.get()) == 0)
            return [display] { return LampsOf(display.get()); };
    return [] { return LampsBelow("/sys/class/leds"); };
}

} // namespace kestrune

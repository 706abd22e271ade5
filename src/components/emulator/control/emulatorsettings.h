#pragma once

// The `Settings` object of the emulator control: every persistent terminal setting by the rows of
// settingstable.h, the function keys, the palette and the attribute colours, in a session file or a bag.
//
// A let that changes a value raises Changed and a notice; the control follows it live. A let to a value out of
// range raises Failure 5 and changes nothing; an unknown name raises Failure 438, an index out of range 5.

#include <dispatch/propertybag.h>
#include <dispatch/variant.h>
#include <emulator/control/settingstable.h>
#include <ports/keyfile.h>

#include <QMap>
#include <QObject>

#include <array>
#include <vector>

namespace kestrune {

// Palette entries 0 to 15 are the sixteen colours of SGR 30..37, 90..97; the rest have roles.
namespace PaletteRole {
inline constexpr int Foreground = 16, Background = 17, Cursor = 18, CursorText = 19, Selection = 20, SelectionText = 21;
}
inline constexpr int PaletteSize = 22;

// Attribute colours: how a cell without colours of its own looks under each attribute value. The value's bits
// are 1 invisible, 2 blink, 4 reverse, 8 underline, 16 dim, 32 bright; the colour is two palette entries.
inline constexpr int AttributeCount = 64;
constexpr qint16 AttributeColor(int foreground, int background) { return qint16(foreground + 32 * background); }
constexpr int AttributeForeground(qint16 color) { return color & 31; }
constexpr int AttributeBackground(qint16 color) { return (color >> 5) & 31; }

class EmulatorSettings : public QObject
{
    Q_OBJECT

public:
    explicit EmulatorSettings(KeyFiles& files, QObject* parent = nullptr);

    void ResetToDefaults(); // values, function keys, colours; Changed becomes false
    // Section "Kestrune". Raises Failure (53, 70, 75, 76 ...) with nothing changed here. A value that is no
    // number or out of range reads as its default. Clears Changed.
    void Load(const QString& path);
    // Writes what differs from its default, removes what does not, keeps keys that it does not know. TermType
    // is always written: it marks the file as a session file. Clears Changed when the file is in place.
    void Save(const QString& path);

    bool Changed() const { return changed_; }
    void SetChanged(bool changed) { changed_ = changed; }
    void Apply() {} // every let is live; recorded macros end their settings with it

    // --- by name, as scripts and the settings dialog reach them; names without regard to case
    Variant Get(const QString& name) const;
    void Set(const QString& name, const Variant& value);

    // --- by row: Integer(Setting("Device")). Integer also reads a boolean, as 0 or -1.
    Variant Value(SettingId id) const { return state_.values[id.index]; }
    void SetValue(SettingId id, const Variant& value);
    bool Boolean(SettingId id) const { return Value(id).ToBoolean(); }
    int Integer(SettingId id) const { return Value(id).ToInteger(); }
    double Number(SettingId id) const { return Value(id).ToDouble(); }
    QString Text(SettingId id) const { return Value(id).ToText(); }

    // --- indexed
    // What a function key sends instead of its own sequence; empty: its own. The code is the virtual key plus
    // 1000 for Shift, 2000 for Control, 4000 for Alt; 10000 more for the label that the function bar shows for it.
    QString FKeys(int code) const { return state_.fkeys.value(code); }
    void SetFKeys(int code, const QString& text);
    static bool IsFKeyCode(int code);
    qint32 Palette(int index) const; // 0x00BBGGRR, as the RGB function of BASIC makes it
    void SetPalette(int index, qint32 color);
    qint16 Colors(int index) const;          // see AttributeColor
    void SetColors(int index, qint16 color); // raises Failure 5 for one that names no entries of the palette
    static qint32 DefaultPalette(int index);
    static qint16 DefaultColors(int index);

    // --- property bag, keys of settingstable.h, "sFKey" code, "sAttrColor" index, "sPalette" index
    void WriteProperties(PropertyBag& bag) const;
    void ReadProperties(const PropertyBag& bag); // what the bag lacks takes its default

signals:
    void SettingChanged(kestrune::SettingId id);
    void PaletteChanged();
    void ColorsChanged();
    void FKeysChanged(int code);

private:
    struct State
    {
        std::vector<Variant> values; // by row, in the row's kind
        QMap<int, QString> fkeys;    // only those not empty
        std::array<qint32, PaletteSize> palette;
        std::array<qint16, AttributeCount> colors;
    };
    static State Defaults();
    void Take(State next); // with notices for what differs; Changed is the caller's

    KeyFiles& files_;
    State state_;
    bool changed_ = false;
};

} // namespace kestrune

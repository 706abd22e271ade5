#pragma once

// A live menu as scripts and other programs see it. The released surface: a script can adjust the tools that the menu
// file made, and restructure nothing; what would is published and fails with NotImplemented. The objects keep a key
// each and look the band or tool up anew whenever they are used; a tool that is not there reads as empty and is written
// in silence.

#include <dispatch/membertable.h>
#include <menubar/tamenubar.h>

#include <QPointer>

#include <functional>

namespace kestrune {

// Shows a popup band at the pointer.
using ShowPopupBand = std::function<void(taMenuBar& menu, const QString& band)>;

class clsMnuTool final : public TableObject
{
public:
    clsMnuTool(taMenuBar* menu, qint32 toolId) : menu_(menu), toolId_(toolId) {}
    const MemberTable& Table() const override;

    qint32 ToolID() const { return toolId_; }
    QString Action() const { return Text(ToolProperty::Action); }
    void SetAction(const QString& value) { Set(ToolProperty::Action, value); }
    QString Caption() const { return Text(ToolProperty::Caption); }
    void SetCaption(const QString& value) { Set(ToolProperty::Caption, value); }
    QString ToolTipText() const { return Text(ToolProperty::ToolTipText); }
    void SetToolTipText(const QString& value) { Set(ToolProperty::ToolTipText, value); }
    // True reads as 1, not -1.
    Variant Enabled() const { return State(ToolProperty::Enabled); }
    void SetEnabled(bool on) { Set(ToolProperty::Enabled, on); }
    Variant Visible() const { return State(ToolProperty::Visible); }
    void SetVisible(bool on) { Set(ToolProperty::Visible, on); }
    Variant Checked() const { return State(ToolProperty::Checked); }
    void SetChecked(bool on) { Set(ToolProperty::Checked, on); }

private:
    QVariant Value(ToolProperty property) const;
    QString Text(ToolProperty property) const { return Value(property).toString(); }
    Variant State(ToolProperty property) const; // empty: there is no such tool
    void Set(ToolProperty property, const QVariant& value);

    QPointer<taMenuBar> menu_;
    qint32 toolId_;
};

class clsMnuBand final : public TableObject
{
public:
    clsMnuBand(taMenuBar* menu, QString key, ShowPopupBand popup)
        : menu_(menu), key_(std::move(key)), popup_(std::move(popup))
    {}
    const MemberTable& Table() const override;

    QString Name() const { return key_; }
    QString Caption() const;
    void SetCaption(const QString& title);
    qint16 DockingArea() const;       // 1, 2, 4, 8, 16: top, bottom, left, right, floating; 0: none of them
    void SetDockingArea(qint16 area); // any other value is ignored
    qint16 BandType() const;          // 1 main menu, 2 popup, 0 toolbar, 3 status bar, 4 session bar
    void SetBandType(const Variant&); // Failure ReadOnlyProperty
    qint16 Visible() const;           // 1 or 0
    void SetVisible(bool on);         // a popup that is made visible pops up at the pointer
    qint16 Count();                   // of all tools, those in sub-menus too
    Ref<clsMnuTool> MnuTools(const Variant& index); // by key or from 1; Failure 5 or 9 when there is none
    Ref<Enumerator> NewEnum();

private:
    const MenuBand& Band() const; // Failure ObjectNotSet when it has gone
    void Change(const std::function<void(MenuBand&)>& change);
    const std::vector<Ref<clsMnuTool>>& Tools(); // made when first asked for, and kept

    QPointer<taMenuBar> menu_;
    QString key_;
    ShowPopupBand popup_;
    std::optional<std::vector<Ref<clsMnuTool>>> tools_;
};

class clsMenu final : public TableObject
{
public:
    explicit clsMenu(taMenuBar& menu, ShowPopupBand popup = {}) : menu_(&menu), popup_(std::move(popup)) {}
    const MemberTable& Table() const override;

    Ref<clsMnuBand> MnuBands(const Variant& key); // by key or from 1; Failure 5 or 9 when there is none
    Ref<Enumerator> NewEnum();
    qint32 Count();
    Ref<clsMnuTool> Item(qint32 toolId); // whether there is such a tool shows when it is used

private:
    const std::vector<Ref<clsMnuBand>>& Bands(); // made when first asked for, and kept

    QPointer<taMenuBar> menu_;
    ShowPopupBand popup_;
    std::optional<std::vector<Ref<clsMnuBand>>> bands_;
};

} // namespace kestrune

#pragma once

// One list of tools as the actions of a menu bar, a menu or a toolbar, with all that hangs below it. When another
// list is to be shown, of another session for instance, whatever has the same form stays and only its states are
// brought up to date: that is what makes a switch quick and quiet.

#include <menubar/tamenubar.h>

#include <QObject>
#include <QPointer>
#include <QSet>

#include <vector>

class QAction;
class QActionGroup;
class QMenu;
class QWidget;

namespace kestrune {

class ToolCombo;

class ToolList : public QObject
{
    Q_OBJECT

public:
    enum class Look
    {
        MenuBar,
        Menu,
        ToolBar
    };

    ToolList(QWidget& widget, Look look); // the widget owns it
    ~ToolList() override;

    void Show(taMenuBar& model, const QString& band); // the tools of that band; none: it stands empty
    void Refresh(const QSet<int>& keys);              // the tools of these keys have changed

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Item
    {
        int key = 0;
        ToolType type = ToolType::Normal;
        bool beginGroup = false;
        QAction* action = nullptr;
        QAction* separator = nullptr; // in front; null: none
        QActionGroup* group = nullptr;
        QMenu* menu = nullptr;
        ToolList* below = nullptr; // the menu's
        ToolCombo* combo = nullptr;
        QString picture; // what its icon was made from
    };

    ToolList(QMenu& menu, ToolList& above, std::size_t index); // of a sub-menu
    const std::vector<MenuTool>* Tools() const;                // null: no longer there
    const MenuTool* ToolAt(std::size_t index) const;           // null: the model has another tool there by now
    void Open();
    void Update();
    bool HasForm(const std::vector<MenuTool>& tools) const;
    void Clear();
    void Build(const std::vector<MenuTool>& tools);
    void AddItem(const MenuTool& tool, std::size_t index);
    void MakeCombo(Item& item, std::size_t index);
    void Apply(Item& item, const MenuTool& tool);
    void ApplyPicture(Item& item, const MenuTool& tool) const;
    void ApplyButton(const Item& item, const MenuTool& tool) const;
    void ShowSeparators(const std::vector<MenuTool>& tools);
    void Choose(std::size_t index);
    void ChooseInCombo(std::size_t index, int entry);
    QString ToolTip(const MenuTool& tool) const;

    QWidget& widget_;
    Look look_;
    ToolList* above_ = nullptr;
    std::size_t index_ = 0; // in the list above
    QPointer<taMenuBar> model_;
    QString band_;
    std::vector<Item> items_;
};

} // namespace kestrune

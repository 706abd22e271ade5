#include <help/helpkey.h>

#include <QCoreApplication>
#include <QKeyEvent>
#include <QWidget>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

struct PageOf
{
    const char* widget; // its class
    const char* page;   // empty: none
};

// By class, so that a window need not know of help. The innermost that is named here counts.
constexpr PageOf kPages[] = {
    {"kestrune::FindBar", "find"},
    {"kestrune::TerminalView", ""},
    {"kestrune::EmptyPage", "start"},
    {"kestrune::SessionBar", "sessions"},
    {"QMenu", "menus"},
    {"QMenuBar", "menus"},
    {"QMessageBox", "start"},
    {"kestrune::frmMdiChild", "resume"}, // what has the keyboard there but its terminal is a panel about its line
    {"kestrune::frmMdiParent", "start"},
};

} // namespace

QString HelpPageFor(const QWidget* widget)
{
    for (; widget != nullptr; widget = widget->parentWidget())
        for (const PageOf& row : kPages)
            if (qstrcmp(widget->metaObject()->className(), row.widget) == 0)
                return QString::fromLatin1(row.page);
    return {};
}

HelpKey::HelpKey(std::function<void(const QString&)> show) : show_(std::move(show))
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool HelpKey::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress || !watched->isWidgetType())
        return false;
    const auto* key = static_cast<const QKeyEvent*>(event);
    if (key->key() != Qt::Key_F1 || (key->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return false;
    const QString page = HelpPageFor(static_cast<const QWidget*>(watched));
    if (page.isEmpty())
        return false;
    show_(page);
    return true;
}

} // namespace kestrune

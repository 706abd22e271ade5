#pragma once

// F1: the help page about what has the keyboard. In a session the key is the host's.

#include <QObject>
#include <QString>

#include <functional>

class QWidget;

namespace kestrune {

// The page for a widget, by what it stands in; empty: the key is not for help there.
QString HelpPageFor(const QWidget* widget);

class HelpKey : public QObject
{
    Q_OBJECT

public:
    // Watches the keys of the whole application until it goes.
    explicit HelpKey(std::function<void(const QString& page)> show);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::function<void(const QString&)> show_;
};

} // namespace kestrune

#pragma once

// What the main window shows while no session is open: the few things that one can do, and the files used last.

#include <QStringList>
#include <QWidget>

class QVBoxLayout;

namespace kestrune {

class EmptyPage : public QWidget
{
    Q_OBJECT

public:
    explicit EmptyPage(QWidget* parent = nullptr);
    void SetRecentFiles(const QStringList& shown, const QStringList& fullNames);

signals:
    void CommandWanted(int id);
    void RecentWanted(int index); // from 1

private:
    QVBoxLayout* recent_;
};

} // namespace kestrune

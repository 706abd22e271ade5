#pragma once

// The picture shown while the program starts.

#include <ports/pieces.h>

#include <QElapsedTimer>
#include <QPixmap>
#include <QTimer>
#include <QWidget>

namespace kestrune {

class frmSplash : public QWidget, public SplashPort
{
    Q_OBJECT

public:
    // choice: empty or "yes" for the program's own picture, "no" for none, else a picture file's full path.
    explicit frmSplash(const QString& choice);

    void ShowSplash(double minimumSeconds) override;
    void HideSplash(double fadeSeconds) override;
    void UnloadSplash();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void FadeStep();

    QPixmap picture_;
    bool off_;
    double minimumSeconds_ = 0;
    double fadeSeconds_ = 0;
    QElapsedTimer shown_;
    QElapsedTimer fading_;
    QTimer fade_;
};

} // namespace kestrune

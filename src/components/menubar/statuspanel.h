#pragma once

// One panel of the status line: a picture and a text in a border. A text that does not fit is cut with an ellipsis
// and stands whole in the tooltip.

#include <QIcon>
#include <QString>
#include <QWidget>

namespace kestrune {

class StatusPanel : public QWidget
{
    Q_OBJECT

public:
    enum class Border
    {
        None,
        Inset,
        Raised
    };

    struct Face
    {
        QString text;
        QIcon picture;
        QString toolTip; // of the tool; empty: the text alone
        Qt::Alignment align = Qt::AlignLeft;
        Border border = Border::None;
        bool wraps = false;
        bool lit = true;        // drawn in full colour
        bool separated = false; // a line in front
        bool emphasised = false;
    };

    using QWidget::QWidget;
    void SetFace(const Face& face); // paints only if it differs
    const Face& Shown() const { return face_; }
    int WantedWidth() const; // of everything on it, in pixels
    bool IsCut() const;      // the text does not fit
    int Height() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    int PictureSide() const;
    QRect TextPlace() const;

    Face face_;
    qint64 pictureKey_ = 0;
};

} // namespace kestrune

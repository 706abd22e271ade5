#include <connect/dialingdialog.h>

#include <ports/questions.h>

#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

#include <array>
#include <utility>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

struct PlaceRow
{
    QString DialingPlace::*text;
    const char* name;
    const char* label;
    const char* hint; // in the field while it is empty
    bool digitsOnly;
};
constexpr std::array PlaceRows{
    PlaceRow{&DialingPlace::countryCode, "txCountryCode",
             QT_TRANSLATE_NOOP("kestrune::frmDialingProperties", "Coun&try code:"),
             QT_TRANSLATE_NOOP("kestrune::frmDialingProperties", "not known"), true},
    PlaceRow{&DialingPlace::areaCode, "txAreaCode", QT_TRANSLATE_NOOP("kestrune::frmDialingProperties", "&Area code:"),
             QT_TRANSLATE_NOOP("kestrune::frmDialingProperties", "none"), true},
    PlaceRow{&DialingPlace::outsideLine, "txOutsideLine",
             QT_TRANSLATE_NOOP("kestrune::frmDialingProperties", "For an outside &line dial:"),
             QT_TRANSLATE_NOOP("kestrune::frmDialingProperties", "nothing"), false},
    PlaceRow{&DialingPlace::outsideLineLongDistance, "txOutsideLineLongDistance",
             QT_TRANSLATE_NOOP("kestrune::frmDialingProperties", "The same for calls o&ut of the area:"),
             QT_TRANSLATE_NOOP("kestrune::frmDialingProperties", "the same"), false},
    PlaceRow{&DialingPlace::longDistance, "txLongDistance",
             QT_TRANSLATE_NOOP("kestrune::frmDialingProperties", "Before another area's cod&e:"),
             QT_TRANSLATE_NOOP("kestrune::frmDialingProperties", "nothing"), false},
    PlaceRow{&DialingPlace::international, "txInternational",
             QT_TRANSLATE_NOOP("kestrune::frmDialingProperties", "&Before another country's code:"),
             QT_TRANSLATE_NOOP("kestrune::frmDialingProperties", "nothing"), false},
};

constexpr int LongestPart = 20; // characters

QLabel* MakeLabel(const char* name)
{
    auto* label = new QLabel;
    label->setObjectName(QString::fromLatin1(name));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

} // namespace

frmDialingProperties::frmDialingProperties(DialingForm::Request request, QWidget* owner)
    : QDialog(owner), request_(std::move(request)),
      dialAreaCode_(new QCheckBox(tr("&Dial the area code within the area, too"))), sample_(MakeLabel("lbSample")),
      trouble_(MakeLabel("lbTrouble"))
{
    setWindowTitle(tr("Dialing Properties"));
    auto* rows = new QFormLayout;
    const QString dialled = u'[' + QRegularExpression::escape(request_.dialCharacters) + u"]*"_s;
    for (const PlaceRow& row : PlaceRows) {
        auto* edit = new QLineEdit(request_.place.*row.text);
        edit->setObjectName(QString::fromLatin1(row.name));
        edit->setPlaceholderText(tr(row.hint));
        edit->setMaxLength(LongestPart);
        edit->setValidator(
            new QRegularExpressionValidator(QRegularExpression(row.digitsOnly ? u"[0-9]*"_s : dialled), edit));
        connect(edit, &QLineEdit::textChanged, this, &frmDialingProperties::ShowSample);
        rows->addRow(tr(row.label), edit);
        edits_.push_back(edit);
    }
    dialAreaCode_->setObjectName(u"chkDialAreaCode"_s);
    dialAreaCode_->setChecked(request_.place.dialAreaCode);
    connect(dialAreaCode_, &QCheckBox::toggled, this, &frmDialingProperties::ShowSample);
    rows->addRow(dialAreaCode_);

    auto* what = MakeLabel("lbWhat");
    what->setText(tr("Where does the telephone stand? A comma is a pause, W waits for the dial tone."));
    trouble_->hide();
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &frmDialingProperties::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &frmDialingProperties::reject);
    auto* column = new QVBoxLayout(this);
    column->addWidget(what);
    column->addLayout(rows);
    auto* samples = new QGroupBox(tr("From there is dialled"));
    (new QVBoxLayout(samples))->addWidget(sample_);
    column->addWidget(samples);
    column->addWidget(trouble_);
    column->addWidget(buttons);
    edits_.front()->setFocus();
    ShowSample();
}

DialingPlace frmDialingProperties::Place() const
{
    DialingPlace place;
    for (std::size_t i = 0; i < PlaceRows.size(); ++i)
        place.*PlaceRows[i].text = edits_[i]->text();
    place.dialAreaCode = dialAreaCode_->isChecked();
    return place;
}

void frmDialingProperties::ShowSample() { sample_->setText(request_.sample(Place())); }

void frmDialingProperties::accept()
{
    const QString trouble = request_.save(Place());
    trouble_->setText(trouble);
    trouble_->setVisible(!trouble.isEmpty());
    if (trouble.isEmpty())
        QDialog::accept();
}

DialingDialog::DialingDialog(const Questions& ask, std::function<QWidget*()> mainWindow)
    : ask_(ask), mainWindow_(std::move(mainWindow))
{}

bool DialingDialog::Show(const Request& request)
{
    if (!ask_.HasUser())
        return false;
    QWidget* owner = QWidget::find(static_cast<WId>(request.window));
    frmDialingProperties form(request, owner != nullptr ? owner->window() : mainWindow_());
    form.exec();
    return true;
}

} // namespace kestrune

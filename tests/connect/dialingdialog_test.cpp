// The dialing properties as a person uses them.

#include <connect/dialingdialog.h>
#include <fakes/fakequestions.h>

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;

struct DialingBench
{
    DialingForm::Request Request()
    {
        DialingForm::Request request;
        request.place.countryCode = u"49"_s;
        request.place.outsideLine = u"0,"_s;
        request.dialCharacters = u"0123456789,W*"_s;
        request.sample = [](const DialingPlace& place) {
            return place.outsideLine + u' ' + place.areaCode + (place.dialAreaCode ? u" always"_s : u""_s);
        };
        request.save = [this](const DialingPlace& place) {
            saved.push_back(place);
            return trouble;
        };
        return request;
    }
    std::vector<DialingPlace> saved;
    QString trouble;
};

TEST(DialingDialog, ShowsWhatIsDialledAndKeepsWhatWasTyped)
{
    DialingBench bench;
    frmDialingProperties form(bench.Request(), nullptr);
    form.show();
    const auto* sample = form.findChild<QLabel*>(u"lbSample"_s);
    const auto* trouble = form.findChild<QLabel*>(u"lbTrouble"_s);
    EXPECT_EQ(sample->text(), u"0, "_s);
    EXPECT_EQ(form.focusWidget(), form.findChild<QLineEdit*>(u"txCountryCode"_s));
    QTest::keyClicks(form.findChild<QLineEdit*>(u"txAreaCode"_s), u"3x0 "_s);
    auto* outside = form.findChild<QLineEdit*>(u"txOutsideLine"_s);
    QTest::keyClicks(outside, u"W;\\"_s);
    form.findChild<QCheckBox*>(u"chkDialAreaCode"_s)->click();
    EXPECT_EQ(sample->text(), u"0,W 30 always"_s) << "only what can be dialled is taken";

    bench.trouble = u"The disk is full."_s;
    QTest::keyClick(&form, Qt::Key_Return);
    EXPECT_TRUE(form.isVisible()) << "nothing is lost";
    EXPECT_EQ(trouble->text(), bench.trouble);
    EXPECT_TRUE(trouble->isVisible());
    bench.trouble.clear();
    QTest::keyClick(&form, Qt::Key_Return);
    EXPECT_FALSE(form.isVisible());
    ASSERT_EQ(bench.saved.size(), 2U);
    EXPECT_EQ(bench.saved[1].countryCode, u"49"_s);
    EXPECT_EQ(bench.saved[1].areaCode, u"30"_s);
    EXPECT_EQ(bench.saved[1].outsideLine, u"0,W"_s);
    EXPECT_TRUE(bench.saved[1].dialAreaCode);
}

TEST(DialingDialog, IsShownToAUserOnlyAndCancelLeavesNoTrace)
{
    DialingBench bench;
    FakeQuestions ask;
    ask.hasUser = false;
    QWidget main;
    DialingDialog dialog(ask, [&] { return &main; });
    EXPECT_FALSE(dialog.Show(bench.Request()));
    ask.hasUser = true;
    QTimer::singleShot(0, qApp, [] {
        auto* form = qobject_cast<frmDialingProperties*>(QApplication::activeModalWidget());
        ASSERT_NE(form, nullptr);
        QTest::keyClick(form, Qt::Key_Escape);
    });
    EXPECT_TRUE(dialog.Show(bench.Request()));
    EXPECT_TRUE(bench.saved.empty());
}

} // namespace

} // namespace kestrune

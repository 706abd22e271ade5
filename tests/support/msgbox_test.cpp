#include <fakes/print.h>
#include <support/errhndlr.h>
#include <support/msgboxex.h>
#include <support/qtquestions.h>

#include <QApplication>
#include <QCheckBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWhatsThis>

#include <gtest/gtest.h>

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

struct BoxCase
{
    const char* name;
    int flags;
    QMessageBox::StandardButton press; // NoButton: Escape
    bool tick;
    int result;
};

class MsgBoxTest : public testing::TestWithParam<BoxCase>
{};

TEST_P(MsgBoxTest, GivesThePlatformsAnswer)
{
    const BoxCase& each = GetParam();
    MsgBoxDialog box({u"Text"_s, each.flags, {}, 0}, nullptr);
    box.show();
    ASSERT_EQ(box.checkBox() != nullptr, (each.flags & 128) != 0);
    if (each.tick)
        box.checkBox()->setChecked(true);
    if (each.press == QMessageBox::NoButton)
        QTest::keyClick(&box, Qt::Key_Escape);
    else
        QTest::mouseClick(box.button(each.press), Qt::LeftButton);
    EXPECT_FALSE(box.isVisible());
    EXPECT_EQ(box.Answer(), each.result);
}

TEST(MsgBoxInfo, IsShownAndTheBoxStays)
{
    MsgBoxRequest request{u"Text"_s, 48, {}, 0};
    request.info = u"Check the <port>."_s;
    MsgBoxDialog box(request, nullptr);
    box.show();
    auto* info = box.findChild<QPushButton*>(u"cmdInfo"_s);
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->text(), u"&Info"_s);
    QTest::mouseClick(info, Qt::LeftButton);
    EXPECT_TRUE(box.isVisible());
    const auto shown = QApplication::topLevelWidgets();
    EXPECT_TRUE(std::any_of(shown.begin(), shown.end(), [](const QWidget* widget) {
        return widget->inherits("QWhatsThat") && widget->isVisible();
    }));
    QWhatsThis::hideText();
    QTest::mouseClick(box.button(QMessageBox::Ok), Qt::LeftButton);
    EXPECT_FALSE(box.isVisible());
    EXPECT_EQ(box.Answer(), MsgResult::Ok);
}

INSTANTIATE_TEST_SUITE_P(Cases, MsgBoxTest,
                         testing::Values(BoxCase{"Ok", 48, QMessageBox::Ok, false, 1},
                                         BoxCase{"OkByEscape", 64, QMessageBox::NoButton, false, 1},
                                         BoxCase{"Yes", 52, QMessageBox::Yes, false, 6},
                                         BoxCase{"NoByEscape", 52, QMessageBox::NoButton, false, 7},
                                         BoxCase{"RetryOfTwo", 53, QMessageBox::Retry, false, 4},
                                         BoxCase{"CancelOfTwoByEscape", 53, QMessageBox::NoButton, false, 2},
                                         BoxCase{"CancelOfThreeByEscape", 35, QMessageBox::NoButton, false, 2},
                                         BoxCase{"NoOfThree", 35, QMessageBox::No, false, 7},
                                         BoxCase{"YesToAll", 9 + 32 + 128, QMessageBox::YesToAll, false, 14},
                                         BoxCase{"NoWithTheBoxTicked", 164, QMessageBox::No, true, 7 + 128},
                                         BoxCase{"YesWithTheBoxLeft", 164, QMessageBox::Yes, false, 6},
                                         BoxCase{"EscapeWithTheBoxTicked", 164, QMessageBox::NoButton, true, 7 + 128}),
                         [](const auto& each) { return std::string(each.param.name); });

TEST(MsgBoxDialog, ShowsTextAsItIs)
{
    const MsgBoxDialog box({u"a\r\n<b>bold</b>"_s, 64 | 128, {}, 0}, nullptr);
    EXPECT_EQ(box.text(), u"a\n<b>bold</b>"_s);
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.windowTitle(), u"Kestrune"_s);
    EXPECT_EQ(box.icon(), QMessageBox::Information);
    EXPECT_EQ(box.checkBox()->text(), u"Do not show this &warning again"_s);
}

TEST(QtQuestions, WithNoUserNothingShowsAndTheAnswerDoesNoHarm)
{
    QTemporaryDir folder;
    qputenv("XDG_DATA_HOME", folder.path().toLocal8Bit());
    QtQuestions ask(false, [] { return nullptr; });
    const std::pair<int, int> answers[] = {{48, 1}, {52, 7}, {53, 2}, {35, 2}, {9, 7}};
    for (const auto& [flags, answer] : answers)
        EXPECT_EQ(ask.MsgBox({u"?"_s, flags, {}, 0}), answer) << flags;
    EXPECT_EQ(ask.OpenFile({}), std::nullopt);
    EXPECT_EQ(ask.SaveFile({}), std::nullopt);
    qunsetenv("XDG_DATA_HOME");
}

TEST(QtQuestions, FiltersInTheToolkitsForm)
{
    EXPECT_EQ(NameFilters(u"Kestrune Files (*.orcf,*.cfg)|*.orcf;*.cfg|All Files (*.*)|*.*"_s),
              (QStringList{u"Kestrune Files (*.orcf *.cfg)"_s, u"All Files (*)"_s}));
    EXPECT_EQ(NameFilters({}), QStringList());
}

TEST(ErrHndlrForm, ButtonsGiveTheChoice)
{
    const std::pair<QString, Questions::ErrorChoice> buttons[] = {{u"&Retry"_s, Questions::ErrorChoice::Retry},
                                                                  {u"&Continue"_s, Questions::ErrorChoice::Next},
                                                                  {u"&End program"_s, Questions::ErrorChoice::End}};
    for (const auto& [text, choice] : buttons) {
        frmErrHndlr form(u"Procedure: x\r\n"_s, nullptr);
        form.show();
        EXPECT_EQ(form.windowTitle(), u"Kestrune unanticipated error"_s);
        for (auto* button : form.findChildren<QPushButton*>())
            if (button->text() == text)
                QTest::mouseClick(button, Qt::LeftButton);
        EXPECT_FALSE(form.isVisible()) << text.toStdString();
        EXPECT_EQ(form.Choice(), choice);
    }
}

} // namespace

} // namespace kestrune

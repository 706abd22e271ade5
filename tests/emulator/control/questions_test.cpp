// What a line asks before it can go on, and how the answer gets back to it.

#include <fakes/emulatorbench.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

using Choice = LineAnswer::Choice;
using Kind = LineQuestion::Kind;

struct AskingHost : EmulatorBench
{
    AskingHost()
    {
        control.SetOnLine(true);
        QObject::connect(&control, &ctlEmulator::QuestionWithdrawn, [this] { ++withdrawn; });
    }
    void Ask(Kind kind) { Host().Ask({.id = 7, .kind = kind, .title = {}, .text = u"Who?"_s, .fields = {{}}}); }
    // What a window does that shows the question and leaves it standing.
    void ShowQuestions()
    {
        QObject::connect(&control, &ctlEmulator::CommError, [this](quint32* word, const QString& text) {
            told = text;
            lastWord = std::exchange(*word, 0);
        });
        QObject::connect(&control, &ctlEmulator::SecretsWanted,
                         [](const LineQuestion&, bool* taken) { *taken = true; });
    }
    std::vector<Choice> Answers() const
    {
        std::vector<Choice> choices;
        for (const LineAnswer& answer : Host().answers) {
            EXPECT_EQ(answer.question, 7U);
            choices.push_back(answer.choice);
        }
        return choices;
    }

    QString told;
    quint32 lastWord = 0;
    int withdrawn = 0;
};

TEST(EmulatorQuestions, TrustIsAnErrorWordThatResetAnswers)
{
    struct Case
    {
        Kind kind;
        quint32 word;
        ResetMode mode;
        Choice choice;
    };
    for (const Case& c : {Case{Kind::UnknownHost, 0x50020, ResetMode::HostKeyCancel, Choice::Cancel},
                          Case{Kind::UnknownHost, 0x50020, ResetMode::HostKeyContinue, Choice::Continue},
                          Case{Kind::ChangedHost, 0x50021, ResetMode::HostKeyUpdate, Choice::Update}}) {
        AskingHost host;
        host.ShowQuestions();
        host.Ask(c.kind);
        EXPECT_EQ(host.lastWord, c.word);
        EXPECT_TRUE(host.told.startsWith(u"Who?"_s));
        EXPECT_TRUE(host.told.contains(u" Yes "_s) && host.told.contains(u" No "_s));
        EXPECT_TRUE(host.Answers().empty()) << "it waits";
        host.control.AnswerSecrets(Choice::Continue, {});
        EXPECT_TRUE(host.Answers().empty()) << "that was not the question";
        host.control.Reset(int(c.mode));
        host.control.Reset(int(c.mode)); // a second press finds no question
        EXPECT_EQ(host.Answers(), std::vector{c.choice});
    }
}

TEST(EmulatorQuestions, SecretsReachTheLineThatAsked)
{
    AskingHost host;
    host.ShowQuestions();
    host.Ask(Kind::Secrets);
    host.control.Reset(int(ResetMode::HostKeyUpdate));
    EXPECT_TRUE(host.Answers().empty()) << "trust is not what it asked for";
    std::vector<Secret> values;
    values.push_back(Secret::From(u"pässword"_s));
    host.control.AnswerSecrets(Choice::Update, std::move(values));
    ASSERT_EQ(host.Answers(), std::vector{Choice::Update});
    EXPECT_EQ(host.Host().answers[0].values.at(0).Utf8(), "p\xc3\xa4ssword");
}

TEST(EmulatorQuestions, WithNobodyToAskTheLineIsToldSo)
{
    for (const Kind kind : {Kind::UnknownHost, Kind::ChangedHost, Kind::Secrets}) {
        AskingHost unheard; // a user, but no window that takes the question
        unheard.Ask(kind);
        EXPECT_EQ(unheard.Answers(), std::vector{Choice::Nobody});

        AskingHost alone;
        alone.ask.hasUser = false;
        alone.ShowQuestions();
        alone.Ask(kind);
        EXPECT_EQ(alone.Answers(), std::vector{Choice::Nobody});
        EXPECT_EQ(alone.told, QString()) << "no panel for nobody";
    }
}

TEST(EmulatorQuestions, TheEndOfTheLineWithdrawsItsQuestion)
{
    AskingHost host;
    host.ShowQuestions();
    host.Ask(Kind::UnknownHost);
    host.control.Reset(int(ResetMode::Line)); // the user tries again instead
    host.Host().Drop();
    EXPECT_EQ(host.withdrawn, 1);
    host.control.Reset(int(ResetMode::HostKeyUpdate));
    EXPECT_TRUE(host.Answers().empty()) << "the new line has asked nothing";
}

} // namespace

} // namespace kestrune

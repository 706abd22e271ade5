#include "linerig.h"

#include <fakes/fakeclock.h>
#include <platform/serialport.h>

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;

TEST(CommLibrary, KnowsWhichDevicesAreHere)
{
    FakeClock clock;
    const CommLibrary with(clock, u"Local Shell"_s);
    const CommLibrary without(clock, u" "_s);
    std::vector<int> present, presentWithout;
    for (int device = -1; device <= 8; ++device) {
        if (with.ORCommExist(device))
            present.push_back(device);
        if (without.ORCommExist(device))
            presentWithout.push_back(device);
    }
    EXPECT_EQ(present, (std::vector<int>{1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(presentWithout, (std::vector<int>{1, 2, 3, 4, 5, 7}));
}

TEST(CommLibrary, NamesDevicesIntoABufferOfGivenLength)
{
    FakeClock clock;
    const CommLibrary library(clock, u"anything"_s);
    struct Case
    {
        int device, room;
        QString text;
    };
    for (const Case& c : {Case{6, 20, u"Local Shell"_s}, Case{6, 5, u"Local"_s}, Case{3, 20, u"Telnet"_s},
                          Case{5, 20, u"SSH"_s}, Case{99, 20, u""_s}, Case{6, -1, u""_s}}) {
        int length = c.room;
        QString text = u"before"_s;
        library.ORCommID(c.device, length, text);
        EXPECT_EQ(text, c.text);
        EXPECT_EQ(length, c.text.size());
    }
}

TEST(CommLibrary, MakesNoLineForADeviceThatIsNotHere)
{
    for (const Device device : {Device::None, static_cast<Device>(99)}) {
        LineOptions options;
        options.device = device;
        EXPECT_EQ(LineRig(options).line, nullptr);
    }
}

TEST(CommLibrary, ListsSerialPortsByNumber)
{
    FakeClock clock;
    const CommLibrary library(clock, {});
    QString list;
    const int count = library.ORCommList(1, 9, list, 4096);
    EXPECT_TRUE(list.endsWith(QString(2, QChar(0))));
    const QStringList names = list.split(QChar(0), Qt::SkipEmptyParts);
    EXPECT_EQ(names.size(), count);
    for (const QString& name : names) {
        EXPECT_TRUE(name.startsWith(u"Port "_s)) << name.toStdString();
        const int number = name.section(u' ', 1, 1).chopped(1).toInt();
        EXPECT_TRUE(name.endsWith(QString::fromStdString(SerialPortPath(number)).section(u'/', -1)));
    }
    EXPECT_EQ(library.ORCommList(4, 9, list, 256), 1);
    EXPECT_EQ(list, u"Standard modem"_s + QString(2, QChar(0)));
    EXPECT_EQ(library.ORCommList(3, 9, list, 256), 0);
    EXPECT_EQ(list, QString(2, QChar(0)));
    EXPECT_EQ(library.ORCommList(4, 9, list, 15), 0) << "no room for the two NULs";
    EXPECT_EQ(list, QString(2, QChar(0)));
    EXPECT_EQ(library.ORCommList(4, 9, list, 16), 1);

    EXPECT_EQ(SerialPortPath(1), "/dev/ttyS0");
    EXPECT_EQ(SerialPortPath(33), "/dev/ttyUSB0");
    EXPECT_EQ(SerialPortPath(96), "/dev/ttyACM31");
    EXPECT_EQ(SerialPortPath(127), "/dev/ttyAMA30");
    for (const int none : {-1, 0, 128})
        EXPECT_EQ(SerialPortPath(none), "");
}

TEST(CommLibrary, TranslatesNumbersByTheUsersLocation)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"dialing.ini"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[Location]\nCountryCode=1\nAreaCode=212\nOutsideLine=\"9,\"\nLongDistance=1\n");
    file.close();
    FakeClock clock;
    const CommLibrary library(clock, {}, folder.path());
    QString text;
    EXPECT_EQ(library.ORDialLocationInfo(0, text, 256), 1);
    EXPECT_EQ(text, u"1"_s);
    EXPECT_EQ(library.ORDialLocationInfo(1, text, 256), 3);
    EXPECT_EQ(text, u"212"_s);
    EXPECT_EQ(library.ORDialLocationInfo(1, text, 3), 2) << "room for the NUL";
    EXPECT_EQ(library.ORDialLocationInfo(2, text, 256), 0);
    QString dialable, displayed;
    EXPECT_EQ(library.ORTranslateNumber(u"+1 (212) 5550100"_s, 0, dialable, displayed, 128), 1);
    EXPECT_EQ(dialable, u"9,5550100"_s);
    EXPECT_EQ(displayed, u"9, 5550100"_s);
}

// The user at it: looks, changes, presses OK.
class TypingUser : public DialingForm
{
public:
    bool Show(const Request& request) override
    {
        shown = request;
        if (change)
            trouble = request.save(*change);
        return isThere;
    }
    bool isThere = true;
    std::optional<DialingPlace> change;
    Request shown;
    QString trouble;
};

TEST(CommLibrary, LetsTheUserChangeTheDialingLocation)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"kestrune/dialing.ini"_s));
    FakeClock clock;
    TypingUser user;
    EXPECT_FALSE(CommLibrary(clock, {}, folder.path()).ORDialingProperties(1)) << "no form";
    const CommLibrary library(clock, {}, folder.filePath(u"kestrune"_s), {}, &user);
    user.isThere = false;
    EXPECT_FALSE(library.ORDialingProperties(1));
    user.isThere = true;
    EXPECT_TRUE(library.ORDialingProperties(77));
    EXPECT_EQ(user.shown.window, 77U);
    EXPECT_EQ(user.shown.place, DialingPlace());
    EXPECT_FALSE(file.exists()) << "nothing was changed";
    EXPECT_EQ(user.shown.sample({}), u"Numbers are dialled as they are written."_s);

    DialingPlace office;
    office.countryCode = u"1"_s;
    office.areaCode = u" 212 "_s;
    office.outsideLine = u"9,"_s;
    office.longDistance = u"1"_s;
    office.international = u"011"_s;
    office.dialAreaCode = true;
    user.change = office;
    EXPECT_TRUE(library.ORDialingProperties(0));
    EXPECT_EQ(user.trouble, QString());
    EXPECT_EQ(user.shown.sample(office), u"In your area: 9, (212) 5550100\n"
                                         "Elsewhere in your country: 9, 1 (305) 5550100\n"
                                         "In another country: 9, 011 44 (20) 5550100"_s);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite | QIODevice::Append));
    file.write("Note=keep this\n");
    file.close();
    user.change->outsideLine.clear();
    EXPECT_TRUE(library.ORDialingProperties(0));
    EXPECT_EQ(user.shown.place.areaCode, u"212"_s);
    EXPECT_TRUE(user.shown.place.dialAreaCode);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray kept = file.readAll();
    EXPECT_TRUE(kept.contains("Note=keep this")) << kept.data();
    EXPECT_FALSE(kept.contains("OutsideLine")) << kept.data();
    QString text;
    EXPECT_EQ(library.ORDialLocationInfo(1, text, 256), 3);

    const QString inTheWay = folder.filePath(u"file"_s);
    ASSERT_TRUE(QFile(inTheWay).open(QIODevice::WriteOnly));
    EXPECT_TRUE(CommLibrary(clock, {}, inTheWay, {}, &user).ORDialingProperties(0));
    EXPECT_TRUE(user.trouble.contains(inTheWay)) << "what cannot be kept is said: " << user.trouble.toStdString();
}

TEST(CommLibrary, TranslatesNumbersWithoutALocation)
{
    FakeClock clock;
    const CommLibrary library(clock, {});
    struct Case
    {
        QString number, dialable;
        int result;
    };
    for (const Case& c :
         {Case{u"+1 (212) 555-0100"_s, u"12125550100"_s, 1}, Case{u" 9,W5550100# "_s, u"9,W5550100#"_s, 1},
          Case{u"()"_s, {}, 0}, Case{QString(128, u'1'), {}, 0}}) {
        QString dialable, displayed;
        EXPECT_EQ(library.ORTranslateNumber(c.number, 0, dialable, displayed, 128), c.result);
        EXPECT_EQ(dialable, c.dialable);
        EXPECT_EQ(displayed, c.result ? c.number.trimmed() : QString());
    }
}

} // namespace

} // namespace kestrune

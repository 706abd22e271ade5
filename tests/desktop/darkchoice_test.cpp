// The desktop's choice of dark or light colours, told by a portal on a bus of the test's own.

#include <desktop/darkchoice.h>
#include <desktop/darkpalette.h>
#include <fakes/ownbus.h>

#include <QGuiApplication>
#include <QThread>

#include <vector>

namespace kestrune {

// The part of a desktop portal that keeps its settings.
class Portal : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    Portal(const QDBusConnection& bus, uint choice) : bus_(bus), choice_(choice)
    {
        EXPECT_TRUE(bus_.registerObject(u"/org/freedesktop/portal/desktop"_s, this,
                                        QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
        EXPECT_TRUE(bus_.registerService(u"org.freedesktop.portal.Desktop"_s));
    }
    void Choose(uint choice)
    {
        emit SettingChanged(u"org.freedesktop.appearance"_s, u"contrast"_s, QDBusVariant(1U));
        emit SettingChanged(u"org.freedesktop.appearance"_s, u"color-scheme"_s, QDBusVariant(choice));
    }

public slots:
    // The answer is a variant in a variant.
    QDBusVariant Read(const QString& group, const QString& key) const
    {
        const bool known = group == u"org.freedesktop.appearance"_s && key == u"color-scheme"_s;
        return QDBusVariant(QVariant::fromValue(QDBusVariant(known ? QVariant(choice_) : QVariant(u"?"_s))));
    }

signals:
    void SettingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    QDBusConnection bus_;
    uint choice_;
};

namespace {

TEST(DarkChoice, OfAPortalThatRunsIsKnownAtOnce)
{
    OwnBus bus;
    QThread elsewhere;
    Portal portal(bus.Connection(), 1);
    portal.moveToThread(&elsewhere);
    elsewhere.start();
    std::vector<bool> told;
    const DarkChoice choice(bus.Connection(), [&told](bool dark) { told.push_back(dark); });
    EXPECT_EQ(told, std::vector{true});
    elsewhere.quit();
    elsewhere.wait();
}

TEST(DarkChoice, OfOneThatIsSlowIsToldFromTheEventLoopAndSoIsEveryChange)
{
    OwnBus bus;
    Portal portal(bus.Connection(), 1); // cannot answer before this thread's loop runs
    std::vector<bool> told;
    const DarkChoice choice(bus.Connection(), [&told](bool dark) { told.push_back(dark); });
    EXPECT_TRUE(told.empty());
    EXPECT_TRUE(Until([&] { return told == std::vector{true}; }));
    portal.Choose(2);
    EXPECT_TRUE(Until([&] { return told == std::vector{true, false}; })) << testing::PrintToString(told);
    portal.Choose(1);
    EXPECT_TRUE(Until([&] { return told == std::vector{true, false, true}; }));
}

TEST(DarkChoice, WithoutABusOrAPortalNothingIsToldUntilThereIsOne)
{
    const DarkChoice busless(QDBusConnection(u"no such connection"_s), [](bool) { ADD_FAILURE(); });
    OwnBus bus;
    std::vector<bool> told;
    const DarkChoice choice(bus.Connection(), [&told](bool dark) { told.push_back(dark); });
    EXPECT_FALSE(bus.Has(u"org.freedesktop.portal.Desktop"_s));
    Portal late(bus.Connection(), 0);
    late.Choose(1);
    EXPECT_TRUE(Until([&] { return !told.empty(); }));
    EXPECT_EQ(told, std::vector{true});
}

TEST(DarkWindows, OnlyWhereTheStyleIsNotDarkItself)
{
    const auto paper = [] { return QGuiApplication::palette().color(QPalette::Window); };
    const QColor usual = paper();
    {
        DarkWindows windows;
        windows.Follow(true);
        EXPECT_EQ(paper(), DarkPalette().color(QPalette::Window));
        windows.Follow(false);
        EXPECT_EQ(paper(), usual);
        windows.Follow(false);
        EXPECT_EQ(paper(), usual);
    }
    QPalette own(Qt::black);
    QGuiApplication::setPalette(own);
    DarkWindows windows;
    windows.Follow(true);
    EXPECT_EQ(paper(), QColor(Qt::black));
    windows.Follow(false);
    EXPECT_EQ(paper(), QColor(Qt::black));
    QGuiApplication::setPalette(QPalette());
}

} // namespace

} // namespace kestrune

#include "darkchoice_test.moc"

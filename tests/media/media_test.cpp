// Sound files and tunes as samples, pictures that may be shown, and a machine without a sound device.

#include <fakes/failures.h>
#include <fakes/print.h>
#include <media/notes.h>
#include <media/systemmedia.h>
#include <media/wavefile.h>
#include <platform/eventclock.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// --- wave files

QByteArray Number(quint32 value, int bytes)
{
    QByteArray out;
    for (int i = 0; i < bytes; ++i)
        out += char(value >> 8 * i);
    return out;
}

struct WaveCase
{
    const char* name;
    quint32 kind, channels, rate, bits;
    QByteArray data;
    std::vector<int16_t> samples; // empty: refused
};

QByteArray WaveOf(const WaveCase& c)
{
    const QByteArray format = Number(c.kind, 2) + Number(c.channels, 2) + Number(c.rate, 4) + QByteArray(6, 0) +
                              Number(c.bits, 2) + QByteArray(8, 0) + Number(1, 2);
    const QByteArray odd = "LIST" + Number(3, 4) + "abc" + QByteArray(1, 0);
    return "RIFF" + QByteArray(4, 0) + "WAVEfmt " + Number(quint32(format.size()), 4) + format + odd + "data" +
           Number(quint32(c.data.size()), 4) + c.data;
}

class WaveFiles : public testing::TestWithParam<WaveCase>
{};

TEST_P(WaveFiles, AreRead)
{
    const WaveCase& c = GetParam();
    const auto sound = SoundOfWave(WaveOf(c));
    ASSERT_EQ(sound.has_value(), !c.samples.empty());
    if (!sound)
        return;
    EXPECT_EQ(sound->samples, c.samples);
    EXPECT_EQ(sound->rate, int(c.rate));
    EXPECT_EQ(sound->channels, int(c.channels));
}

INSTANTIATE_TEST_SUITE_P(
    All, WaveFiles,
    testing::Values(WaveCase{"Bytes", 1, 1, 8000, 8, QByteArray("\x80\x00\xFF", 3), {0, -32768, 32512}},
                    WaveCase{"Stereo", 1, 2, 44100, 16, QByteArray("\x01\x00\xFF\xFF", 4), {1, -1}},
                    WaveCase{"ThreeBytes", 1, 1, 48000, 24, QByteArray("\x55\x02\x01", 3), {0x102}},
                    WaveCase{"Extensible", 0xFFFE, 1, 8000, 16, QByteArray("\x02\x00", 2), {2}},
                    WaveCase{"HalfAFrameIsLeftOut", 1, 2, 8000, 16, QByteArray("\x01\x00\x02\x00\x03\x00", 6), {1, 2}},
                    WaveCase{"Compressed", 2, 1, 8000, 16, QByteArray(8, 1), {}},
                    WaveCase{"NoChannel", 1, 0, 8000, 16, QByteArray(8, 1), {}},
                    WaveCase{"NoRate", 1, 1, 0, 16, QByteArray(8, 1), {}},
                    WaveCase{"TooWide", 1, 1, 8000, 64, QByteArray(8, 1), {}},
                    WaveCase{"NoWidth", 1, 1, 8000, 4, QByteArray(8, 1), {}}),
    [](const auto& test) { return test.param.name; });

TEST(WaveFile, CutOffAnywhereIsShorterOrNone)
{
    const QByteArray whole = WaveOf({"", 1, 1, 8000, 16, QByteArray(40, 7), {}});
    for (qsizetype length = 0; length < whole.size(); ++length)
        if (const auto sound = SoundOfWave(whole.left(length))) {
            EXPECT_LT(sound->samples.size(), 20U) << length;
        }
    QByteArray lies = whole;
    lies.replace(lies.indexOf("data") + 4, 4, QByteArray(4, char(0xFF)));
    const auto sound = SoundOfWave(lies);
    ASSERT_TRUE(sound);
    EXPECT_EQ(sound->samples.size(), 20U);
}

// --- notes

TEST(Notes, AreTones)
{
    const auto tones = TonesOf(u"t60 l8 o4 A a4 A8. > a < r2 c# d-"_s);
    ASSERT_TRUE(tones);
    ASSERT_EQ(tones->size(), 7U);
    const std::vector<Tone> expected{{440, 0.5}, {440, 1},      {440, 0.75},  {880, 0.5},
                                     {0, 2},     {277.18, 0.5}, {277.18, 0.5}};
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_NEAR((*tones)[i].hertz, expected[i].hertz, 0.01) << i;
        EXPECT_DOUBLE_EQ((*tones)[i].seconds, expected[i].seconds) << i;
    }
    for (const auto& wrong : {u"H"_s, u"O9"_s, u"T"_s, u"T20"_s, u"L65"_s, u"C0"_s, u"Ä"_s, u"#"_s})
        EXPECT_FALSE(TonesOf(wrong)) << wrong.toStdString();
}

TEST(Notes, SoundAsLongAsTheyAreAndNeverTooLong)
{
    const Sound sound = SoundOfTones({{440, 0.5}, {0, 0.25}});
    EXPECT_NEAR(double(sound.samples.size()) / sound.rate, 0.75, 0.001);
    EXPECT_EQ(sound.samples.front(), 0); // no click
    const auto tones = TonesOf(u"T32 L1"_s + u"C"_s.repeated(10'000));
    ASSERT_TRUE(tones);
    double length = 0;
    for (const Tone& tone : *tones)
        length += tone.seconds;
    EXPECT_LE(length, LongestTune);
    EXPECT_GT(length, LongestTune - 8);
}

// --- this machine

struct MediaBench
{
    MediaBench() { qputenv("ALSA_CONFIG_PATH", "/dev/null"); } // no device, whatever the machine has

    QString File(const QString& name, const QByteArray& content) const
    {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }

    QTemporaryDir folder;
    EventClock clock;
    QStringList log;
    SystemMedia media{clock, [this](const QString& line) { log << line; }};
};

TEST(SystemMedia, WithoutASoundDeviceTheLogSaysSoOnce)
{
    MediaBench bench;
    const QString wave = bench.File(u"a.wav"_s, WaveOf({"", 1, 1, 8000, 16, QByteArray(40, 7), {}}));
    bench.media.PlayWave(wave);
    QElapsedTimer since;
    since.start();
    while (bench.log.isEmpty() && since.elapsed() < 20'000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    ASSERT_EQ(bench.log.size(), 1);
    bench.media.PlayNotes(u"L64 C"_s);
    QCoreApplication::processEvents();
    EXPECT_EQ(bench.log.size(), 1);
}

TEST(SystemMedia, SaysWhatIsWrongWithAFile)
{
    MediaBench bench;
    const QString text = bench.File(u"text.wav"_s, "no sound at all");
    EXPECT_EQ(FailureNumber([&] { bench.media.PlayWave(text); }), int(ErrorNumber::InvalidCall));
    EXPECT_EQ(FailureNumber([&] { bench.media.PlayWave(u"/no/such.wav"_s); }), int(ErrorNumber::FileNotFound));
    EXPECT_EQ(FailureNumber([&] { bench.media.PlayNotes(u"X"_s); }), int(ErrorNumber::InvalidCall));
    EXPECT_EQ(FailureNumber([&] { bench.media.CheckPicture(text); }), int(ErrorNumber::InvalidCall));
    EXPECT_EQ(FailureNumber([&] { bench.media.CheckPicture(u"/no/such.png"_s); }), int(ErrorNumber::FileNotFound));
    const QString huge = bench.File(u"huge.pgm"_s, "P5 60000 60000 255 ");
    EXPECT_EQ(FailureNumber([&] { bench.media.CheckPicture(huge); }), int(ErrorNumber::InvalidCall));
    const QString good = bench.folder.filePath(u"good.png"_s);
    QImage(4, 4, QImage::Format_RGB32).save(good);
    EXPECT_EQ(FailureNumber([&] { bench.media.CheckPicture(good); }), 0);
}

} // namespace

} // namespace kestrune

// Switching among many sessions in the real main window, from the call to the last pixel in memory. A frame of a
// usual display lasts 16 ms.

#include <app/formbench.h>

#include <QApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

static void Print(const char* what, std::vector<double>& times)
{
    std::sort(times.begin(), times.end());
    std::printf("%s: median %.1f ms, 95 of 100 within %.1f ms, worst %.1f ms\n", what, times[times.size() / 2],
                times[times.size() * 95 / 100], times.back());
}

int main(int argc, char** argv)
{
    using namespace kestrune;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    constexpr int sessions = 100, rounds = 3, steps = 100;
    FormBench bench;
    bench.window->resize(1280, 860);
    std::vector<std::shared_ptr<clsSession>> all;
    all.reserve(sessions);
    for (int i = 0; i < sessions; ++i)
        all.push_back(bench.Open(QStringLiteral("host %1.orcf").arg(i + 1)));
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round)
        for (std::size_t i = 0; i < all.size(); ++i) {
            QElapsedTimer timer;
            timer.start();
            all[(i * 37) % all.size()]->Activate(); // neighbours in time are none in the row
            bench.Settle();
            times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        }
    Print("switching among 100 sessions", times);
    times.clear();
    for (int step = 0; step < steps; ++step) { // as somebody drags the edge of the window
        QElapsedTimer timer;
        timer.start();
        bench.window->resize(1280 - 3 * step, 860 - 2 * step);
        bench.Settle();
        times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    Print("a step of a resize with 100 sessions", times);
    return 0;
}

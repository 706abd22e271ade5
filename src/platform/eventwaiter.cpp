#include "eventwaiter.h"

#include <QEventLoop>

namespace kestrune {

namespace {

class LoopWait : public Waiter::Wait
{
public:
    void Run() override
    {
        if (!ended_)
            loop_.exec();
    }
    void End() override
    {
        ended_ = true;
        loop_.quit();
    }

private:
    QEventLoop loop_;
    bool ended_ = false;
};

} // namespace

std::shared_ptr<Waiter::Wait> EventWaiter::Begin() { return std::make_shared<LoopWait>(); }

} // namespace kestrune

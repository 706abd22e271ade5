#include "backgroundfiles.h"

#include "processors.h"

#include <dispatch/failure.h>

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace kestrune {

namespace {

QString OutputTr(const char* text) { return QCoreApplication::translate("OutputFile", text); }

class BackgroundFile : public OutputFile
{
public:
    BackgroundFile(Clock& clock, std::unique_ptr<QFile> file, OutputFiles::Failed failed)
        : clock_(clock), file_(std::move(file)), wasEmpty_(file_->size() == 0),
          failed_(std::make_shared<OutputFiles::Failed>(std::move(failed))), worker_([this] { Work(); })
    {}
    ~BackgroundFile() override { End(); }

    bool WasEmpty() const override { return wasEmpty_; }

    void Write(QByteArray bytes) override
    {
        const std::scoped_lock lock(mutex_);
        if (!error_.isEmpty() || ending_)
            return;
        queued_ += bytes.size();
        queue_.push_back(std::move(bytes));
        if (queued_ > BackgroundFiles::MaxQueued)
            Fail(OutputTr("The disk is too slow."));
        wake_.notify_one();
    }

    QString Close() override
    {
        {
            const std::scoped_lock lock(mutex_);
            failed_.reset();
        }
        End();
        return error_;
    }

private:
    void End()
    {
        if (!worker_.joinable())
            return;
        {
            const std::scoped_lock lock(mutex_);
            ending_ = true;
        }
        wake_.notify_one();
        worker_.join();
    }

    void Work()
    {
        GiveBackProcessors();
        std::unique_lock lock(mutex_);
        for (;;) {
            wake_.wait(lock, [this] { return ending_ || !queue_.empty(); });
            const auto blocks = std::exchange(queue_, {});
            if (blocks.empty())
                break;
            lock.unlock();
            QString why;
            qsizetype written = 0;
            for (const QByteArray& block : blocks) {
                if (why.isEmpty() && file_->write(block) != block.size())
                    why = file_->errorString();
                written += block.size();
            }
            lock.lock();
            queued_ -= written;
            if (!why.isEmpty())
                Fail(why);
        }
        file_->close();
    }

    void Fail(const QString& why) // with the lock held
    {
        if (!error_.isEmpty())
            return;
        error_ = why;
        queue_.clear();
        clock_.Post([told = std::weak_ptr(failed_), why] {
            if (const auto failed = told.lock())
                (*failed)(why);
        });
    }

    Clock& clock_;
    const std::unique_ptr<QFile> file_; // the worker's once it runs
    const bool wasEmpty_;
    std::shared_ptr<OutputFiles::Failed> failed_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::vector<QByteArray> queue_;
    qsizetype queued_ = 0;
    QString error_;
    bool ending_ = false;
    std::thread worker_; // last: it uses all of the above
};

QIODevice::OpenMode OpenModeOf(OutputFiles::Mode mode)
{
    // Unbuffered: what was written is in the file whatever happens to us.
    const QIODevice::OpenMode writing = QIODevice::WriteOnly | QIODevice::Unbuffered;
    switch (mode) {
    case OutputFiles::Mode::New:
        return writing | QIODevice::NewOnly;
    case OutputFiles::Mode::Replace:
        return writing | QIODevice::Truncate;
    case OutputFiles::Mode::Append:
        break;
    }
    return writing | QIODevice::Append;
}

} // namespace

std::unique_ptr<OutputFile> BackgroundFiles::Open(const QString& path, Mode mode, Failed failed)
{
    auto file = std::make_unique<QFile>(path);
    if (!file->open(OpenModeOf(mode))) {
        const bool exists = mode == Mode::New && QFileInfo::exists(path);
        const QString why = exists ? OutputTr("The file exists.") : file->errorString();
        throw Failure(exists ? ErrorNumber::FileExists : ErrorNumber::PathAccess,
                      OutputTr("%1 cannot be written: %2").arg(path, why), QStringLiteral("OutputFile"));
    }
    return std::make_unique<BackgroundFile>(clock_, std::move(file), std::move(failed));
}

} // namespace kestrune

#pragma once

// Output files that a test can read, and disks that fill up.

#include <dispatch/failure.h>
#include <ports/clock.h>
#include <ports/outputfiles.h>

#include <QMap>

#include <limits>
#include <memory>
#include <utility>

namespace kestrune {

class MemoryOutputFiles : public OutputFiles
{
public:
    explicit MemoryOutputFiles(Clock& clock) : clock_(clock) {}

    std::unique_ptr<OutputFile> Open(const QString& path, Mode mode, Failed failed) override
    {
        if (readOnly || path.isEmpty())
            throw Failure(ErrorNumber::PathAccess, path + QStringLiteral(" cannot be written"));
        if (mode == Mode::New && files.contains(path))
            throw Failure(ErrorNumber::FileExists, path + QStringLiteral(" exists"));
        if (mode != Mode::Append)
            files[path].clear();
        return std::make_unique<File>(*this, path, std::move(failed));
    }

    QMap<QString, QByteArray> files;
    bool readOnly = false;
    qsizetype room = std::numeric_limits<qsizetype>::max(); // bytes until the disk is full

private:
    struct File : OutputFile
    {
        File(MemoryOutputFiles& o, QString p, Failed f)
            : owner(o), path(std::move(p)), failed(std::make_shared<Failed>(std::move(f))),
              wasEmpty(owner.files[path].isEmpty())
        {}
        bool WasEmpty() const override { return wasEmpty; }
        void Write(QByteArray bytes) override
        {
            if (!error.isEmpty())
                return;
            owner.files[path] += bytes.left(owner.room);
            if (bytes.size() > owner.room) {
                error = QStringLiteral("No space left on device");
                owner.clock_.Post([told = std::weak_ptr(failed), why = error] {
                    if (const auto alive = told.lock())
                        (*alive)(why);
                });
            }
            owner.room -= std::min(owner.room, bytes.size());
        }
        QString Close() override
        {
            failed.reset();
            return error;
        }
        MemoryOutputFiles& owner;
        QString path;
        std::shared_ptr<Failed> failed;
        bool wasEmpty;
        QString error;
    };

    Clock& clock_;
};

} // namespace kestrune

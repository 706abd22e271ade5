#pragma once

// A user who answers from a list and whose boxes are kept for the test to read. Running out of answers is a
// test's mistake: the box then gets Cancel and is marked as unexpected.

#include <ports/questions.h>

#include <deque>
#include <utility>
#include <vector>

namespace kestrune {

class FakeQuestions : public Questions
{
public:
    bool HasUser() const override { return hasUser; }

    int MsgBox(const MsgBoxRequest& request) override
    {
        boxes.push_back(request);
        if (answers.empty()) {
            const bool onlyOk = (request.flags & 15) == MsgFlag::Ok;
            unexpected += onlyOk ? 0 : 1;
            return onlyOk ? MsgResult::Ok : MsgResult::Cancel;
        }
        return Take(answers);
    }
    std::optional<QString> OpenFile(const FileDialogRequest& request) override
    {
        openRequests.push_back(request);
        return files.empty() ? std::nullopt : Take(files);
    }
    std::optional<QString> SaveFile(const FileDialogRequest& request) override
    {
        saveRequests.push_back(request);
        return files.empty() ? std::nullopt : Take(files);
    }
    void Beep() override { ++beeps; }
    void Hourglass(bool on) override { hourglass += on ? 1 : -1; }
    ErrorChoice ShowError(const QString& report) override
    {
        reports.push_back(report);
        return errorChoice;
    }

    bool hasUser = true;
    std::deque<int> answers;
    std::deque<std::optional<QString>> files;
    ErrorChoice errorChoice = ErrorChoice::Next;
    std::vector<MsgBoxRequest> boxes;
    std::vector<FileDialogRequest> openRequests, saveRequests;
    std::vector<QString> reports;
    int unexpected = 0;
    int beeps = 0;
    int hourglass = 0;

private:
    template <typename T>
    static T Take(std::deque<T>& from)
    {
        T value = std::move(from.front());
        from.pop_front();
        return value;
    }
};

} // namespace kestrune

#pragma once

#include <unistd.h>

#include <utility>

namespace kestrune {

// Owns a descriptor of the system.
class FileDescriptor
{
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&&) = delete;
    ~FileDescriptor()
    {
        if (number_ >= 0)
            ::close(number_);
    }

    explicit operator bool() const { return number_ >= 0; }
    int Number() const { return number_; }
    int Release() { return std::exchange(number_, -1); }

private:
    int number_ = -1;
};

} // namespace kestrune

#pragma once

// A password or passphrase in UTF-8 that leaves nothing behind: it is moved, never copied, and its memory is
// overwritten when it goes.

#include <QString>

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

namespace kestrune {

class Secret
{
public:
    Secret() = default;
    explicit Secret(std::string_view utf8) : bytes_(std::make_unique<char[]>(utf8.size() + 1)), size_(utf8.size())
    {
        std::copy(utf8.begin(), utf8.end(), bytes_.get());
    }
    // The text's own memory, and that of its other copies, is the caller's affair.
    static Secret From(const QString& text)
    {
        QByteArray utf8 = text.toUtf8();
        Secret secret({utf8.constData(), static_cast<std::size_t>(utf8.size())});
        Wipe(utf8.data(), static_cast<std::size_t>(utf8.size()));
        return secret;
    }
    ~Secret() { Wipe(bytes_.get(), size_); }
    Secret(Secret&& other) noexcept : bytes_(std::move(other.bytes_)), size_(std::exchange(other.size_, 0)) {}
    Secret& operator=(Secret&& other) noexcept
    {
        std::swap(bytes_, other.bytes_);
        std::swap(size_, other.size_);
        return *this;
    }

    bool IsEmpty() const { return size_ == 0; }
    std::string_view Utf8() const { return {bytes_.get(), size_}; }
    const char* CString() const { return bytes_ ? bytes_.get() : ""; } // ends with a NUL
    Secret Copy() const { return Secret(Utf8()); }

    // Through volatile, so that the compiler does not leave out stores that nobody reads.
    static void Wipe(void* memory, std::size_t size)
    {
        auto* byte = static_cast<volatile unsigned char*>(memory);
        for (std::size_t i = 0; i < size; ++i)
            byte[i] = 0;
    }

private:
    std::unique_ptr<char[]> bytes_;
    std::size_t size_ = 0;
};

} // namespace kestrune

#include "orxfile.h"

#include "textfile.h"

#include <platform/nativefiles.h>

#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cstring>

namespace kestrune::textfile {

namespace {

constexpr qint64 kBlock = 1 << 16;

struct NumberRow
{
    std::int32_t number;
    TextEncoding encoding;
};

// The first row of an encoding gives its number; the byte order of UTF-16 has no number of its own.
constexpr std::array kNumbers = {
    NumberRow{OrxAnsi, TextEncoding::Ansi},
    NumberRow{OrxUtf16, TextEncoding::Utf16LeMark},
    NumberRow{OrxUtf8, TextEncoding::Utf8Mark},
    NumberRow{OrxUtf16 + OrxNoMark, TextEncoding::Utf16Le},
    NumberRow{OrxUtf8 + OrxNoMark, TextEncoding::Utf8},
    NumberRow{OrxAnsi + OrxNoMark, TextEncoding::Ansi},
    NumberRow{OrxUtf16, TextEncoding::Utf16BeMark},
    NumberRow{OrxUtf16 + OrxNoMark, TextEncoding::Utf16Be},
};

QStringConverter::Encoding ConverterOf(TextEncoding encoding)
{
    if (!IsUtf16(encoding))
        return QStringConverter::Utf8;
    const bool big = encoding == TextEncoding::Utf16Be || encoding == TextEncoding::Utf16BeMark;
    return big ? QStringConverter::Utf16BE : QStringConverter::Utf16LE;
}

} // namespace

bool OrxFile::Open(std::uint32_t access, std::uint32_t share, std::uint32_t disposition)
{
    const QFileInfo info(file_.fileName());
    if (info.exists() && !info.isFile()) // a pipe would hold the program up
        return false;
    QIODevice::OpenMode mode;
    mode.setFlag(QIODevice::ReadOnly, access & OrxRead);
    mode.setFlag(QIODevice::WriteOnly, access & OrxWrite);
    if (mode == QIODevice::NotOpen || disposition < OrxCreateNew || disposition > OrxTruncateExisting)
        return false;
    const bool writes = access & OrxWrite;
    const bool mustExist = disposition == OrxOpenExisting || disposition == OrxTruncateExisting;
    mode.setFlag(QIODevice::NewOnly, disposition == OrxCreateNew);
    mode.setFlag(QIODevice::ExistingOnly, mustExist);
    if (writes) // Qt empties a file that is opened for writing alone, before it could be held
        mode |= QIODevice::ReadOnly;
    if (!file_.open(mode))
        return false;
    if (writes && share == OrxShareNone && !HoldOpenFile(file_.handle()))
        return false;
    const bool empties = disposition == OrxCreateAlways || disposition == OrxTruncateExisting;
    return !empties || (writes && file_.resize(0));
}

bool OrxFile::Close()
{
    const bool good = file_.flush() && file_.error() == QFileDevice::NoError;
    file_.close();
    return good;
}

QString OrxFile::Decode(QByteArrayView bytes)
{
    return encoding_ == TextEncoding::Ansi ? DecodeText(bytes, encoding_) : QString(decoder_.decode(bytes));
}

bool OrxFile::Fill()
{
    if (ended_)
        return false;
    if (!started_) {
        started_ = true;
        if (encoding_ != TextEncoding::Ansi)
            decoder_ = QStringDecoder(ConverterOf(encoding_), QStringConverter::Flag::ConvertInitialBom);
        const QByteArray mark = MarkOf(encoding_);
        if (file_.pos() == 0 && !mark.isEmpty() && file_.peek(mark.size()) == mark)
            file_.skip(mark.size());
    }
    const QByteArray block = file_.read(kBlock);
    text_.remove(0, next_);
    next_ = 0;
    text_ += Decode(block);
    ended_ = block.isEmpty();
    return !ended_;
}

std::optional<QString> OrxFile::ReadLine()
{
    const auto isEnd = [](QChar c) { return c == u'\r' || c == u'\n'; };
    for (qsizetype scanned = 0;;) {
        const auto unread = Unread();
        const auto end = std::find_if(unread.begin() + scanned, unread.end(), isEnd);
        const auto length = end - unread.begin();
        const bool found = length < unread.size();
        // the second half of a CR LF may still be on disk
        const bool whole = found && (*end == u'\n' || length + 1 < unread.size() || ended_);
        if (whole || !Fill()) {
            const auto rest = Unread();
            if (rest.isEmpty())
                return std::nullopt;
            const QString line = rest.left(length).toString();
            const bool pair = length + 1 < rest.size() && rest[length] == u'\r' && rest[length + 1] == u'\n';
            next_ += std::min<qsizetype>(length + (pair ? 2 : 1), rest.size());
            return line;
        }
        scanned = length;
    }
}

QString OrxFile::ReadText(qsizetype length)
{
    while (Unread().size() < length && Fill()) {
    }
    QString text = Unread().left(length).toString();
    next_ += text.size();
    return text;
}

qint64 OrxFile::ReadBytes(char* buffer, qint64 length) { return std::max<qint64>(0, file_.read(buffer, length)); }

bool OrxFile::WriteText(QStringView text)
{
    if (file_.pos() == 0 && file_.size() == 0)
        file_.write(MarkOf(encoding_));
    if (encoding_ == TextEncoding::Ansi)
        return file_.write(EncodeText(text, encoding_)) >= 0;
    if (!encoder_.isValid()) // kept between calls: a pair of surrogates may come in two pieces
        encoder_ = QStringEncoder(ConverterOf(encoding_));
    return file_.write(QByteArray(encoder_.encode(text))) >= 0;
}

qint64 OrxFile::WriteBytes(const char* buffer, qint64 length)
{
    return std::max<qint64>(0, file_.write(buffer, length));
}

void OrxFile::Restart()
{
    text_.clear();
    next_ = 0;
    started_ = false;
    ended_ = false;
    encoder_ = QStringEncoder();
}

qint64 OrxFile::Seek(qint64 offset, std::int32_t origin)
{
    if (origin < 0 || origin > 2)
        return -1;
    // "Here" is where the reader is, not how far ahead the buffer has read.
    const qint64 ahead =
        IsUtf16(encoding_) ? Unread().size() * 2 : EncodeText(Unread(), encoding_).size() - MarkOf(encoding_).size();
    const std::array<qint64, 3> bases = {0, file_.pos() - ahead, file_.size()};
    const qint64 target = bases[std::size_t(origin)] + offset;
    if (target < 0 || !file_.seek(target))
        return -1;
    Restart();
    return target;
}

bool OrxFile::AtEnd() { return Unread().isEmpty() && file_.atEnd(); }

// A mark in the file settles the byte order of UTF-16, which the number leaves open.
TextEncoding OrxFile::MarkInFile()
{
    const auto here = file_.pos();
    file_.seek(0);
    const auto found = DetectEncoding(file_.peek(2));
    file_.seek(here);
    return found;
}

bool OrxFile::SetEncoding(std::int32_t number)
{
    Restart();
    if (number == OrxDetect) {
        const auto here = file_.pos();
        file_.seek(0);
        encoding_ = DetectEncoding(file_.readAll());
        return file_.seek(here);
    }
    const auto row = std::ranges::find(kNumbers, number, &NumberRow::number);
    if (row == kNumbers.end())
        return false;
    const bool bigEndian = number == OrxUtf16 && file_.isReadable() && MarkInFile() == TextEncoding::Utf16BeMark;
    encoding_ = bigEndian ? TextEncoding::Utf16BeMark : row->encoding;
    return true;
}

std::int32_t OrxFile::EncodingNumber() const
{
    return std::ranges::find(kNumbers, encoding_, &NumberRow::encoding)->number;
}

} // namespace kestrune::textfile

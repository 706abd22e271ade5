#include <comm/commandline.h>

#include <utility>

namespace kestrune::comm {

namespace {

class WordReader
{
public:
    explicit WordReader(std::string_view line) : rest_(line) {}

    // The next word; no value at the end of the line or after a fault.
    std::optional<std::string> Next()
    {
        rest_.remove_prefix(std::min(rest_.find_first_not_of(Blanks), rest_.size()));
        if (rest_.empty())
            return std::nullopt;
        std::string word;
        while (!faulty_ && !rest_.empty() && Blanks.find(rest_.front()) == std::string_view::npos)
            TakePiece(word);
        if (faulty_)
            return std::nullopt;
        return word;
    }

    bool Faulty() const { return faulty_; }

private:
    static constexpr std::string_view Blanks = " \t\r\n";

    char Take()
    {
        const char c = rest_.front();
        rest_.remove_prefix(1);
        return c;
    }

    void TakePiece(std::string& word)
    {
        const char c = Take();
        if (c == '\'')
            TakeSingleQuoted(word);
        else if (c == '"')
            TakeDoubleQuoted(word);
        else if (c != '\\')
            word += c;
        else if (rest_.empty())
            faulty_ = true;
        else
            word += Take();
    }

    void TakeSingleQuoted(std::string& word)
    {
        const std::size_t end = rest_.find('\'');
        faulty_ = end == std::string_view::npos;
        if (faulty_)
            return;
        word += rest_.substr(0, end);
        rest_.remove_prefix(end + 1);
    }

    void TakeDoubleQuoted(std::string& word)
    {
        constexpr std::string_view escapable = "\\\"$`";
        while (!rest_.empty()) {
            const char c = Take();
            if (c == '"')
                return;
            const bool escapes = c == '\\' && !rest_.empty() && escapable.find(rest_.front()) != std::string_view::npos;
            word += escapes ? Take() : c;
        }
        faulty_ = true;
    }

    std::string_view rest_;
    bool faulty_ = false;
};

} // namespace

std::optional<std::vector<std::string>> SplitCommandLine(std::string_view line)
{
    WordReader reader(line);
    std::vector<std::string> words;
    while (auto word = reader.Next())
        words.push_back(std::move(*word));
    if (reader.Faulty())
        return std::nullopt;
    return words;
}

} // namespace kestrune::comm

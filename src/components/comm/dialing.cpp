#include <comm/dialing.h>

#include <algorithm>
#include <iterator>

namespace kestrune::comm {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

std::string DialableOf(std::string_view text)
{
    std::string kept;
    std::ranges::copy_if(text, std::back_inserter(kept),
                         [](char c) { return DialCharacters.find(c) != std::string_view::npos; });
    return kept;
}

std::string_view WithoutBlanks(std::string_view text)
{
    const auto begin = text.find_first_not_of(" \t");
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

struct CanonicalNumber
{
    std::string_view country;
    std::string_view area; // empty: it is not set off from the rest
    std::string_view subscriber;
};

// "+country (area) subscriber", or "+country subscriber" where a blank or the own country's code tells them apart.
std::optional<CanonicalNumber> ReadCanonical(std::string_view number, std::string_view ownCountry)
{
    if (!number.starts_with('+'))
        return std::nullopt;
    const std::string_view rest = WithoutBlanks(number.substr(1));
    const auto country = static_cast<std::size_t>(std::ranges::find_if_not(rest, IsDigit) - rest.begin());
    const std::string_view behind = WithoutBlanks(rest.substr(country));
    if (behind.starts_with('(')) {
        const auto close = behind.find(')');
        if (country == 0 || close == std::string_view::npos)
            return std::nullopt;
        return CanonicalNumber{rest.substr(0, country), WithoutBlanks(behind.substr(1, close - 1)),
                               WithoutBlanks(behind.substr(close + 1))};
    }
    if (rest.starts_with(ownCountry) && !ownCountry.empty())
        return CanonicalNumber{ownCountry, {}, WithoutBlanks(rest.substr(ownCountry.size()))};
    return CanonicalNumber{rest.substr(0, country), {}, behind};
}

std::string Joined(std::initializer_list<std::string_view> words)
{
    std::string text;
    for (const std::string_view word : words) {
        text += word.empty() || text.empty() ? "" : " ";
        text += word;
    }
    return text;
}

std::string InBrackets(std::string_view area)
{
    std::string text;
    if (!area.empty())
        text.append("(").append(area).append(")");
    return text;
}

} // namespace

std::optional<DialText> TranslateNumber(std::string_view number, const DialLocation& from)
{
    const std::string_view typed = WithoutBlanks(number);
    std::string displayed(typed);
    const auto canonical = from.country.empty() ? std::nullopt : ReadCanonical(typed, from.country);
    if (canonical && DialableOf(canonical->subscriber).empty())
        return std::nullopt;
    if (canonical) {
        const std::string& far = from.outsideLineFar.empty() ? from.outsideLine : from.outsideLineFar;
        const auto& [country, area, subscriber] = *canonical;
        if (country != from.country)
            displayed = Joined({far, from.international, country, InBrackets(area), subscriber});
        else if (area == from.area && !area.empty())
            displayed = Joined({from.outsideLine, from.areaAlways ? InBrackets(area) : std::string(), subscriber});
        else
            displayed = Joined({far, from.longDistance, InBrackets(area), subscriber});
    }
    DialText result{DialableOf(displayed), displayed};
    if (result.dialable.empty())
        return std::nullopt;
    return result;
}

std::optional<DialText> TranslateTyped(std::string_view number, const DialLocation& from)
{
    std::string typed;
    std::ranges::copy_if(number, std::back_inserter(typed),
                         [](char c) { return std::string_view(" -/.").find(c) == std::string_view::npos; });
    const bool digitsOnly = std::ranges::all_of(typed, IsDigit);
    std::string canonical;
    if (typed.starts_with('('))
        canonical.append("+").append(from.country).append(typed);
    else if (typed.find('(') != std::string::npos)
        canonical.append(typed.starts_with('+') ? "" : "+").append(typed);
    else if (digitsOnly && from.country == "1" && typed.size() == 7 && !from.area.empty())
        canonical.append("+1 (").append(from.area).append(") ").append(typed);
    else if (digitsOnly && from.country == "1" && typed.size() == 11 && typed.starts_with('1'))
        canonical.append("+1 (").append(typed, 1, 3).append(") ").append(typed, 4);
    if (!canonical.empty())
        if (auto translated = TranslateNumber(canonical, from))
            return translated;
    return TranslateNumber(typed, from);
}

} // namespace kestrune::comm

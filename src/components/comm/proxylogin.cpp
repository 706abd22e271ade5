#include "proxylogin.h"

#include <QCoreApplication>

namespace kestrune::comm {

namespace {

struct ProxyText
{
    Q_DECLARE_TR_FUNCTIONS(ProxyLogin)
};

} // namespace

LineQuestion ProxyLoginQuestion(const QString& proxy, const QString& host, const QString& user, bool again)
{
    LineQuestion question;
    question.kind = LineQuestion::Kind::Secrets;
    question.title = ProxyText::tr("Login at the proxy %1").arg(proxy);
    question.text = again ? ProxyText::tr("The proxy refused the name or the password.")
                          : ProxyText::tr("The proxy %1 wants to know who asks for %2.").arg(proxy, host);
    question.fields = {{.label = ProxyText::tr("User name:"), .echo = true}, {.label = ProxyText::tr("Password:")}};
    question.again = again;
    if (!user.isEmpty()) {
        question.fields.erase(question.fields.begin());
        question.fields.front().mayBeRemembered = true;
        question.place = QStringLiteral("password proxy ") + user + u'@' + proxy;
    }
    return question;
}

std::optional<ProxyLogin> ProxyLoginFrom(LineAnswer answer, const QString& user)
{
    const bool given = answer.choice == LineAnswer::Choice::Continue || answer.choice == LineAnswer::Choice::Update;
    if (!given || answer.values.empty())
        return std::nullopt;
    const std::string_view typed = answer.values.front().Utf8();
    const QString name = user.isEmpty() ? QString::fromUtf8(typed.data(), static_cast<qsizetype>(typed.size())) : user;
    return ProxyLogin{name, std::move(answer.values.back())};
}

} // namespace kestrune::comm

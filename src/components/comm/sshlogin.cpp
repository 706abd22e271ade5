#include "sshlogin.h"

#include "sshcontact.h"

#include <libssh/callbacks.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cstring>
#include <exception>
#include <utility>

namespace kestrune::comm {

namespace {

using namespace Qt::StringLiterals;

struct LoginText
{
    Q_DECLARE_TR_FUNCTIONS(SshLine)
};

constexpr int Tries = 3;       // of a password or passphrase; most hosts end the login after six
constexpr int MostRounds = 20; // of questions by the host: one that asks for ever is not believed
constexpr int MostMethods = 8; // one after the other

enum class Outcome
{
    In,
    More,   // accepted, and the host wants another method besides
    Refused // or not possible
};

Outcome OutcomeOf(int result)
{
    switch (result) {
    case SSH_AUTH_SUCCESS:
        return Outcome::In;
    case SSH_AUTH_PARTIAL:
        return Outcome::More;
    default:
        return Outcome::Refused;
    }
}

class Login
{
public:
    explicit Login(SshContact& contact);
    ~Login() { ssh_set_callbacks(Session(), nullptr); }
    Login(const Login&) = delete;
    Login& operator=(const Login&) = delete;

    void Run();

private:
    ssh_session Session() const { return contact_.Session(); }
    Outcome Check(int result); // throws when the host has gone or the user does not want any more
    Outcome TryOnce();
    Outcome ByAgent();
    Outcome ByKeyFile();
    Outcome ByConfiguredKeys();
    Outcome ByKeyboard();
    Outcome ByPassword();
    SshKeyHandle LoadKey(const QByteArray& file);
    Outcome OfferKey(const QByteArray& file);
    void AnswerRound(bool again);
    // place: LineQuestion's. again: the host, or the key, has not accepted the last one.
    std::vector<Secret> AskFor(const QString& text, std::vector<LineQuestion::Field> fields, const QString& place,
                               bool again);
    QString PasswordPlace() const { return u"password ssh "_s + contact_.Address(); }
    static QString KeyPlace(const QString& file) { return u"passphrase "_s + file; }
    [[noreturn]] void FailLogin();

    static int AskPassphrase(const char* prompt, char* buffer, size_t size, int echo, int verify, void* self);

    SshContact& contact_;
    ssh_callbacks_struct callbacks_{};
    std::exception_ptr stopped_; // by the user, inside a callback of the library
    QString askedFor_;           // the key whose passphrase the library wanted last
    QStringList notes_;          // why a way in was not gone
};

Login::Login(SshContact& contact) : contact_(contact)
{
    callbacks_.userdata = this;
    callbacks_.auth_function = &Login::AskPassphrase;
    ssh_callbacks_init(&callbacks_);
    ssh_set_callbacks(Session(), &callbacks_);
}

Outcome Login::Check(int result)
{
    if (stopped_)
        std::rethrow_exception(stopped_);
    if (result == SSH_AUTH_ERROR && contact_.IsLost())
        contact_.Fail(LineErrorNumber::ConnectionReset,
                      LoginText::tr("The host %1 has ended the login.").arg(contact_.Host()));
    return OutcomeOf(result);
}

std::vector<Secret> Login::AskFor(const QString& text, std::vector<LineQuestion::Field> fields, const QString& place,
                                  bool again)
{
    const std::size_t wanted = fields.size();
    LineAnswer answer = contact_.Ask({.kind = LineQuestion::Kind::Secrets,
                                      .title = LoginText::tr("SSH login to %1").arg(contact_.Address()),
                                      .text = text,
                                      .fields = std::move(fields),
                                      .place = place,
                                      .again = again});
    answer.values.resize(wanted);
    return std::move(answer.values);
}

// --- agent and keys

Outcome Login::ByAgent()
{
    return Check(contact_.Until([this] { return ssh_userauth_agent(Session(), nullptr); }));
}

// Those of the user's SSH configuration, or the usual ones; the agent's come first.
Outcome Login::ByConfiguredKeys()
{
    return Check(contact_.Until([this] { return ssh_userauth_publickey_auto(Session(), nullptr, nullptr); }));
}

int Login::AskPassphrase(const char*, char* buffer, size_t size, int, int, void* self)
{
    auto& login = *static_cast<Login*>(self);
    char* file = nullptr;
    QString name;
    if (ssh_userauth_publickey_auto_get_current_identity(login.Session(), &file) == SSH_OK)
        name = QFile::decodeName(SshText(file).get());
    try {
        const bool again = std::exchange(login.askedFor_, name) == name;
        const auto values =
            login.AskFor(LoginText::tr("The key %1 is locked.").arg(name),
                         {{.label = LoginText::tr("Passphrase:"), .mayBeRemembered = true}}, KeyPlace(name), again);
        const std::string_view passphrase = values[0].Utf8();
        if (passphrase.size() >= size)
            return -1;
        std::copy(passphrase.begin(), passphrase.end(), buffer);
        buffer[passphrase.size()] = '\0';
        return 0;
    } catch (...) {
        // Not through the library's frames.
        login.stopped_ = std::current_exception();
        return -1;
    }
}

// Null: it cannot be read, or the user does not know the passphrase; notes_ says so.
SshKeyHandle Login::LoadKey(const QByteArray& file)
{
    const QString name = QFile::decodeName(file);
    ssh_key key = nullptr;
    if (!QFile::exists(name)) {
        notes_ << LoginText::tr("There is no key file %1.").arg(name);
        return {};
    }
    if (ssh_pki_import_privkey_file(file.constData(), nullptr, nullptr, nullptr, &key) == SSH_OK)
        return SshKeyHandle(key);
    QString text = LoginText::tr("The key %1 is locked.").arg(name);
    for (int i = 0; i < Tries; ++i) {
        const auto values =
            AskFor(text, {{.label = LoginText::tr("Passphrase:"), .mayBeRemembered = true}}, KeyPlace(name), i > 0);
        if (ssh_pki_import_privkey_file(file.constData(), values[0].CString(), nullptr, nullptr, &key) == SSH_OK)
            return SshKeyHandle(key);
        text = LoginText::tr("This passphrase does not open the key %1.").arg(name);
    }
    notes_
        << LoginText::tr("The key %1 could not be opened: it is damaged, or the passphrase is another one.").arg(name);
    return {};
}

// file: what is offered to the host, a public key or a certificate. Refused when it is not there.
Outcome Login::OfferKey(const QByteArray& file)
{
    ssh_key raw = nullptr;
    if (ssh_pki_import_pubkey_file(file.constData(), &raw) != SSH_OK &&
        ssh_pki_import_cert_file(file.constData(), &raw))
        return Outcome::More; // nothing to offer; whether the host takes it shows when it is used
    const SshKeyHandle offered(raw);
    return Check(contact_.Until([&] { return ssh_userauth_try_publickey(Session(), nullptr, offered.get()); }));
}

// The passphrase is asked for only when the host takes the public half. A certificate lies beside its key.
Outcome Login::ByKeyFile()
{
    QString name = contact_.Options().ssh.keyFile;
    if (name.startsWith(u"~/"_s))
        name = QDir::homePath() + name.mid(1);
    const QByteArray file = QFile::encodeName(name);
    ssh_key rawCertificate = nullptr;
    if (QFile::exists(name + u"-cert.pub"_s))
        ssh_pki_import_cert_file((file + "-cert.pub").constData(), &rawCertificate);
    const SshKeyHandle certificate(rawCertificate);
    if (OfferKey(file + (certificate ? "-cert.pub" : ".pub")) == Outcome::Refused) {
        notes_ << LoginText::tr("The host does not take the key %1.").arg(name);
        return Outcome::Refused;
    }
    const SshKeyHandle key = LoadKey(file);
    if (!key)
        return Outcome::Refused;
    if (certificate && ssh_pki_copy_cert_to_privkey(certificate.get(), key.get()) != SSH_OK)
        notes_ << LoginText::tr("The certificate of the key %1 does not belong to it.").arg(name);
    const Outcome outcome =
        Check(contact_.Until([&] { return ssh_userauth_publickey(Session(), nullptr, key.get()); }));
    if (outcome == Outcome::Refused)
        notes_ << LoginText::tr("The host does not take the key %1.").arg(name);
    return outcome;
}

// --- what the user types

void Login::AnswerRound(bool again)
{
    const int prompts = ssh_userauth_kbdint_getnprompts(Session());
    QStringList text{HostWords(ssh_userauth_kbdint_getname(Session())),
                     HostWords(ssh_userauth_kbdint_getinstruction(Session()))};
    text.removeAll(QString());
    if (again)
        text.prepend(LoginText::tr("The host has not accepted that. Try again."));
    if (prompts <= 0 && text.isEmpty())
        return; // RFC 4256 3.2: an answer with no responses is owed nevertheless
    std::vector<LineQuestion::Field> fields;
    for (int i = 0; i < prompts; ++i) {
        char echo = 0;
        const char* prompt = ssh_userauth_kbdint_getprompt(Session(), static_cast<unsigned>(i), &echo);
        const bool shown = echo != 0;
        fields.push_back({.label = HostWords(prompt), .echo = shown, .mayBeRemembered = !shown && prompts == 1});
    }
    if (fields.empty()) {
        const std::string notice = text.join(u'\n').replace(u"\n"_s, u"\r\n"_s).toStdString() + "\r\n";
        contact_.Mail().Received(notice); // only said, nothing asked
        return;
    }
    // One hidden answer is a password; several, or visible ones, are codes of the moment.
    const bool isPassword = fields.size() == 1 && fields[0].mayBeRemembered;
    const auto values = AskFor(text.join(u'\n'), std::move(fields), isPassword ? PasswordPlace() : QString(), again);
    for (unsigned i = 0; i < values.size(); ++i)
        ssh_userauth_kbdint_setanswer(Session(), i, values[i].CString());
}

Outcome Login::ByKeyboard()
{
    int refusals = 0;
    for (int round = 0; round < MostRounds; ++round) {
        const int result = contact_.Until([this] { return ssh_userauth_kbdint(Session(), nullptr, nullptr); });
        if (result == SSH_AUTH_INFO) {
            AnswerRound(refusals > 0);
            continue;
        }
        const Outcome outcome = Check(result);
        if (outcome != Outcome::Refused || ++refusals == Tries || round == 0)
            return outcome;
    }
    contact_.Fail(LineErrorNumber::AccessDenied,
                  LoginText::tr("Unable to log in to %1: the host asks without end.").arg(contact_.Host()));
}

Outcome Login::ByPassword()
{
    QString text;
    for (int i = 0; i < Tries; ++i) {
        const auto values =
            AskFor(text, {{.label = LoginText::tr("Password:"), .mayBeRemembered = true}}, PasswordPlace(), i > 0);
        const Outcome outcome =
            Check(contact_.Until([&] { return ssh_userauth_password(Session(), nullptr, values[0].CString()); }));
        if (outcome != Outcome::Refused)
            return outcome;
        text = LoginText::tr("The host has not accepted this password. Try again.");
    }
    return Outcome::Refused;
}

// --- all together

Outcome Login::TryOnce()
{
    const bool ownKey = !contact_.Options().ssh.keyFile.isEmpty();
    const SshAuth wanted = contact_.Options().ssh.auth;
    struct Step
    {
        unsigned method;
        SshAuth setting;
        bool inAutomatic;
        bool possible;
        Outcome (Login::*run)();
    };
    const std::array steps{
        Step{SSH_AUTH_METHOD_PUBLICKEY, SshAuth::PublicKey, true, ownKey, &Login::ByKeyFile},
        Step{SSH_AUTH_METHOD_PUBLICKEY, SshAuth::PublicKey, true, !ownKey || wanted == SshAuth::Automatic,
             &Login::ByConfiguredKeys},
        Step{SSH_AUTH_METHOD_PUBLICKEY, SshAuth::Agent, false, true, &Login::ByAgent},
        Step{SSH_AUTH_METHOD_INTERACTIVE, SshAuth::KeyboardInteractive, true, true, &Login::ByKeyboard},
        Step{SSH_AUTH_METHOD_PASSWORD, SshAuth::Password, true, true, &Login::ByPassword},
    };
    const auto offered = static_cast<unsigned>(ssh_userauth_list(Session(), nullptr));
    for (const Step& step : steps) {
        const bool chosen = wanted == step.setting || (wanted == SshAuth::Automatic && step.inAutomatic);
        if (!chosen || !step.possible || !(offered & step.method))
            continue;
        if (const Outcome outcome = (this->*step.run)(); outcome != Outcome::Refused)
            return outcome;
    }
    return Outcome::Refused;
}

void Login::Run()
{
    Outcome outcome = Check(contact_.Until([this] { return ssh_userauth_none(Session(), nullptr); }));
    for (int i = 0; outcome != Outcome::In; ++i) {
        outcome = TryOnce();
        if (outcome == Outcome::Refused || i == MostMethods)
            FailLogin();
    }
}

void Login::FailLogin()
{
    struct Method
    {
        int bit;
        QLatin1StringView name;
    };
    static constexpr std::array methods{
        Method{SSH_AUTH_METHOD_PUBLICKEY, "publickey"_L1},
        Method{SSH_AUTH_METHOD_INTERACTIVE, "keyboard-interactive"_L1}, Method{SSH_AUTH_METHOD_PASSWORD, "password"_L1},
        Method{SSH_AUTH_METHOD_HOSTBASED, "hostbased"_L1}, Method{SSH_AUTH_METHOD_GSSAPI_MIC, "gssapi-with-mic"_L1}};
    QStringList taken;
    const int offered = ssh_userauth_list(Session(), nullptr);
    for (const Method& method : methods)
        if (offered & method.bit)
            taken << method.name;
    QString text = LoginText::tr("Unable to log in to %1. The host takes: %2.")
                       .arg(contact_.Address(), taken.isEmpty() ? LoginText::tr("nothing") : taken.join(u", "_s));
    for (const QString& note : notes_)
        text += u' ' + note;
    contact_.Fail(LineErrorNumber::AccessDenied, text);
}

} // namespace

void LogIn(SshContact& contact) { Login(contact).Run(); }

} // namespace kestrune::comm

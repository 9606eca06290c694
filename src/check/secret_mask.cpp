#include "check/secret_mask.h"

#include <algorithm>

#include "check/key_catalogue.h"
#include "config/job_keys.h"
#include "config/switches.h"
#include "files/text.h"

namespace {

constexpr StringView kHidden = u"***";
constexpr StringView kSecretWords[] = {u"pwd", u"password", u"secret", u"token"};
// Shorter values occur in innocent texts.
constexpr std::size_t kShortestSecret = 4;

bool IsNameUnit(char16_t unit) {
    return unit == u'_' || unit == u'-' || unit == u' ' || (unit >= u'0' && unit <= u'9') ||
           (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

// Names of connect strings have two words at most. What has more is no name but a piece of a query.
bool IsSecretName(StringView name) {
    name = text::Trim(name, u" ");
    if (std::count(name.begin(), name.end(), u' ') > 1) return false;
    const String lowered = text::Lowered(name);
    return std::any_of(std::begin(kSecretWords), std::end(kSecretWords),
                       [&](StringView word) { return lowered.find(word) != String::npos; });
}

// A part of a text: positions of its beginning and its end.
struct Part {
    std::size_t begin;
    std::size_t end;
};

// The end of the value at `begin`: behind the brace that closes it, doubled braces inside, or where
// the next item of a connect string or a URL begins.
std::size_t EndOfValue(StringView text, std::size_t begin) {
    if (begin < text.size() && text[begin] == u'{') {
        for (std::size_t at = begin + 1; at < text.size(); ++at) {
            if (text[at] != u'}') continue;
            if (at + 1 == text.size() || text[at + 1] != u'}') return at + 1;
            ++at;
        }
        return text.size();
    }
    return std::min(text.find_first_of(u";&'\"\r\n", begin), text.size());
}

// The values of secret names, "name=value".
void FindSecretValues(StringView text, std::vector<Part>& parts) {
    for (std::size_t equals = text.find(u'='); equals != StringView::npos;
         equals = text.find(u'=', equals + 1)) {
        std::size_t begin = equals;
        while (begin > 0 && IsNameUnit(text[begin - 1])) --begin;
        if (!IsSecretName(text.substr(begin, equals - begin))) continue;
        const std::size_t end = EndOfValue(text, equals + 1);
        if (end > equals + 1) parts.push_back({equals + 1, end});
    }
}

// "user:password@" behind "//".
void FindUserParts(StringView text, std::vector<Part>& parts) {
    for (std::size_t at = text.find(u"//"); at != StringView::npos; at = text.find(u"//", at + 2)) {
        const std::size_t begin = at + 2;
        const std::size_t end = text.find_first_of(u"/?# '\"\r\n", begin);
        const StringView authority = text.substr(begin, end - begin);
        const std::size_t sign = authority.rfind(u'@');
        if (sign == StringView::npos || authority.substr(0, sign).find(u':') == StringView::npos) {
            continue;
        }
        parts.push_back({begin, begin + sign + 1});
    }
}

std::vector<Part> SecretParts(StringView text) {
    std::vector<Part> parts;
    FindSecretValues(text, parts);
    FindUserParts(text, parts);
    // Of two that begin together the longer one stands first, and hides the other.
    std::sort(parts.begin(), parts.end(), [](const Part& left, const Part& right) {
        return std::pair(left.begin, right.end) < std::pair(right.begin, left.end);
    });
    return parts;
}

String HideParts(StringView text) {
    String hidden;
    std::size_t kept = 0;
    for (const Part& part : SecretParts(text)) {
        if (part.begin < kept) continue;
        hidden.append(text.substr(kept, part.begin - kept)).append(kHidden);
        kept = part.end;
    }
    return hidden.append(text.substr(kept));
}

}  // namespace

SecretMask::SecretMask(Configuration& configuration)
    : active_(configuration.Flag(Section::Globals, kMaskSecrets)) {
    if (!active_) return;
    for (const KeySpec& key : kSwitches) {
        AddSecretsOf(configuration, Section::CommandLine, key);
    }
    for (std::size_t i = 0; i < configuration.StepCount(); ++i) {
        configuration.SetCurrentStep(i);
        for (const KeyOwner& owner : KeyOwners()) {
            const bool of_step =
                owner.section != Section::CommandLine && owner.section != Section::Globals;
            if (!of_step) continue;
            for (const KeySpan span : owner.keys) {
                for (const KeySpec& key : span) AddSecretsOf(configuration, owner.section, key);
            }
        }
    }
    // A secret may hold another one.
    std::sort(secrets_.begin(), secrets_.end(),
              [](const String& left, const String& right) { return left.size() > right.size(); });
}

void SecretMask::AddSecretsOf(const Configuration& configuration, Section section,
                              const KeySpec& key) {
    const ParameterSet::Element* element = configuration.Find(section, key);
    if (element == nullptr) return;
    const StringView value = text::StripQuotes(element->value);
    if (key.names == Names::Secret) {
        AddSecret(value);
        AddMacrosOf(configuration, value);
    } else if (key.names == Names::DataSource || key.names == Names::Url) {
        AddSecretParts(configuration, value);
    }
}

void SecretMask::AddSecretParts(const Configuration& configuration, StringView value) {
    for (const Part& part : SecretParts(value)) {
        const StringView secret = value.substr(part.begin, part.end - part.begin);
        AddSecret(secret);
        AddMacrosOf(configuration, secret);
    }
    // A macro may bring the name of a secret along with its value.
    String resolved(value);
    configuration.ResolveAllMacros(resolved);
    for (const Part& part : SecretParts(resolved)) {
        AddSecret(StringView{resolved}.substr(part.begin, part.end - part.begin));
    }
}

void SecretMask::AddMacrosOf(const Configuration& configuration, StringView value) {
    for (const ParameterSet::Element& macro : configuration.Macros().UserMacros()) {
        if (value.find(macro.name) != StringView::npos) AddSecret(macro.value);
    }
    String resolved(value);
    configuration.ResolveAllMacros(resolved);
    AddSecret(resolved);
}

void SecretMask::AddSecret(StringView secret) {
    if (secret.size() < kShortestSecret) return;
    if (std::find(secrets_.begin(), secrets_.end(), secret) == secrets_.end()) {
        secrets_.emplace_back(secret);
    }
}

String SecretMask::Masked(StringView text) const {
    if (!active_) return String(text);
    String masked(text);
    for (const String& secret : secrets_) text::ReplaceAll(masked, secret, kHidden);
    return HideParts(masked);
}

String SecretMask::ShownValue(Section section, const ParameterSet::Element& element) const {
    if (!active_ || element.value.empty()) return element.value;
    bool known = false;
    for (const KeyOwner& owner : KeyOwners()) {
        const KeySpec* key = owner.section == section ? FindKey(owner.keys, element.name) : nullptr;
        if (key == nullptr) continue;
        known = true;
        if (key->names == Names::Secret) return String(kHidden);
    }
    return known ? Masked(element.value) : String(kHidden);
}

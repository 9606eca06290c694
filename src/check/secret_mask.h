#pragma once

#include <utility>
#include <vector>

#include "base/strings.h"
#include "config/configuration.h"

// Hides the secrets of a job in what the program tells: "***" stands for
//   - the values, braces included, of names that hold "pwd", "password", "secret" or "token", any
//     letter case, in connect strings and in the query part of URLs (RFC 3986);
//   - "user:password@" in URLs;
//   - the values of `Password` keys and of "-Password";
//   - the values, of four characters or more, of macros that stand in one of these places.
class SecretMask {
public:
    // A mask that hides nothing.
    SecretMask() = default;
    // Collects the secrets of a job that has been read.
    explicit SecretMask(Configuration& configuration);

    // `text` with its secrets hidden.
    String Masked(StringView text) const;

    // What a listing shows for an item of a section: values that are secrets, and those of keys
    // that nobody knows, are hidden.
    String ShownValue(Section section, const ParameterSet::Element& element) const;

private:
    void AddSecretsOf(const Configuration& configuration, Section section, const KeySpec& key);
    void AddSecret(StringView secret);
    void AddMacrosOf(const Configuration& configuration, StringView value);
    void AddSecretParts(const Configuration& configuration, StringView value);

    bool active_ = false;
    std::vector<String> secrets_;  // the longest first
};

// The keys of job files and the switches of the command line, as data. Each source, target,
// transformer, command and section keeps a table of its keys beside its class; lookups, checks,
// help, the page of all keys and the completion scripts all read these tables.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "base/strings.h"

// What a value must be. Strict readings (see KeySpec::since) refuse what is none; all others mean
// what they always meant.
enum class KeyKind {
    Text,     // anything; empty is the empty text
    Flag,     // 1, 0, true, false, yes, no, on, off
    Number,   // a whole number from 0 up
    Size,     // bytes, or with K, M, G behind them 1024, 1024² and 1024³ times as many
    Word,     // one of the key's words
    Numbers,  // numbers, separated by commas
    Column,   // a column number from 1, or "*" where the key says so
    Columns,  // column numbers from 1, separated by commas
    Type,     // a type word, or a System command
};

// Whether the macros in a value are replaced. ByEdition: from edition 2 on.
enum class Macros { Kept, Replaced, ByEdition };

// Since when a key means something. Keys of edition 1 are read strictly from edition 2 on, later
// keys in both editions.
enum class Since {
    Edition1,
    Later,
    Edition2Only,  // as Edition1, but a job of edition 1 that sets it is not heard
};

// What a value names, for messages and checks.
enum class Names {
    Nothing,
    File,       // one that is made or written
    FileAside,  // likewise, but not what the step is about
    FileRead,   // one that must be there
    Folder,
    MadeFolder,  // one that is made with its parents
    Table,
    Tables,     // several, one after the other
    Catalogue,  // tables that the rows describe
    DataSource,
    Url,
    Secret
};

// A row of a table of keys. An empty value is the default, except for texts.
struct KeySpec {
    StringView name;
    KeyKind kind = KeyKind::Text;
    // Of a Word: the words, separated by blanks; one that ends with "nnnn" stands for any number.
    StringView words = {};
    StringView edition1 = {};  // the default of edition 1
    StringView edition2 = {};  // the default of edition 2
    StringView meaning = {};   // one line for the page of keys
    Macros macros = Macros::Kept;
    Since since = Since::Edition1;
    Names names = Names::Nothing;
    StringView needed = {};       // keys of one such word: one of them must have a value
    bool any_case = false;        // words match in any letter case in loose readings, too
    std::size_t loose_words = 0;  // how many of the words loose readings know; 0: all
    bool own = false;             // Globals stand in for it in edition 1 only: see Configuration
    StringView defaults = {};     // where a default depends on other keys: how the page puts it
};

// A key as lookups take it. Only a table gives one away, so what is in no table cannot be read.
class Key {
public:
    constexpr const KeySpec* operator->() const { return spec_; }
    constexpr const KeySpec& operator*() const { return *spec_; }

private:
    template <std::size_t N>
    friend class KeyTable;
    explicit constexpr Key(const KeySpec& spec) : spec_(&spec) {}

    const KeySpec* spec_;
};

using KeySpan = std::span<const KeySpec>;
// All keys of a class: its own table and those that it shares with others, most special first.
using KeyList = std::vector<KeySpan>;

// A table of keys. Tables have static storage duration:
//
//     constexpr KeyTable kKeys({{.name = u"Header", .kind = KeyKind::Flag, .edition1 = u"0",
//     ...}}); constexpr Key kHeader = kKeys[u"Header"];
template <std::size_t N>
class KeyTable {
public:
    explicit consteval KeyTable(const KeySpec (&specs)[N]) {
        for (std::size_t i = 0; i < N; ++i) specs_[i] = specs[i];
    }

    // The key of that name. A name that is not in the table does not compile.
    consteval Key operator[](StringView name) const {
        for (const KeySpec& spec : specs_) {
            if (spec.name == name) return Key(spec);
        }
        throw "no such key";
    }

    constexpr operator KeySpan() const { return specs_; }
    constexpr const KeySpec* begin() const { return specs_; }
    constexpr const KeySpec* end() const { return specs_ + N; }

private:
    KeySpec specs_[N];
};

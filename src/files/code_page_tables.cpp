#include "files/code_page_tables.h"

#include <algorithm>

#include "base/utf8.h"
#include "files/format.h"

namespace {

constexpr unsigned kAsciiEnd = 0x80;

std::uint32_t EntryOf(platform::CodePage& page, char16_t unit) {
    if (IsSurrogate(unit)) return 0;
    const platform::CodePage::Bytes bytes = page.BytesOf(unit);
    auto entry = static_cast<std::uint32_t>(bytes.count) << CodePageEncodingTable::kCountShift;
    for (std::size_t i = 0; i < bytes.count; ++i) {
        entry |= std::to_integer<std::uint32_t>(bytes.value[i]) << (8 * i);
    }
    return entry;
}

}  // namespace

std::unique_ptr<platform::CodePage> OpenCodePage(ErrorRecord& error, const FileEncoding& encoding) {
    std::unique_ptr<platform::CodePage> page = platform::CodePage::Open(*encoding.code_page);
    if (!page) {
        error.text = Format(u"Encoding %s is not known on this system.", NameOf(encoding));
    }
    return page;
}

CodePageDecodingTable::CodePageDecodingTable(platform::CodePage& page) {
    for (unsigned first = 0; first < 256; ++first) {
        std::array bytes{static_cast<std::byte>(first), std::byte{}};
        if (!page.IsLead(bytes[0])) {
            single_[first] = page.Character(std::span(bytes).first(1)).value_or(kNothing);
            continue;
        }
        single_[first] = kLead;
        row_of_[first] = static_cast<std::uint8_t>(pairs_.size());
        Row& row = pairs_.emplace_back();
        for (unsigned second = 0; second < 256; ++second) {
            bytes[1] = static_cast<std::byte>(second);
            row[second] = page.Character(bytes).value_or(kNothing);
        }
    }
    for (unsigned i = 0; i < kAsciiEnd; ++i) holds_ascii_ = holds_ascii_ && single_[i] == i;
}

CodePageEncodingTable::CodePageEncodingTable(platform::CodePage& page) {
    rows_.emplace_back();
    for (unsigned high = 0; high < 256; ++high) {
        Row row{};
        for (unsigned low = 0; low < 256; ++low) {
            row[low] = EntryOf(page, static_cast<char16_t>(high << 8 | low));
        }
        if (std::all_of(row.begin(), row.end(), [](std::uint32_t entry) { return entry == 0; })) {
            continue;
        }
        // At most 248 rows: surrogates have none.
        row_of_[high] = static_cast<std::uint8_t>(rows_.size());
        rows_.push_back(row);
    }
    for (unsigned i = 0; i < kAsciiEnd; ++i) {
        const std::uint32_t same = 1u << kCountShift | i;
        holds_ascii_ = holds_ascii_ && Of(static_cast<char16_t>(i)) == same;
    }
}

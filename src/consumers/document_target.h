#pragma once

#include <memory>

#include "consumers/document_form.h"
#include "consumers/file_target.h"

namespace DataConsumers {

// A file target whose format has several forms, one of which Open chooses by the key `Form`. The
// target knows files and counts bytes; the form composes their text.
class DocumentTarget : public FileTarget {
public:
    bool Prepare(String& error, RowSet& rows) override;
    bool Write(String& error, RowSet& rows) override;
    std::uint64_t ReplacedCharacters() const override;

protected:
    // overwrite, encoding: the keys of the format.
    DocumentTarget(Key overwrite, Key encoding)
        : FileTarget({.overwrite = overwrite, .encoding = encoding, .ends_each_file = false}),
          encoding_key_(encoding) {}

    // The form that the settings ask for; null, with `error`, where they contradict each other.
    virtual std::unique_ptr<DocumentForm> MakeForm(String& error,
                                                   const SectionSettings& settings) = 0;
    // Whether the job asks for a form other than the plain one.
    virtual bool WantsStrictForm(const SectionSettings& settings) const;
    // By the keys for the plain form. A strict document is UTF-8 without a mark, unless they say
    // otherwise.
    TextForm TextFormOf(const SectionSettings& settings) const override;
    // The same for a strict document.
    TextForm StrictTextForm(const SectionSettings& settings) const;

private:
    bool ReadSettings(String& error, const SectionSettings& settings) final;
    bool CanGoOn() const final { return form_->Rules().goes_on; }
    StringView LineEnd() const final { return form_->Rules().line_end; }
    bool BeginFile(String& error) final;
    bool ContinueFile(String& error) final;
    bool LeaveFile(String& error) final;
    bool EndFile(String& error) final;
    bool WriteLine(String& error);

    const Key encoding_key_;
    std::unique_ptr<DocumentForm> form_;
};

// `Form`, of formats with two of them.
enum class Form { Plain, Strict };
inline constexpr KeyTable kFormKeys({
    {.name = u"Form",
     .kind = KeyKind::Word,
     .words = u"Plain Strict",
     .edition1 = u"Plain",
     .edition2 = u"Strict",
     .meaning = u"as always, or as every reader of the format takes it",
     .since = Since::Later},
});
inline constexpr Key kForm = kFormKeys[u"Form"];

}  // namespace DataConsumers

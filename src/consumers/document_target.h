#pragma once

#include <memory>

#include "consumers/document_form.h"
#include "consumers/file_target.h"
#include "files/text_encoder.h"

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
    FileStart StartOf(const SectionSettings& settings) const override;
    // How a plain one does: by the keys.
    FileStart PlainStart(const SectionSettings& settings) const;
    // How a strict document begins: in UTF-8 without a mark, unless the job says otherwise.
    FileStart StrictStart(const SectionSettings& settings) const;

private:
    bool ReadSettings(String& error, const SectionSettings& settings) final;
    bool CanGoOn() const final { return form_->Rules().goes_on; }
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

inline constexpr KeyTable kUnmappableKeys({
    {.name = u"Unmappable",
     .kind = KeyKind::Word,
     .words = u"Cut Replace Stop",
     .edition1 = u"Cut",
     .edition2 = u"Stop",
     .meaning = u"what becomes of a character that cannot be written",
     .since = Since::Later},
});
inline constexpr Key kUnmappable = kUnmappableKeys[u"Unmappable"];

}  // namespace DataConsumers

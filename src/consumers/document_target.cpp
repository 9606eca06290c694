#include "consumers/document_target.h"

namespace DataConsumers {

bool DocumentTarget::ReadSettings(String& error, const SectionSettings& settings) {
    form_ = MakeForm(error, settings);
    return form_ != nullptr;
}

bool DocumentTarget::WantsStrictForm(const SectionSettings& settings) const {
    return settings.Word(kForm, Form::Plain) == Form::Strict;
}

TextForm DocumentTarget::TextFormOf(const SectionSettings& settings) const {
    return WantsStrictForm(settings) ? StrictTextForm(settings) : FileTarget::TextFormOf(settings);
}

// Without a mark readers would take UTF-16 for something else.
TextForm DocumentTarget::StrictTextForm(const SectionSettings& settings) const {
    TextForm form = FileTarget::TextFormOf(settings);
    if (!settings.IsSet(encoding_key_)) form.encoding = {.form = Encoding::Utf8};
    if (!SetsMark(settings)) form.marked = form.encoding.form == Encoding::Utf16LittleEndian;
    form.keeps_encoding = true;
    return form;
}

bool DocumentTarget::BeginFile(String& error) {
    line_.clear();
    form_->BeginFile(line_);
    if (form_->Rules().counts_start) return WriteLine(error);
    return WriteUncounted(error, line_);
}

bool DocumentTarget::Prepare(String& error, RowSet& rows) {
    line_.clear();
    return form_->BeginTable(error, rows, line_) && WriteLine(error);
}

bool DocumentTarget::Write(String& error, RowSet& rows) {
    line_.clear();
    if (TakeNewColumns() && !form_->BeginRows(error, rows, line_)) return false;
    return form_->AppendRow(error, rows, line_) && WriteLine(error);
}

bool DocumentTarget::ContinueFile(String& error) {
    line_.clear();
    const bool wants_table = form_->NextTable(error, line_);
    return WriteLine(error) && wants_table;
}

bool DocumentTarget::LeaveFile(String& error) {
    line_.clear();
    form_->LeaveFile(line_);
    return WriteLine(error) && (!form_->Rules().ends_each_file || EndFile(error));
}

bool DocumentTarget::EndFile(String& error) {
    line_.clear();
    if (!form_->EndFile(error, line_)) return false;
    return form_->Rules().counts_end ? WriteLine(error) : WriteUncounted(error, line_);
}

// A form that has nothing to say yet writes nothing.
bool DocumentTarget::WriteLine(String& error) { return line_.empty() || WriteText(error, line_); }

std::uint64_t DocumentTarget::ReplacedCharacters() const {
    return FileTarget::ReplacedCharacters() + (form_ ? form_->Replaced() : 0);
}

}  // namespace DataConsumers

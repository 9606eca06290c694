#include "providers/text_file.h"

#include <algorithm>
#include <utility>

#include "config/text_dialect.h"
#include "core/sql_types.h"
#include "files/format.h"
#include "files/line_splitter.h"
#include "files/text.h"
#include "platform/file_system.h"

namespace DataProviders {
namespace {

constexpr KeyTable kKeys({
    {.name = u"Name",
     .meaning = u"the file; CONSOLE is standard input",
     .macros = Macros::ByEdition,
     .names = Names::FileRead,
     .needed = u"name"},
    {.name = u"Header",
     .kind = KeyKind::Flag,
     .edition1 = u"1",
     .edition2 = u"1",
     .meaning = u"the first line holds the names of the columns"},
    {.name = u"Quote",
     .edition1 = u"\"",
     .edition2 = u"\"",
     .meaning = u"the quote of fields; empty for none"},
    {.name = u"DataTypes",
     .meaning = u"the types of the columns, with commas: integer, short, number, float, text"},
    {.name = u"CommentChar", .meaning = u"lines that begin with it are left out"},
    {.name = u"InputEncoding",
     .kind = KeyKind::Word,
     .words = u"Bytes Auto UTF8 UTF16LE UTF16BE CPnnnn",
     .edition1 = u"Bytes",
     .edition2 = u"Auto",
     .meaning = u"the encoding of the file; Bytes: one character a byte; Auto: by the byte-order "
                u"mark, else UTF-8",
     .since = Since::Later},
    {.name = u"SkipIncompleteLines",
     .kind = KeyKind::Flag,
     .edition1 = u"1",
     .edition2 = u"1",
     .meaning = u"leave out lines with fewer fields than columns"},
    {.name = u"OnBadRow",
     .kind = KeyKind::Word,
     .words = u"Skip Stop Reject",
     .edition2 = u"Stop",
     .meaning = u"what becomes of a record that does not fit the columns or cannot be read",
     .since = Since::Later,
     .defaults = u"1: as SkipIncompleteLines says; 2: Stop"},
    {.name = u"RejectFile",
     .meaning = u"the file for the records that OnBadRow=Reject sets aside",
     .macros = Macros::Replaced,
     .since = Since::Later,
     .names = Names::FileAside},
    {.name = u"MaxRejects",
     .kind = KeyKind::Number,
     .edition1 = u"1000",
     .edition2 = u"1000",
     .meaning = u"how many records may be set aside; one more fails the step",
     .since = Since::Later},
});
constexpr Key kName = kKeys[u"Name"];
constexpr Key kHeader = kKeys[u"Header"];
constexpr Key kQuote = kKeys[u"Quote"];
constexpr Key kDataTypes = kKeys[u"DataTypes"];
constexpr Key kCommentChar = kKeys[u"CommentChar"];
constexpr Key kInputEncoding = kKeys[u"InputEncoding"];
constexpr Key kSkipIncompleteLines = kKeys[u"SkipIncompleteLines"];
constexpr Key kOnBadRow = kKeys[u"OnBadRow"];
constexpr Key kRejectFile = kKeys[u"RejectFile"];
constexpr Key kMaxRejects = kKeys[u"MaxRejects"];

constexpr StringView kUnreadable = u"Could not read the file to its end.";

struct ColumnType {
    StringView word;
    StringView type_name;
    std::int32_t data_type;
    StringView literal_mark;  // prefix and suffix
};

constexpr ColumnType kColumnTypes[] = {
    {u"integer", u"integer", kSqlInteger, u""},
    {u"short", u"integer", kSqlInteger, u""},
    {u"number", u"number", kSqlFloat, u""},
    {u"float", u"number", kSqlFloat, u""},
};
constexpr ColumnType kTextColumn = {u"", u"varchar", kSqlWVarchar, u"'"};

const ColumnType& TypeOf(StringView word) {
    for (const ColumnType& type : kColumnTypes) {
        if (type.word == word) return type;
    }
    return kTextColumn;
}

bool IsTextColumn(const RowSet& rows, std::size_t position) {
    return position >= rows.Columns.size() || rows.Columns[position].DataType == kSqlWVarchar;
}

RecordEncoding EncodingOf(const SectionSettings& settings) {
    using By = RecordEncoding::By;
    enum class Word { Bytes, Auto, Utf8, Utf16LittleEndian, Utf16BigEndian, CodePage };
    switch (settings.Word(kInputEncoding, Word::Bytes)) {
        case Word::Bytes:
            return {By::Bytes, {}};
        case Word::Auto:
            return {By::Mark, {}};
        case Word::Utf8:
            return {By::Name, {.form = Encoding::Utf8}};
        case Word::Utf16LittleEndian:
            return {By::Name, {.form = Encoding::Utf16LittleEndian}};
        case Word::Utf16BigEndian:
            return {By::Name, {.form = Encoding::Utf16BigEndian}};
        case Word::CodePage:
            break;
    }
    return {By::Name, EncodingOfCodePage(settings.Text(kInputEncoding))};
}

}  // namespace

KeyList TextFile::Keys() { return {kKeys, kDialectKeys}; }

// ---- Opening ----

bool TextFile::Open(String& error, const SectionSettings& settings, RowSet& rows) {
    loss_fails_step_ = false;
    skipped_ = replaced_ = 0;
    record_pending_ = false;
    blanks_pending_ = 0;
    if (!FindInput(error, settings) || !ReadLayout(error, settings)) return false;
    if (!ReadBadRows(error, settings) || !OpenReader(error)) return false;
    if (header_ && !ReadNames(error, settings)) return false;
    // Opened again the columns stay.
    if (rows.Columns.empty()) {
        if (!header_ && !ReadFirstRecord(error)) return error.empty();
        DescribeColumns(rows);
    }
    if (recorded_ != nullptr) recorded_->EndStart();
    return true;
}

bool TextFile::FindInput(String& error, const SectionSettings& settings) {
    name_ = settings.Text(kName);
    if (name_.empty()) {
        error = u"'Name' parameter not specified.";
        return false;
    }
    const bool console = text::EqualsIgnoringCase(name_, u"CONSOLE");
    if (!console && !platform::PathExists(name_)) {  // looked for before macros are replaced
        error = Format(u"File '%s' does not exist or inaccessible.", name_);
        return false;
    }
    settings.ResolveUserMacros(kName, name_);
    input_file_ = console ? String() : name_;
    return true;
}

bool TextFile::ReadTypes(String& error, const SectionSettings& settings) {
    const String words = settings.Text(kDataTypes);
    std::vector<StringView> fields;
    if (!words.empty()) SplitLine(words, u',', {}, OuterQuotes::Strip, fields);
    type_words_.assign(fields.begin(), fields.end());
    if (!settings.Follows(Rule::DataTypesChecked)) return true;
    for (String& word : type_words_) {
        word = text::Lowered(text::Trim(word, text::kBlanks));
        if (word.empty() || word == u"text" || &TypeOf(word) != &kTextColumn) continue;
        error = Format(
            u"'%s' is no word of DataTypes. It takes integer, short, number, float or text.", word);
        return false;
    }
    return true;
}

bool TextFile::ReadLayout(String& error, const SectionSettings& settings) {
    using Form = RecordLayout::Form;
    if (!ReadTypes(error, settings)) return false;
    header_ = settings.Flag(kHeader);

    TextSigns signs;
    if (!ReadTextSigns(error, settings, kQuote, true, signs)) return false;
    if (signs.delimiter.empty()) signs.delimiter = u"\t";
    layout_.form = signs.dialect == Dialect::Csv ? Form::Csv : Form::Plain;
    if (!signs.widths.empty()) layout_.form = Form::Widths;
    layout_.delimiter = signs.delimiter.front();
    layout_.quote = signs.quote;
    layout_.widths = signs.widths;
    const String comment = settings.Text(kCommentChar);
    layout_.comment.reset();
    if (!comment.empty()) layout_.comment = comment.front();
    quote_ = signs.quote.empty() ? u'\0' : signs.quote.front();
    row_follows_columns_ = layout_.form != Form::Plain || settings.Follows(Rule::RowFollowsColumns);
    encoding_ = EncodingOf(settings);
    return ReadNullText(error, settings, signs, null_text_);
}

// What is set stands above what is not; `OnBadRow` stands above `SkipIncompleteLines`.
bool TextFile::ReadBadRows(String& error, const SectionSettings& settings) {
    short_rows_ = long_rows_ = faulty_rows_ = settings.Word(kOnBadRow, BadRow::Deliver);
    const bool as_lines_say = short_rows_ == BadRow::Deliver;
    if (as_lines_say || (!settings.IsSet(kOnBadRow) && settings.IsSet(kSkipIncompleteLines))) {
        short_rows_ = settings.Flag(kSkipIncompleteLines) ? BadRow::Skip : BadRow::Deliver;
    }
    if (as_lines_say) faulty_rows_ = short_rows_ == BadRow::Skip ? BadRow::Skip : BadRow::Stop;
    may_spool_ = settings.Follows(Rule::WidthsAsWritten);
    names_lines_ = !settings.Follows(Rule::PlacedMessages);

    const String name = settings.Text(kRejectFile);
    if (faulty_rows_ == BadRow::Reject && name.empty()) {
        error = u"OnBadRow=Reject needs a RejectFile.";
        return false;
    }
    if (faulty_rows_ == BadRow::Reject && !input_file_.empty()) {
        const auto input = platform::IdentityOf(input_file_);
        if (input && platform::IdentityOf(name) == input) {
            error = Format(u"The reject file '%s' is the file that the source reads.", name);
            return false;
        }
    }
    reject_file_.Use(name, static_cast<std::uint64_t>(settings.Number(kMaxRejects)));
    return true;
}

bool TextFile::OpenReader(String& error) {
    ErrorRecord open_error;
    std::unique_ptr<platform::InputFile> stream = OpenStream();
    reader_ = stream ? MakeRecordReader(open_error, std::move(stream), encoding_, layout_)
                     : OpenRecords(open_error, input_file_, encoding_, layout_);
    if (!reader_) error = open_error.text;
    return reader_ != nullptr;
}

// What is read in place of a file of that name; null for nothing.
std::unique_ptr<platform::InputFile> TextFile::OpenStream() {
    recorded_ = nullptr;
    if (spool_) return platform::SpoolFile::Read(spool_);
    std::unique_ptr<platform::InputFile> stream;
    if (input_file_.empty()) {
        stream = platform::InputFile::StandardInput();
        if (!may_spool_) return stream;
    } else if (may_spool_) {
        ErrorRecord told_later;
        stream = platform::InputFile::Open(told_later, input_file_);
        if (stream && stream->CanReopen()) return nullptr;
    }
    if (!stream) return nullptr;
    auto recorded = std::make_unique<RecordedInput>(std::move(stream));
    recorded_ = recorded.get();
    return recorded;
}

// Standard input goes on where it was left, even where it is a file.
bool TextFile::CanReopen() const {
    return spool_ || (!input_file_.empty() && reader_ && reader_->CanReopen());
}

bool TextFile::KeepForReopening(String& error) {
    if (CanReopen()) return true;
    if (recorded_ == nullptr) return DataProvider::KeepForReopening(error);
    spool_ = recorded_->Spool(error);
    return spool_ != nullptr;
}

// Lines without a character before the names are left out, except in a plain file.
bool TextFile::ReadNames(String& error, const SectionSettings& settings) {
    do {
        if (reader_->Read(RecordReader::Content::Names)) continue;
        if (reader_->Failed()) {
            loss_ = error = kUnreadable;
        } else if (settings.Follows(Rule::EmptyTextIsTold)) {
            error = Format(u"File '%s' is empty.", name_);
        }
        return false;
    } while (IsBlank());
    if (!reader_->IsFaulty()) return true;
    error = Format(u"Line %I64u: %s", reader_->Line(), reader_->Fault());
    return false;
}

// The columns are counted on the first record of data, which is delivered all the same. Those
// without a character before it are rows where it turns out to have one field.
bool TextFile::ReadFirstRecord(String& error) {
    while (NextRecord(error)) {
        record_pending_ = true;
        if (!IsBlank()) return true;
        record_pending_ = false;
        ++blanks_pending_;
    }
    return blanks_pending_ != 0 || (error.empty() && !layout_.widths.empty());
}

void TextFile::DescribeColumns(RowSet& rows) const {
    const std::vector<RecordField>& fields = reader_->Fields();
    std::size_t count = header_ || record_pending_ ? fields.size() : 1;
    if (!layout_.widths.empty()) count = layout_.widths.size();
    for (std::size_t i = 0; i < count; ++i) {
        const ColumnType& type = i < type_words_.size() ? TypeOf(type_words_[i]) : kTextColumn;
        String name = Format(u"Column%d", i + 1);
        if (header_) TakeField(fields[i], quote_, name);
        ColumnDefinition column(std::move(name), type.data_type, String(type.type_name), 0);
        column.LiteralPrefix = column.LiteralSuffix = type.literal_mark;
        rows.Columns.push_back(std::move(column));
    }
}

// ---- Rows ----

bool TextFile::Fetch(String& error, RowSet& rows, bool /*track_widths*/) {
    if (blanks_pending_ != 0 && TakeBlank(rows)) return true;
    while (NextRecord(error)) {
        const Fate fate = FateOf(error, rows.Columns.size());
        if (fate == Fate::Delivered) {
            Deliver(rows);
            return true;
        }
        if (fate == Fate::Fatal) return false;
    }
    return false;
}

// A record without a character from before the first that has one. They were rows if there is one
// column.
bool TextFile::TakeBlank(RowSet& rows) {
    if (rows.Columns.size() != 1) {
        blanks_pending_ = 0;
        return false;
    }
    --blanks_pending_;
    rows.GrowRow(1);
    rows.Row[0].Text.clear();
    rows.Row[0].IsNull = IsNull({}, rows, 0);
    return true;
}

bool TextFile::NextRecord(String& error) {
    if (std::exchange(record_pending_, false)) return true;
    if (reader_->Read(RecordReader::Content::Data)) return true;
    if (reader_->Failed()) {
        loss_ = error = kUnreadable;
    } else if (!reject_file_.Close(error)) {
        Fail(error, String(error));
    }
    return false;
}

// A record without any character, where that is none.
bool TextFile::IsBlank() const {
    return layout_.form != RecordLayout::Form::Plain && reader_->Raw().empty();
}

TextFile::Fate TextFile::FateOf(String& error, std::size_t columns) {
    const std::size_t count = reader_->Fields().size();
    const bool faulty = reader_->IsFaulty();
    if (count == columns && !faulty) return Fate::Delivered;
    if (IsBlank()) return Fate::Dropped;
    if (faulty) return FateOfBad(error, faulty_rows_, reader_->Fault());
    const BadRow handling = count < columns ? short_rows_ : long_rows_;
    if (handling == BadRow::Deliver) return Fate::Delivered;
    const StringView word = count == 1 ? u"field" : u"fields";
    return FateOfBad(error, handling, Format(u"%u %s where %u columns are.", count, word, columns));
}

TextFile::Fate TextFile::FateOfBad(String& error, BadRow handling, StringView reason) {
    switch (handling) {
        case BadRow::Skip:
            ++skipped_;
            return Fate::Dropped;
        case BadRow::Reject: {
            String failure;
            if (reject_file_.Add(failure, reader_->Line(), reason, reader_->Raw())) {
                return Fate::Dropped;
            }
            return Fail(error, failure);
        }
        default:
            return Fail(error, reason);
    }
}

TextFile::Fate TextFile::Fail(String& error, StringView reason) {
    error = reason;
    if (names_lines_) error.insert(0, Format(u"Line %I64u: ", reader_->Line()));
    loss_ = error;
    loss_fails_step_ = true;
    return Fate::Fatal;
}

void TextFile::Deliver(RowSet& rows) const {
    const std::vector<RecordField>& fields = reader_->Fields();
    if (rows.Row.empty()) {
        rows.GrowRow(row_follows_columns_ ? rows.Columns.size() : fields.size());
    }
    const std::size_t count = std::min(fields.size(), rows.Row.size());
    for (std::size_t i = 0; i < count; ++i) {
        DataValue& value = rows.Row[i];
        TakeField(fields[i], quote_, value.Text);
        value.IsNull = IsNull(fields[i], rows, i);
    }
    if (!row_follows_columns_) return;  // values of the row before stay
    for (std::size_t i = count; i < rows.Row.size(); ++i) {
        rows.Row[i].Text.clear();
        rows.Row[i].IsNull = true;
    }
}

bool TextFile::IsNull(const RecordField& field, const RowSet& rows, std::size_t position) const {
    if (!field.quoted && null_text_ == field.text) return true;
    return field.text.empty() && !IsTextColumn(rows, position);
}

std::uint64_t TextFile::ReplacedCharacters() const {
    return reader_ ? reader_->Replaced() : replaced_;
}

std::optional<double> TextFile::ReadShare() const {
    return reader_ ? reader_->Share() : std::nullopt;
}

bool TextFile::Close() {
    replaced_ = ReplacedCharacters();
    recorded_ = nullptr;
    reader_.reset();
    return true;
}

}  // namespace DataProviders

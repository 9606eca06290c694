#include "consumers/sql_statement.h"

#include <algorithm>
#include <initializer_list>

#include "files/format.h"
#include "files/text.h"
#include "storages/identifier.h"

namespace sql {
namespace {

StringView StripQuotesOrBrackets(StringView name) {
    const bool bracketed = name.starts_with(u'[') && name.find(u']') == name.size() - 1;
    return bracketed ? name.substr(1, name.size() - 2) : text::StripQuotes(name);
}

bool HoldsOneOf(StringView text, std::initializer_list<StringView> words) {
    return std::any_of(words.begin(), words.end(),
                       [&](StringView word) { return text.find(word) != StringView::npos; });
}

String SizePart(const DataRow& row) {
    const String type = text::Lowered(DescribedText(row, kTypeName));
    const bool has_digits = HoldsOneOf(type, {u"numeric", u"number", u"money"});
    StringView size = DescribedText(row, kSize);
    if (type.ends_with(u')')) return {};  // some drivers put the size into the type's name
    if (size.empty() || (!has_digits && !HoldsOneOf(type, {u"char", u"binary"}))) return {};
    if (size == u"0") size = u"max";
    const StringView digits = DescribedText(row, kDigits);
    if (!has_digits || digits.empty() || digits == u"0") return Format(u"(%s)", size);
    return Format(u"(%s,%s)", size, digits);
}

String DefaultPart(const DataRow& row) {
    const StringView value = DescribedText(row, kDefault);
    return value.empty() ? String() : Format(u" default %s ", value);
}

void AppendCreateTable(String& statement, const QualifiedName& name) {
    statement += u"create table ";
    if (!name.schema.empty()) {
        AppendIdentifier(statement, name.schema);
        statement += u'.';
    }
    AppendIdentifier(statement, name.table);
    statement += u" (";
}

}  // namespace

bool RefuseRow(String& error) {
    error = u"Cound not build SQL statement";  // published spelling
    return false;
}

StringView DescribedText(const DataRow& row, std::size_t position) {
    if (position >= row.size() || row[position].IsNull) return {};
    return row[position].Text;
}

String InsertPrefix(StringView table, const std::vector<ColumnDefinition>& columns,
                    bool column_list) {
    String prefix = u"insert into ";
    if (table.find_first_of(u".[\"") == StringView::npos) {
        AppendBetweenQuotes(prefix, table);
    } else {
        prefix += table;
    }
    if (column_list) {
        prefix += u'(';
        bool first = true;
        for (const ColumnDefinition& column : columns) {
            if (!column.Included) continue;
            if (!first) prefix += u',';
            first = false;
            AppendBetweenQuotes(prefix, column.Name);
        }
        prefix += u')';
    }
    return prefix += u" values";
}

bool AppendValueList(String& error, String& statement, const std::vector<ColumnDefinition>& columns,
                     const DataRow& row) {
    if (row.size() != columns.size()) return RefuseRow(error);
    statement += u" (";
    bool first = true;
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (!row[i].Included) continue;
        if (!first) statement += u',';
        first = false;
        if (row[i].IsNull) {
            statement += u"NULL";
            continue;
        }
        statement += columns[i].LiteralPrefix;
        AppendDoubling(statement, row[i].Text, u'\'');
        statement += columns[i].LiteralSuffix;
    }
    statement += u')';
    return true;
}

QualifiedName DivideName(StringView name) {
    std::size_t stop = StringView::npos;
    char16_t closing = 0;  // of the quotes or brackets that we are in
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (closing != 0) {
            if (name[i] == closing) closing = 0;
        } else if (name[i] == u'"') {
            closing = u'"';
        } else if (name[i] == u'[') {
            closing = u']';
        } else if (name[i] == u'.') {
            stop = i;
        }
    }
    if (stop == StringView::npos) return {{}, StripQuotesOrBrackets(name)};
    return {StripQuotesOrBrackets(name.substr(0, stop)),
            StripQuotesOrBrackets(name.substr(stop + 1))};
}

bool NamedByRows(StringView setting, const RowSet& rows) {
    return (setting.empty() || setting == u"$TABLE$") && !rows.TableName.empty();
}

QualifiedName NameOfDescribed(StringView setting, StringView resolved, const RowSet& rows) {
    if (NamedByRows(setting, rows)) return {rows.SchemaName, rows.TableName};
    return DivideName(resolved);
}

bool AppendColumnLine(String& error, String& statement, const QualifiedName& table,
                      const DataRow& row) {
    if (row.size() <= kTypeName) return RefuseRow(error);
    if (statement.empty()) {
        AppendCreateTable(statement, table);
    } else {
        statement += u',';
    }
    const StringView nullability = DescribedText(row, kNullable) == u"0" ? u"not null" : u"null";
    statement +=
        Format(u"\r\n %s %s%s %s%s", DescribedText(row, kColumn), DescribedText(row, kTypeName),
               SizePart(row), DefaultPart(row), nullability);
    return true;
}

}  // namespace sql

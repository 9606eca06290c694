#pragma once

#include "consumers/strict_form.h"

namespace DataConsumers {

// The rows as JSON of RFC 8259, one object for each row, over all result sets. What stands between
// the objects is the business of the two forms.
//
//     {"id":12,"price":0.5,"path":"a/b","sold":true,"note":null}
//
// Numbers are bare when their column is one of numbers and their text is a number; bits are true
// and false. A second column of the same name becomes "name_2", and a warning on standard error
// says so.
class JsonObjects : public StrictForm {
protected:
    explicit JsonObjects(const FormRules& rules) : StrictForm(u"JSONFile", rules) {}

    bool AppendHead(String& error, String& out) final;
    void AppendObject(const DataRow& row, String& out) const;

private:
    std::vector<String> members_;  // up to their values, "\"id\":", with a comma before all but one
};

// One array of them.
class StrictJson final : public JsonObjects {
public:
    StrictJson() : JsonObjects({.goes_on = false}) {}

private:
    void AppendFileStart(String& out) override;
    bool AppendValues(String& error, const DataRow& row, String& out) override;
    void AppendFileEnd(String& out) override;

    bool first_ = true;
};

// JSON Lines: one object a line.
class JsonLines final : public JsonObjects {
public:
    JsonLines() : JsonObjects({.line_end = u"\n"}) {}

private:
    bool AppendValues(String& error, const DataRow& row, String& out) override;
};

}  // namespace DataConsumers
